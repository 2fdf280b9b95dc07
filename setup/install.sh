#!/usr/bin/env bash
# Installs the packages of setup/packages.txt that are missing, as root or through sudo. Prints nothing and needs
# no rights when nothing is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

missing=()
while read -r package; do
    status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing+=("$package")
done < <(grep -vE '^[[:space:]]*(#|$)' packages.txt)
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: root or sudo is needed to install: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "setup: installing ${missing[*]}" >&2
if ! { "${as_root[@]}" apt-get update -qq &&
       "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
           apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null; then
    cat "$log" >&2
    echo "setup: installing failed" >&2
    exit 1
fi
