#!/usr/bin/env bash
# Installs what building and testing need, from Debian's packages. Quiet when all is there.
set -euo pipefail
PACCHETTI=(g++ cmake make pkg-config libsqlite3-dev libpq-dev postgresql libgtest-dev libgmock-dev)
mancanti=()
for p in "${PACCHETTI[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || mancanti+=("$p")
done
[ ${#mancanti[@]} -eq 0 ] && exit 0
echo "setup: installo ${mancanti[*]}" >&2
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq >/dev/null
$SUDO apt-get install -y -qq --no-install-recommends "${mancanti[@]}" >/dev/null
