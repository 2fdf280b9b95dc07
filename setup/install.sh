#!/usr/bin/env bash
# Installs Debian packages that are missing, as root or through sudo:
#     setup/install.sh [SET...]
# SET is tool, gst, test, bench, arm64 or ci, for the packages in the file of that name here; without one it is all but
# arm64. Some packages of arm64 are of that architecture. Prints nothing and needs no rights when nothing is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

[ $# -gt 0 ] || set -- tool gst test bench ci
for set; do
    [ -f "$set.txt" ] || { echo "setup: there is no set $set; see the head of setup/install.sh" >&2; exit 2; }
done

native=$(dpkg --print-architecture)
# A package may be there for several architectures, a line for each.
is_installed() {
    local architecture=$native
    [[ $1 == *:* ]] && architecture=${1#*:}
    dpkg-query -W -f '${Architecture} ${Status}\n' "${1%:*}" 2>/dev/null |
        grep -E "^($architecture|all) install ok installed$" >/dev/null
}

missing=()
while read -r package; do
    is_installed "$package" || missing+=("$package")
done < <(grep -hvE '^[[:space:]]*(#|$)' "${@/%/.txt}" | sort -u)
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: root or sudo is needed to install: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "setup: installing ${missing[*]}" >&2
install_missing() {
    if [[ " ${missing[*]}" == *:arm64* ]]; then
        "${as_root[@]}" dpkg --add-architecture arm64 || return
    fi
    "${as_root[@]}" apt-get update -qq &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "${missing[@]}"
}
if ! install_missing >"$log" 2>&1 </dev/null; then
    cat "$log" >&2
    echo "setup: installing failed" >&2
    exit 1
fi
