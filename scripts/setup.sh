#!/usr/bin/env bash
# Installs what building and testing need, from Debian's packages. Quiet when all is there.
set -euo pipefail
PACCHETTI=(g++ cmake make pkg-config libsqlite3-dev libpq-dev libcrypt-dev postgresql libgtest-dev libgmock-dev locales)
mancanti=()
for p in "${PACCHETTI[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || mancanti+=("$p")
done
# The Italian locale the test server runs under, so that no reading depends on the server's
# language, numbers or dates.
italiano() {
  locale -a 2>/dev/null | grep -qi '^it_IT\.utf-\?8$' && return 0
  command -v localedef >/dev/null || return 0
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO localedef -i it_IT -f UTF-8 it_IT.UTF-8 >/dev/null 2>&1 || true
}
if [ ${#mancanti[@]} -eq 0 ]; then italiano; exit 0; fi
echo "setup: installo ${mancanti[*]}" >&2
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq >/dev/null
$SUDO apt-get install -y -qq --no-install-recommends "${mancanti[@]}" >/dev/null
italiano
