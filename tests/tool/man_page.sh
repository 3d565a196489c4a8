#!/bin/bash
# The man page renders without a warning, documents every option letter the
# command line takes, and names the program's version.
#
#   man_page.sh SOURCE_TREE
set -u
src=$1
page=$src/dist/krd.1
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
fail=0

LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$page" > "$work/man.txt" 2> "$work/warnings"
groff -t -man -ww -z -Tutf8 "$page" 2>> "$work/warnings"
[ -s "$work/warnings" ] && { echo "man -l warns:"; cat "$work/warnings"; fail=1; }
col -b < "$work/man.txt" > "$work/page.txt"
[ -s "$work/page.txt" ] || { echo "man -l rendered nothing"; exit 1; }

# Each option is the tag of an entry: a line that begins with it.
letters=$(sed -n 's/.*letters = "\([^"]*\)".*/\1/p' "$src/cli/cmd_krd.cpp" | head -1 | tr -d :)
[ -n "$letters" ] || { echo "no option letters found in cli/cmd_krd.cpp"; exit 1; }
options=(--help --version -nexus_files info error)
for ((i = 0; i < ${#letters}; i++)); do options+=("-${letters:i:1}"); done
for o in "${options[@]}"; do
    grep -Eq -- "^ {7}(.*, )?$o(,| |\$)" "$work/page.txt" || { echo "no entry for $o"; fail=1; }
done

version=$(sed -n 's/.*KRD_VERSION = "\([^"]*\)".*/\1/p' "$src/cli/report.h")
grep -q "^\.TH KRD 1 [^ ]* \"krd $version\"" "$page" || { echo "the page does not name version $version"; fail=1; }
exit $fail
