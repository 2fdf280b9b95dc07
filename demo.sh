#!/usr/bin/env bash
# Builds zebeauty and beautifies one photo with it:
#     ./demo.sh [PHOTO] [OUTPUT]
# PHOTO defaults to a portrait in the public domain, fetched once. OUTPUT, a .png or .jpg that must not exist
# yet, receives before and after side by side; it defaults to demo-output/before-after.png. The last line printed
# is its path.
set -euo pipefail

fail() {
    echo "demo: $*" >&2
    exit 1
}

case ${1:-} in
-h | --help)
    sed -n '2,/^set/{s/^# \{0,1\}//p;}' "$0"
    exit
    ;;
-*) fail "$1 is no option; usage: ./demo.sh [PHOTO] [OUTPUT]" ;;
esac
[ $# -le 2 ] || fail "usage: ./demo.sh [PHOTO] [OUTPUT]"
photo=${1:+$(realpath -m -- "$1")}
output=${2:+$(realpath -m -- "$2")}
cd "$(dirname "${BASH_SOURCE[0]}")"
[ -z "$photo" ] || [ -r "$photo" ] || fail "$photo cannot be read"
case $output in
"" | *.png | *.jpg | *.jpeg) ;;
*) fail "$output: OUTPUT is a .png or .jpg" ;;
esac
[ ! -e "$output" ] || fail "$output exists; name another OUTPUT, or use zebeauty render -y to overwrite"
[ -z "$output" ] || [ -d "${output%/*}/" ] || fail "${output%/*} is no directory"

./setup/install.sh tool
[ -f build/release/build.ninja ] || cmake --preset release -DZE_BUILD_TESTS=OFF -DZE_BUILD_GST=OFF >/dev/null
cmake --build --preset release --target zebeauty >&2

# NASA's portrait of Eileen Collins, out of a Debian package that carries it as sample data.
portrait=$PWD/build/astronaut.png
download_package() {
    (cd "$1" && apt-get download python3-skimage) >"$1/log" 2>&1
}
fetch_portrait() {
    local directory member=./usr/lib/python3/dist-packages/skimage/data/astronaut.png
    directory=$(mktemp -d)
    # shellcheck disable=SC2064 # The directory of now is meant.
    trap "rm -rf '$directory'" EXIT
    if ! download_package "$directory"; then
        if [ "$(id -u)" -eq 0 ]; then apt-get update; else sudo -n apt-get update; fi >/dev/null 2>&1 || true
        download_package "$directory" || return 1
    fi
    dpkg-deb --fsys-tarfile "$directory"/python3-skimage_*.deb | tar -xO "$member" >"$directory/portrait" || return 1
    mv "$directory/portrait" "$portrait"
}
if [ -z "$photo" ]; then
    [ -s "$portrait" ] || fetch_portrait ||
        fail "the portrait cannot be had from Debian's package python3-skimage; name a photo: ./demo.sh PHOTO"
    photo=$portrait
fi

mkdir -p demo-output
after=$PWD/demo-output/after.png
output=${output:-$PWD/demo-output/before-after.png}

# Mesa's software renderer keeps the shaders' low precision exact without the newer instructions.
export GALLIUM_OVERRIDE_CPU_CAPS=sse4.1
build/release/tool/zebeauty render -y --compare "$output" -- "$photo" "$after"
echo "demo: before on the left, after on the right, with the strengths that zebeauty render has by default" >&2
echo "$output"
