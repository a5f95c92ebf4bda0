#!/usr/bin/env bash
# Configures and builds one tree: build.sh DIR [cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=$1; shift
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >"$dir.configure.log" 2>&1 || { cat "$dir.configure.log"; exit 1; }
# The progress lines are left out; a failed build fails the script (pipefail: the status is the
# build's, the filter never fails).
cmake --build "$dir" -j"$(nproc)" 2>&1 | { grep -vE '^\[ *[0-9]+%\]|^-- ' || true; }
