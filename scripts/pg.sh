#!/usr/bin/env bash
# A throwaway PostgreSQL cluster for the tests, sourced by test.sh: pg_avvia starts it on a
# free port of 127.0.0.1 and on a socket in its own folder (durable commits with PG_DURABILE=1),
# and exports how to reach it;
# pg_ferma stops it and removes the folder.
PG_DIR=""
pg_avvia() {
  local bin
  bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
  if [ -z "$bin" ]; then echo "pg: server PostgreSQL non trovato" >&2; return 1; fi
  PG_DIR=$(mktemp -d /tmp/vorn-pg-XXXXXX)
  local port
  port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1]); s.close()' 2>/dev/null \
    || echo $((20000 + RANDOM % 20000)))
  local run=()
  if [ "$(id -u)" -eq 0 ]; then
    chown postgres "$PG_DIR"
    run=(runuser -u postgres --)
  fi
  echo vorn > "$PG_DIR/pw"
  chmod 644 "$PG_DIR/pw"
  # The server runs with an Italian locale where the machine has it and a month-first
  # DateStyle, and clients start with one too: the library must pin its sessions itself.
  # The tests need no durability: the server skips fsync unless PG_DURABILE=1 (a benchmark
  # that measures durable commits).
  local fsync="-F"
  if [ "${PG_DURABILE:-0}" = 1 ]; then fsync=""; fi
  local loc=(--no-locale)
  if locale -a 2>/dev/null | grep -qi '^it_IT\.utf-\?8$'; then
    loc=(--locale=C --lc-messages=it_IT.UTF-8 --lc-monetary=it_IT.UTF-8 --lc-numeric=it_IT.UTF-8 --lc-time=it_IT.UTF-8)
  fi
  "${run[@]}" "$bin/initdb" -D "$PG_DIR/data" -U vorn --pwfile="$PG_DIR/pw" --auth-local=trust \
      --auth-host=scram-sha-256 "${loc[@]}" -E UTF8 >"$PG_DIR/initdb.log" 2>&1 || { cat "$PG_DIR/initdb.log" >&2; return 1; }
  "${run[@]}" "$bin/pg_ctl" -D "$PG_DIR/data" -l "$PG_DIR/server.log" -w -t 60 \
      -o "-k $PG_DIR -p $port -h 127.0.0.1 ${fsync} -c max_connections=200 -c shared_buffers=256MB -c DateStyle=SQL,MDY" start >/dev/null \
    || { cat "$PG_DIR/server.log" >&2; return 1; }
  export VORN_PG_HOST="$PG_DIR" VORN_PG_PORT="$port" VORN_PG_USER=vorn VORN_PG_DB=postgres
  export VORN_PG_TCP_HOST=127.0.0.1 VORN_PG_TCP_PASSWORD=vorn
  export PGDATESTYLE="SQL, MDY" PGOPTIONS="-c standard_conforming_strings=off"
  PG_BIN="$bin"
  PG_RUN=("${run[@]}")
}
pg_ferma() {
  [ -n "$PG_DIR" ] || return 0
  "${PG_RUN[@]}" "$PG_BIN/pg_ctl" -D "$PG_DIR/data" -m immediate stop >/dev/null 2>&1 || true
  rm -rf "$PG_DIR"
  PG_DIR=""
}
