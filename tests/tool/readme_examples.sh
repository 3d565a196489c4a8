#!/bin/bash
# Runs every example of the README: each indented line that begins with "$ "
# is a command, run from a copy of the top of the tree (build/krd and the
# files of build/examples/). It must exit with status 0, and the indented
# lines under it must appear in its output in that order; "..." stands for
# lines left out. Trailing blanks are not compared.
#
#   readme_examples.sh README BUILD_TREE
set -u
readme=$(realpath "$1") build=$(realpath "$2")
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
mkdir -p "$work/build/examples" "$work/bin" || exit 2
ln -s "$build/krd" "$work/build/krd"
for f in "$build"/examples/*; do
    [ -f "$f" ] && ln -s "$f" "$work/build/examples/"
done
# The cross tool under the name krd looks for first, as the example's
# end-to-end case has it.
cross=$(command -v powerpc-linux-gnu-addr2line) && ln -s "$cross" "$work/bin/powerpc-ose-eabi-addr2line"
export PATH=$work/bin:$PATH

fail=0 count=0
run() {  # command, expected lines (one per line)
    local command=$1 expected=$2 output status
    count=$((count + 1))
    output=$(cd "$work" && bash -c "$command" 2> "$work/stderr")
    status=$?
    if [ $status -ne 0 ]; then
        printf '%s: exit status %d\n%s\n' "$command" $status "$(cat "$work/stderr")"
        fail=1
        return
    fi
    # Each expected line is searched for behind the one found before it.
    local rest line
    rest=$(sed 's/[[:blank:]]*$//' <<<"$output")
    while IFS= read -r line; do
        [ -z "$line" ] || [ "$line" = "..." ] && continue
        if ! grep -qxF -- "$line" <<<"$rest"; then
            printf '%s: no line "%s" (in order)\n' "$command" "$line"
            fail=1
            return
        fi
        rest=$(L=$line awk 'found {print} !found && $0 == ENVIRON["L"] {found = 1}' <<<"$rest")
    done <<<"$expected"
}

command= expected=
while IFS= read -r line || [ -n "$line" ]; do
    if [[ $line == '    $ '* ]]; then
        [ -n "$command" ] && run "$command" "$expected"
        command=${line#'    $ '} expected=
    elif [ -n "$command" ] && [[ $line == '    '* ]]; then
        expected+=$(sed 's/[[:blank:]]*$//' <<<"${line#    }")$'\n'
    elif [ -n "$command" ] && [ -n "$line" ]; then
        run "$command" "$expected"
        command= expected=
    fi
done < "$readme"
[ -n "$command" ] && run "$command" "$expected"

[ $count -gt 0 ] || { echo "no examples found in $readme"; fail=1; }
exit $fail
