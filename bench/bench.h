// The benchmarks of vorn_bench besides the journal's own: each takes the arguments of its run
// (argv[0] is the name it was called by, its options follow) and returns the exit code.
#pragma once

// Ledger cards and balances at a date over a large journal.
int BenchMastrini(int argc, char** argv);

// The VAT registers of a year over a large journal, against a plain read of their rows.
int BenchRegistriIva(int argc, char** argv);

// Invoice posting, one durable commit per document, against a raw insert of the same rows.
int BenchElaboraFatture(int argc, char** argv);

// The balance sheet and the trial balance over a large journal, against a plain GROUP BY of its rows.
int BenchBilancio(int argc, char** argv);

// The journal book of a year over a large journal, against a plain ordered read of its rows.
int BenchLibroGiornale(int argc, char** argv);

// The import of a journal's exchange file, against posting the same rows through SalvaRecord.
int BenchImportaPrimaNota(int argc, char** argv);
