#!/usr/bin/env bash
# install_test.sh BUILD_DIR
# Installs BUILD_DIR, moves what was installed, and builds a host against it in both ways.
set -euo pipefail
build=$1
here=$(dirname "${BASH_SOURCE[0]}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export EGL_PLATFORM=surfaceless

"$CMAKE_COMMAND" --install "$build" --prefix "$work/first place" --strip >/dev/null
prefix=$work/moved
mv "$work/first place" "$prefix"
! grep -rIl -e "$build" -e "first place" "$prefix" || { echo "names the build folder or the prefix"; exit 1; }

cp -r "$here/consumer" "$work"
(cd "$prefix/include/ZeBeautyEffect" && find . -name '*.h' -printf '#include "%P"\n') >"$work/consumer/all_headers.h"

"$CMAKE_COMMAND" -S "$work/consumer" -B "$work/build" -G "$GENERATOR" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_STANDARD=17 >/dev/null
"$CMAKE_COMMAND" --build "$work/build" >/dev/null
"$work/build/consumer"

# The other way: as a part of the host's build, which installs no files but those it asked for.
source=$(realpath "$here/../..")
"$CMAKE_COMMAND" -S "$work/consumer" -B "$work/embedded" -G "$GENERATOR" -DZE_SOURCE="$source" \
    -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_STANDARD=17 >/dev/null
"$CMAKE_COMMAND" --build "$work/embedded" --target consumer >/dev/null
"$work/embedded/consumer"
"$CMAKE_COMMAND" --install "$work/embedded" --prefix "$work/nothing" >/dev/null
[ ! -e "$work/nothing" ] || { echo "installs what the host did not ask for"; exit 1; }

# Documents name only what is there.
documents=$prefix/share/doc/ZeBeautyEffect
grep -oE '\]\([a-z][^):]*' "$documents"/*.md | sed 's/\(.*\)\/[^/]*](/\1\//; s/#.*//' | while read -r link; do
    [ -e "$link" ] || { echo "$link is named, but not there"; exit 1; }
done

pc=$(find "$prefix" -name pkgconfig)
export PKG_CONFIG_PATH=$pc
flags=$(pkg-config --cflags --libs ZeBeautyEffect)
host=$(pkg-config --variable=hostdir ZeBeautyEffect)
# shellcheck disable=SC2086
$CXX -std=c++17 -pthread -I"$LIBLOG_INCLUDE" "$work/consumer/main.cpp" "$host"/*.cpp -o "$work/consumer/consumer" \
    $flags -lEGL "$LIBLOG" -Wl,-rpath,"$(dirname "$LIBLOG")"
LD_LIBRARY_PATH=$(dirname "$pc") "$work/consumer/consumer"

if [ -x "$prefix/bin/zebeauty" ]; then
    "$prefix/bin/zebeauty" chart "$work/chart.png" && [ -s "$work/chart.png" ]
    grep -q "^complete .* zebeauty$" "$prefix/share/bash-completion/completions/zebeauty"
    if command -v help2man >/dev/null; then
        for page in zebeauty zebeauty-render zebeauty-lut-bake; do
            grep -qx ".SH NAME" "$prefix/share/man/man1/$page.1" || { echo "no manual page $page"; exit 1; }
        done
    fi
fi

plugin=$(find "$prefix" -name libgstzebeauty.so)
if [ -n "$plugin" ]; then
    export GST_PLUGIN_PATH=${plugin%/*} GST_REGISTRY=$work/registry
    gst-inspect-1.0 zebeauty >"$work/properties" # whole: a pipe that closes early would be a failure
    grep -q "^  *smooth  *: How much" "$work/properties"
    gst-launch-1.0 -q videotestsrc num-buffers=2 ! zebeauty smooth=0.5 ! fakesink
fi
