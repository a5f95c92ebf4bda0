#!/usr/bin/env bash
# The library as a client finds it: installed from the build tree BUILD (esempio.sh BUILD) into a
# new prefix, the example client built against it, once through the CMake package and once
# through pkg-config, and run; then the Debian package made and its contents checked. A header
# left out, a dependency not exported or a file missing from the package fails here.
set -euo pipefail
radice=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
tmp=$(mktemp -d /tmp/vorn-esempio-XXXXXX)
trap 'rm -rf "$tmp"' EXIT
fallito() { echo "esempio: $1" >&2; [ -f "${2:-}" ] && cat "$2" >&2; exit 1; }

prefisso="$tmp/prefisso"
cmake --install "$build" --prefix "$prefisso" >"$tmp/install.log" 2>&1 || fallito "installazione fallita" "$tmp/install.log"
test -f "$prefisso/include/vorn/ledger/clsPrimaNota.h" || fallito "intestazioni non installate"
test -f "$prefisso/include/vorn/frame/Versione.h" || fallito "Versione.h non installata"
test ! -e "$prefisso/include/vorn/company/StampaLibri.h" || fallito "installata un'intestazione interna"

# Through the CMake package.
cmake -S "$radice/examples/cliente" -B "$tmp/cliente" -DCMAKE_PREFIX_PATH="$prefisso" \
  -DCMAKE_BUILD_TYPE=Release >"$tmp/cliente.log" 2>&1 || fallito "configurazione dell'esempio fallita" "$tmp/cliente.log"
cmake --build "$tmp/cliente" >>"$tmp/cliente.log" 2>&1 || fallito "compilazione dell'esempio fallita" "$tmp/cliente.log"
mkdir "$tmp/azienda"
"$tmp/cliente/cliente" "$tmp/azienda" >"$tmp/uscita.txt" 2>&1 || fallito "l'esempio termina con errore" "$tmp/uscita.txt"
grep -q "mastrino del fornitore F1" "$tmp/uscita.txt" || fallito "l'esempio non stampa il mastrino" "$tmp/uscita.txt"
grep -q "1.220,00" "$tmp/uscita.txt" || fallito "il mastrino non porta la fattura" "$tmp/uscita.txt"
# The same on PostgreSQL, in a database of its own that the example removes, when the test
# command has started a server.
if [ -n "${VORN_PG_HOST:-}" ]; then
  mkdir "$tmp/azienda-pg"
  "$tmp/cliente/cliente" "$tmp/azienda-pg" "vorn_esempio_$$" >"$tmp/uscita-pg.txt" 2>&1 ||
    fallito "l'esempio su PostgreSQL termina con errore" "$tmp/uscita-pg.txt"
  diff "$tmp/uscita.txt" "$tmp/uscita-pg.txt" >"$tmp/diff-pg.txt" ||
    fallito "il mastrino su PostgreSQL non è quello su SQLite" "$tmp/diff-pg.txt"
  motori="SQLite e PostgreSQL"
else
  echo "esempio: PostgreSQL saltato (VORN_PG_HOST non impostato)" >&2
  motori="SQLite"
fi

# Through pkg-config.
export PKG_CONFIG_PATH="$prefisso/lib/pkgconfig"
modelli=$(pkg-config --variable=modelli vorn)
# shellcheck disable=SC2046
g++ -o "$tmp/cliente-pc" "$radice/examples/cliente/main.cpp" -DCARTELLA_MODELLI="\"$modelli\"" \
  $(pkg-config --cflags --libs vorn) >"$tmp/pc.log" 2>&1 || fallito "compilazione con pkg-config fallita" "$tmp/pc.log"
mkdir "$tmp/azienda-pc"
"$tmp/cliente-pc" "$tmp/azienda-pc" >"$tmp/uscita-pc.txt" 2>&1 || fallito "l'esempio (pkg-config) termina con errore" "$tmp/uscita-pc.txt"

# The Debian package.
(cd "$tmp" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$tmp/pacchetto" >"$tmp/cpack.log" 2>&1) ||
  fallito "cpack fallito" "$tmp/cpack.log"
deb=$(ls "$tmp"/pacchetto/*.deb)
dpkg-deb --contents "$deb" >"$tmp/contenuto.txt"
for f in ./usr/include/vorn/ledger/clsPrimaNota.h ./usr/lib/libvorn.a ./usr/bin/vorn \
  ./usr/share/vorn/modelli/standard/modello.tsv ./usr/lib/cmake/vorn/vornConfig.cmake ./usr/lib/pkgconfig/vorn.pc; do
  grep -q " $f\$" "$tmp/contenuto.txt" || fallito "manca nel pacchetto: $f" "$tmp/contenuto.txt"
done
dpkg-deb --field "$deb" Depends | grep -q "libpq" || fallito "il pacchetto non dichiara libpq"
dpkg-deb --field "$deb" Depends | grep -q "libcrypt-dev" || fallito "il pacchetto non dichiara libcrypt"
echo "esempio: installato, compilato (CMake e pkg-config), eseguito su $motori; pacchetto $(basename "$deb") completo"
