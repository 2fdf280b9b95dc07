#!/usr/bin/env bash
# Runs the tests that draw on ANGLE over SwiftShader, a second and stricter driver than Mesa's:
#     tests/angle.sh [CTEST OPTION...]
# PRESET names the build, which has to be there ("release"). The driver comes with npm, once, into build/angle; it
# is for Linux on x86-64. Ends with 77 where npm or the driver cannot be had.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

package=@sparticuz/chromium@149.0.0 # The last one whose ANGLE is not a part of the browser.
archive=swiftshader.tar.br
checksum=49cfdf5cf3d15ed1eb5e636619f325ff38c609e27d43d06a129dc54f88f67e29
angle=$PWD/build/angle
build=build/${PRESET:-release}

fail() {
    echo "angle: $*" >&2
    exit 1
}

skip() {
    echo "angle: $*" >&2
    exit 77
}

fetch() {
    command -v npm >/dev/null || skip "npm is needed to fetch the driver"
    mkdir -p build
    partial=$(mktemp -d build/angle.XXXXXX)
    trap 'rm -rf "$partial"' EXIT
    npm pack --silent --pack-destination "$partial" "$package" >/dev/null || skip "$package cannot be fetched"
    tar -xzf "$partial"/*.tgz -C "$partial" --strip-components 2 "package/bin/$archive"
    sha256sum --check --quiet <<<"$checksum  $partial/$archive" || fail "$package is not what it was"
    mkdir "$partial/angle"
    node -e 'process.stdin.pipe(zlib.createBrotliDecompress()).pipe(process.stdout)' <"$partial/$archive" |
        tar -x -C "$partial/angle"
    ln -s libEGL.so "$partial/angle/libEGL.so.1"
    ln -s libGLESv2.so "$partial/angle/libGLESv2.so.2"
    mv -T "$partial/angle" "$angle"
}

[ -d "$angle" ] || fetch

# The platform "swiftshader" would be the same, but changes the working directory while it starts, which other
# threads notice that open files.
export LD_LIBRARY_PATH=$angle ANGLE_DEFAULT_PLATFORM=vulkan VK_ICD_FILENAMES=$angle/vk_swiftshader_icd.json
export GTEST_FILTER=-Lut.*:PhotoFiles.AreReadInEveryKind* # Of the tool's tests, those that draw nothing.
"$build/tool/zebeauty" info | grep 'GL renderer: ANGLE .*SwiftShader' || fail "the tests would not run on ANGLE"
ctest --test-dir "$build" --output-on-failure --no-tests=error -j "$(nproc)" \
    -R '^((beauty|lut|frame)_pixel_test|host_test|ze_tool_test|example_host)$' "$@"
