#!/bin/bash
# Runs one end-to-end case: builds its dump, runs krd, compares the output.
#
# A case is a folder holding:
#   dump.pmdm   manifest of the dump, built to dump.pmd (optional)
#   setup       script run first in the work folder (optional); it sees
#               KRD, MKPMD, CASE, WORK, SRC (source tree), BIN (build tree)
#   path        krd's PATH, one line, @WORK@ standing for the work folder
#               (optional; default: WORK/bin in front of the caller's PATH)
#   args        krd's arguments, one per line (optional, default: dump.pmd)
#   env         further environment of krd, NAME=VALUE one per line (optional)
#   stdout      expected standard output
#   stderr      expected standard error (optional, default: empty)
#   status      expected exit status (optional, default: 0)
#   files/      further files expected in the work folder afterwards (optional)
#   absent      names of files that must not exist afterwards, one per line (optional)
# In the expected files a line "@header@" stands for the report's header
# lines and "@usage@" for the usage text, both kept once in shared/.
# krd runs in a fresh work folder with "krd" as its argv[0].
set -u
KRD=$1 MKPMD=$2 CASE=$3 WORK=$4
SRC=${5:-} BIN=${6:-}
export KRD MKPMD CASE WORK SRC BIN
rm -rf "$WORK" && mkdir -p "$WORK" && cd "$WORK" || exit 2

if [ -f "$CASE/dump.pmdm" ]; then
    "$MKPMD" "$CASE/dump.pmdm" dump.pmd || { echo "mkpmd failed"; exit 2; }
fi
if [ -x "$CASE/setup" ]; then
    "$CASE/setup" || { echo "setup failed"; exit 2; }
fi

args=()
if [ -f "$CASE/args" ]; then
    while IFS= read -r a || [ -n "$a" ]; do args+=("$a"); done < "$CASE/args"
else
    args=(dump.pmd)
fi

krd_path="$WORK/bin:$PATH"
if [ -f "$CASE/path" ]; then
    krd_path=$(sed "s|@WORK@|$WORK|g" "$CASE/path")
fi
env_vars=()
if [ -f "$CASE/env" ]; then
    while IFS= read -r e || [ -n "$e" ]; do env_vars+=("$e"); done < "$CASE/env"
fi
( export PATH=$krd_path; for e in "${env_vars[@]}"; do export "$e"; done
  exec -a krd "$KRD" "${args[@]}" ) > out.stdout 2> out.stderr
echo $? > out.status

shared=$(dirname "$0")/shared
expand() {  # expected file -> stdout, the shared lines put in
    awk -v header="$shared/header" -v usage="$shared/usage" '
        function put(f,  line) { while ((getline line < f) > 0) print line; close(f) }
        $0 == "@header@" { put(header); next }
        $0 == "@usage@" { put(usage); next }
        { print }' "$1"
}

fail=0
compare() {  # expected actual label
    local want=$1
    if grep -qx -e '@header@' -e '@usage@' "$1" 2>/dev/null; then
        want=$WORK/.expected
        expand "$1" > "$want"
    fi
    if ! cmp -s "$want" "$2"; then
        echo "--- $3 differs (expected vs actual):"
        diff -u "$want" "$2" | head -200
        fail=1
    fi
}
compare "$CASE/stdout" out.stdout stdout
if [ -f "$CASE/stderr" ]; then compare "$CASE/stderr" out.stderr stderr
else compare /dev/null out.stderr stderr; fi
if [ -f "$CASE/status" ]; then compare "$CASE/status" out.status status
else echo 0 > .status0 && compare .status0 out.status status; fi
if [ -d "$CASE/files" ]; then
    for f in "$CASE"/files/*; do
        compare "$f" "$WORK/$(basename "$f")" "$(basename "$f")"
    done
fi
if [ -f "$CASE/absent" ]; then
    while IFS= read -r name; do
        [ -e "$WORK/$name" ] && { echo "--- $name should not exist"; fail=1; }
    done < "$CASE/absent"
fi
exit $fail
