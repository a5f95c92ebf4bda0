#!/usr/bin/env bash
# The benchmarks: builds, starts a throwaway PostgreSQL, runs vorn_bench with the given
# arguments (default: posting at 10,000 and 100,000 entries, the rebuild of a million rows,
# the ledger cards, the VAT registers of a year over a million rows, the posting of 10,000
# invoices (on a PostgreSQL with durable commits), the balance sheet and the trial balance
# over a million rows, the import of a million journal rows from the exchange file against
# SalvaRecord), stops the server.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh build
source scripts/pg.sh
trap pg_ferma EXIT
trap 'pg_ferma; exit 130' INT TERM
pg_avvia
B=build/bench/vorn_bench
# Not exec: the server is stopped on the way out.
if [ $# -gt 0 ]; then "$B" "$@"; exit; fi
"$B" --righe 10000 --motore entrambi --transazioni entrambe
"$B" --righe 100000 --motore sqlite --transazioni unica
"$B" --righe 100000 --motore postgres --transazioni entrambe
"$B" --righe 1000 --ricostruzione 1000000 --motore entrambi
"$B" mastrini --motore entrambi
"$B" registri-iva --motore entrambi
"$B" libro-giornale --motore entrambi
# Invoice posting is measured with durable commits on both engines: SQLite with
# synchronous=FULL, PostgreSQL with fsync on (the server is started again for it).
pg_ferma
PG_DURABILE=1 pg_avvia
"$B" elabora-fatture --documenti 10000 --motore entrambi
pg_ferma
pg_avvia
"$B" bilancio --motore entrambi
"$B" importa-prima-nota --righe 1000000 --motore sqlite
