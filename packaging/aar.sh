#!/usr/bin/env bash
# aar.sh BUILD_DIR OUT
# Packs the library of BUILD_DIR, a finished build for arm64, into the Android archive OUT: stripped, with its
# headers, as a prefab package. The same build gives the same bytes. A failure leaves OUT as it was.
set -euo pipefail

[ $# -eq 2 ] || { echo "usage: aar.sh BUILD_DIR OUT" >&2; exit 2; }
build=$1
out=$2
library=$build/libZeBeautyEffect.so
[ -f "$library" ] || { echo "aar.sh: $library is not there" >&2; exit 1; }
[[ $(readelf -h "$library") == *Machine:*AArch64* ]] || { echo "aar.sh: $library is not for arm64" >&2; exit 1; }

if [[ $(readelf -d "$library") == *NEEDED*libc.so.6* ]]; then
    echo "aar.sh: warning: $library is not for Android, and neither is the archive; build android-arm64-release" >&2
fi

work=$(mktemp -d)
beside=$(mktemp -d "$out.XXXXXX")
trap 'rm -rf "$work" "$beside"' EXIT
new=$(realpath "$beside")/new.zip

cmake --install "$build" --prefix "$work" --component prefab --strip >/dev/null
cd "$work"
find . -exec touch -d '2020-01-01 00:00:00 UTC' {} +
find . -type f -printf '%P\n' | LC_ALL=C sort | TZ=UTC zip -q -X -@ "$new"
cd "$OLDPWD"
mv -f "$new" "$out"
