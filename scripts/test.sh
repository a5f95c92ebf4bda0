#!/usr/bin/env bash
# Every test: sets up, builds the plain and the sanitizer trees, starts a throwaway
# PostgreSQL, runs the tests of both trees on SQLite and PostgreSQL, stops the server.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
source scripts/pg.sh
trap pg_ferma EXIT
trap 'pg_ferma; exit 130' INT TERM

echo "== build"
bash scripts/build.sh build
echo "== build con AddressSanitizer e UndefinedBehaviorSanitizer"
bash scripts/build.sh build-asan -DVORN_SANITIZE=ON -DVORN_BENCH=OFF -DCMAKE_BUILD_TYPE=Debug

echo "== PostgreSQL di prova"
if ! pg_avvia; then
  if [ "${CI:-}" = "true" ]; then echo "PostgreSQL non parte: sotto CI è un errore" >&2; exit 1; fi
  echo "************ PostgreSQL non parte: i test PostgreSQL saranno saltati ************" >&2
fi

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
status=0
echo "== test"
ctest --test-dir build --output-on-failure -j"$(nproc)" || status=1
echo "== test con i sanitizer"
ctest --test-dir build-asan --output-on-failure -j"$(nproc)" || status=1
exit $status
