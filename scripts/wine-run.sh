#!/usr/bin/env bash
# Runs a Windows program under Wine, headless, for the cross-built tests.
# The Wine prefix lives in the build folder (UTILKIT_WINEPREFIX) and is
# created on first use; the MinGW runtime DLLs are found through WINEPATH.
set -euo pipefail

wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=$(command -v wine64 || command -v wine)

export WINEPREFIX="${UTILKIT_WINEPREFIX:-$PWD/wineprefix}"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
gccdir=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-libgcc-file-name)")
export WINEPATH="$gccdir;/usr/x86_64-w64-mingw32/lib"

if [ ! -f "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$WINEPREFIX"
  "$wine" wineboot -i >/dev/null 2>&1 || true
  # The new prefix is ready once its first session has ended: until then the
  # service manager may still be filling its database.
  server=/usr/lib/wine/wineserver64
  [ -x "$server" ] || server=$(command -v wineserver64 || command -v wineserver)
  "$server" -w || true
fi
exec "$wine" "$@"
