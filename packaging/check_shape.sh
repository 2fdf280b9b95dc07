#!/usr/bin/env bash
# check_shape.sh LIBRARY [BUDGET]
# Checks of the finished library what devices and hosts rely on and a changed flag or include can lose: pages of
# 16 KB, protection of its memory, name and build-id, the libraries it needs, the libc functions it calls, the
# names it exports, and that it has at most BUDGET bytes (400 KB) when stripped. Prints a line for each fault and
# last the size. STRIP names the strip of the library's platform.
set -euo pipefail
export LC_ALL=C

[ $# -ge 1 ] || { echo "usage: check_shape.sh LIBRARY [BUDGET]" >&2; exit 2; }
library=$1
budget=${2:-409600}
page=16384
here=$(dirname "${BASH_SOURCE[0]}")

faults=0
fault() {
    echo "check_shape: $*"
    faults=$((faults + 1))
}

segments=$(readelf -lW "$library" | grep -E '^  [A-Z_]+ +0x')
dynamic=$(readelf -dW "$library")
notes=$(readelf -nW "$library")
symbols=$(readelf --dyn-syms -W "$library" | awk '$4 != "SECTION" && $8 != ""')

# Memory. A page is mapped whole, so file and memory agree modulo its size; what becomes read-only after loading
# ends with a page.
relro=
loads=()
while read -r type offset address _ _ memory rest; do
    end=$((address + memory))
    case $type in
        LOAD)
            loads+=("$((address)) $(((end + page - 1) / page * page))")
            alignment=$((${rest##* }))
            [ $((alignment % page)) -eq 0 ] || fault "segment at $address is aligned to $alignment bytes, not $page"
            [ $(((address - offset) % page)) -eq 0 ] || fault "segment at $address lies elsewhere in its page of the file"
            [[ $rest != *W*E* ]] || fault "segment at $address can be written and executed"
            ;;
        GNU_RELRO) relro="$((address)) $end" ;;
        GNU_STACK) stack=$rest ;;
    esac
done <<<"$segments"
if [ -z "$relro" ]; then
    fault "nothing becomes read-only after loading (no GNU_RELRO)"
else
    [ $((${relro#* } % page)) -eq 0 ] || fault "GNU_RELRO ends inside a page"
    is_mapped=
    for load in "${loads[@]}"; do
        [ "${load% *}" -gt "${relro% *}" ] || [ "${load#* }" -lt "${relro#* }" ] || is_mapped=1
    done
    [ "$is_mapped" ] || fault "GNU_RELRO reaches beyond its segment"
fi
[[ ${stack:-E} != *E* ]] || fault "the stack is executable"
grep -qE 'BIND_NOW|FLAGS_1.*NOW' <<<"$dynamic" || fault "symbols are bound late (no BIND_NOW)"
! grep -q TEXTREL <<<"$dynamic" || fault "code is relocated (TEXTREL)"

# Names
grep -qF 'soname: [libZeBeautyEffect.so]' <<<"$dynamic" || fault "its SONAME is not libZeBeautyEffect.so"
grep -q 'Build ID: [0-9a-f]' <<<"$notes" || fault "it has no build-id"
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic")
if grep -qx 'libc.so' <<<"$needed"; then
    platform='lib(c|m|dl|c\+\+_shared)\.so'
    ! grep -qE 'RPATH|RUNPATH' <<<"$dynamic" || fault "it has a run path"
else
    platform='lib(c|m|stdc\+\+|gcc_s)\.so\.[0-9]+|ld-linux-[a-z0-9_-]*\.so\.[0-9]+'
fi
for name in EGL GLESv2 log z; do
    grep -qE "^lib$name\.so" <<<"$needed" || fault "it does not need lib$name"
    platform+="|lib$name\.so(\.[0-9]+)?"
done
for name in $(grep -vxE "$platform" <<<"$needed"); do
    fault "it needs $name"
done
for name in $(awk '$7 == "UND" && sub(/@GLIBC_.*/, "", $8) { print $8 }' <<<"$symbols" |
    grep -vxFf <(grep -vE '^(#|$)' "$here/libc_functions.txt")); do
    fault "it calls $name, which libc_functions.txt does not list"
done

# Exports: classes with their parts, and exactly these functions
entries="ZecCreateEffect ZecCreateRenderCore ZecDestoryEffect ZecDestroyRenderCore ZecRender ZecSetBeautyParams ZecSetLutParams"
exported=$(awk '$7 != "UND" && $7 != "Ndx" { print $8 }' <<<"$symbols" | c++filt | sort -u)
while read -r name; do
    fault "it exports $name"
done < <(grep -vE '^((typeinfo( name)?|vtable) for )?(CZe|SZe|Ze[^c])' <<<"$exported" | grep -vxFf <(tr ' ' '\n' <<<"$entries"))
for name in $entries; do
    grep -qx "$name" <<<"$exported" || fault "it does not export $name"
done

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
"${STRIP:-strip}" -o "$stripped" "$library"
size=$(stat -c %s "$stripped")
[ "$size" -le "$budget" ] || fault "stripped it has $size bytes, more than $budget"
echo "check_shape: $size bytes stripped, $faults faults"
[ "$faults" -eq 0 ]
