#!/usr/bin/env bash
# make_pages.sh ZEBEAUTY VERSION OUTPUT_DIR
# Makes a manual page of what `--help` prints, for the program ZEBEAUTY and for each of its commands. PAGE.h2m beside
# this script adds sections to PAGE.
set -euo pipefail
program=$1 version=$2 output=$3
here=$(dirname "${BASH_SOURCE[0]}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# see_also PAGE... prints the section that refers to these pages.
see_also() {
    echo "[SEE ALSO]"
    printf '.BR %s (1),\n' "${@//-/\\-}" | sed '$s/,$//'
}

# make_pages WORD... makes the page of `zebeauty WORD...`, then those of the commands below it.
make_pages() {
    local page parent help command commands
    page=$(IFS=-; echo "zebeauty${*:+-$*}")
    parent=${page%-*}
    help=$("$program" "$@" --help)
    mapfile -t commands < <(sed -n '/^Subcommands:$/,/^$/s/^  \([^ ]*\) .*/\1/p' <<<"$help")

    # help2man takes the name of the page from that of the program.
    printf '#!/bin/sh\nexec "%s" %s "$@"\n' "$program" "$*" >"$work/$page"
    chmod +x "$work/$page"
    see_also $([ $# -eq 0 ] || echo "$parent") "${commands[@]/#/$page-}" >"$work/see_also"
    help2man --locale C.UTF-8 --no-info --name "$(sed '1s/./\l&/;q' <<<"$help")" \
        --version-string "$version" --source "zebeauty $version" --include "$work/see_also" \
        --opt-include "$here/$page.h2m" --output "$output/$page.1" "$work/$page"

    for command in "${commands[@]}"; do
        make_pages "$@" "$command"
    done
}

mkdir -p "$output"
make_pages
