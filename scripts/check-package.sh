#!/usr/bin/env bash
# Unpacks the Debian package that `make package` built and runs the tool
# from the unpacked tree, with no installed copy of the library to fall back on.
set -euo pipefail
deb=$(ls build/release/utilkit_*.deb | head -n1)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
dpkg-deb --info "$deb" | grep -E '^ (Package|Version|Depends):'
dpkg-deb -x "$deb" "$work"
for f in usr/bin/utilkit usr/include/utilkit/base/error_stack.h; do
  test -e "$work/$f" || { echo "check-package: $f missing from $deb"; exit 1; }
done
find "$work/usr" -name 'libutilkit.so*' | grep -q . \
  || { echo "check-package: libutilkit.so missing from $deb"; exit 1; }
out=$(env -u LD_LIBRARY_PATH "$work/usr/bin/utilkit" table -c Test,Channel examples/tests_a.csv)
head -n1 <<<"$out" | grep -qx 'Test,Channel' || { echo "check-package: tool output: $out"; exit 1; }
echo "check-package: $(basename "$deb") unpacks and its tool runs"
