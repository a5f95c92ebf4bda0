#!/usr/bin/env bash
# The main job: sets up, builds, and runs vorn on an SQLite company made by the demo.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh build
VORN=build/vorn
$VORN --version
$VORN --help
if $VORN demo --help >/dev/null 2>&1; then
  rm -rf demo
  $VORN --cartella demo/app demo demo "$@"
fi
