#!/usr/bin/env bash
# Sets up, builds and runs all tests. PRESET names another preset of CMakePresets.json, CC and CXX another
# compiler; further arguments go to ctest.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

preset=${PRESET:-release}
case $preset in
    arm64-*) ./setup/install.sh tool test arm64 ;;
    *) ./setup/install.sh tool gst test ;;
esac
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset" --no-tests=error -j "$(nproc)" "$@"
