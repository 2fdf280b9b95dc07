#!/usr/bin/env bash
# Links small libraries that have one fault each and sees check_shape.sh name it, and no other.
set -euo pipefail
check=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../packaging/check_shape.sh")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

for name in CreateEffect CreateRenderCore DestoryEffect DestroyRenderCore Render SetBeautyParams; do
    echo "extern \"C\" void Zec$name() {}"
done >library.cpp
cat >>library.cpp <<'EOF'
#ifndef NO_ENTRY
extern "C" void ZecSetLutParams() {}
#endif
int Zewritten = 1;
extern const void* const Zerelocated = &Zewritten;
#ifdef EXPORT
namespace other { void function() {} }
#endif
#ifdef CALL
extern "C" int renameat2(int, const char*, int, const char*, unsigned);
int Zerename() { return renameat2(0, "", 0, "", 0); }
#endif
#ifdef TEXT
asm(".text\n.balign 8\n.quad Zewritten\n");
#endif
EOF

failed=0
# expect FAULTS FLAG...: links the sound library with FLAGs behind its own. FAULTS, all the lines that are to
# come, is a pattern.
expect() {
    local expected=$1 actual status=0
    shift
    # shellcheck disable=SC2086
    $CXX -shared -fPIC -O1 library.cpp -o library.so -Wl,-soname,libZeBeautyEffect.so -Wl,--build-id=sha1 \
        -Wl,-z,max-page-size=16384 -Wl,-z,common-page-size=16384 -Wl,-z,relro -Wl,-z,now \
        -Wl,--no-as-needed -lEGL -lGLESv2 -lz "$@" ${log-$LIBLOG} 2>link.txt || cat link.txt
    "$check" library.so ${budget-} >report.txt 2>link.txt || status=$?
    actual=$(sed '$d; s/^check_shape: //' report.txt)
    # shellcheck disable=SC2053
    if [[ $actual != $expected || $status -ne $([ -z "$expected" ]; echo $?) ]]; then
        printf '%s\n' "with $*:" "$actual" "(status $status)" "instead of:" "$expected"
        failed=1
    fi
}

expect ""
expect "segment at 0x* is aligned to 4096 bytes, not 16384*" -Wl,-z,max-page-size=4096 -Wl,-z,common-page-size=4096
expect "nothing becomes read-only after loading (no GNU_RELRO)" -Wl,-z,norelro
expect "symbols are bound late (no BIND_NOW)" -Wl,-z,lazy
expect "the stack is executable" -Wl,-z,execstack
expect "code is relocated (TEXTREL)" -DTEXT -Wl,-z,notext
expect "its SONAME is not libZeBeautyEffect.so" -Wl,-soname,libOther.so
expect "it has no build-id" -Wl,--build-id=none
expect "it needs libresolv.so.2" -lresolv
log= expect "it does not need liblog"
expect "it calls renameat2, which libc_functions.txt does not list" -DCALL
expect "it exports other::function()" -DEXPORT
expect "it does not export ZecSetLutParams" -DNO_ENTRY
budget=100 expect "stripped it has * bytes, more than 100"
exit $failed
