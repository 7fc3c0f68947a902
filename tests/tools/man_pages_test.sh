#!/bin/bash
# Checks that the manual pages render without warnings and have the same options as --help.
# Usage: man_pages_test.sh FOLDER_OF_PAGES PROGRAM...
set -euo pipefail
pages=$1
shift

# Prints the options at the beginnings of lines that are indented by N spaces.
options() {
    sed -n "s/^ \{$1\}\(-.*\)/\1/p" | sed 's/, /,/; s/ .*//' | tr , '\n' | sort -u
}

for page in "$pages"/*.1; do
    groff -man -Tascii -ww -z "$page" 2>&1 | { ! grep .; } || exit 1
done
for program in "$@"; do
    page=$pages/${program##*/}.1
    subcommands=$("$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\).*/\1/p')
    diff <(for command in "" $subcommands; do
        "$program" ${command:+"$command"} --help
    done | options 2) \
        <(groff -man -Tascii -P-cbou "$page" | sed -n '/^OPTIONS/,/^[A-Z]/p' | options 7) || {
        echo "$page differs from $program --help" >&2
        exit 1
    }
done
