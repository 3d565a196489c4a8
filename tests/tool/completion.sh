#!/bin/bash
# The bash completion: the options of the command line and its subcommands,
# file names where they belong (the dump's *.pmd first), nothing for numbers.
#
#   completion.sh SOURCE_TREE
set -u
src=$1
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
cd "$work" || exit 2
. "$src/dist/krd.bash-completion"
fail=0

# Completes the last word of the line given as words; prints the candidates
# sorted, on one line.
candidates() {
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    _krd krd "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -sd ' '
}
expect() {  # expected candidates, then the words
    local want=$1
    shift
    local got
    got=$(candidates "$@")
    [ "$got" = "$want" ] || { printf '%s: got "%s", expected "%s"\n' "$*" "$got" "$want"; fail=1; }
}

mkdir boards && touch a.pmd "board 7.PMD" app.elf notes.txt sigs.zip
expect '--help --version -C -N -T -b -c -e -g -h -l -m -n -nexus_files -o -p -s -t -v -x -z' krd -
expect '--help --version -T -h -o -t -v' krd info -
expect '--help --version -h -o -v' krd e -
expect '-n -nexus_files' krd x.pmd -n
# The dump: only *.pmd while there are some, and the subcommands first.
expect 'a.pmd board 7.PMD boards error info' krd ''
expect 'board 7.PMD boards' krd -l b
expect 'a.pmd board 7.PMD boards' krd info -t ''
expect 'app.elf' krd -C 2 ap
expect 'sigs.zip' krd -z s
expect 'a.pmd app.elf board 7.PMD boards notes.txt sigs.zip' krd -e ''
expect 'notes.txt' krd error -o n
for option in -C -p -x -s -b; do expect '' krd "$option" ''; done
expect '' krd error -v ''

# Every option letter of the command line is offered.
letters=$(sed -n 's/.*letters = "\([^"]*\)".*/\1/p' "$src/cli/cmd_krd.cpp" | head -1 | tr -d :)
offered=" $(candidates krd -) "
for ((i = 0; i < ${#letters}; i++)); do
    [[ $offered == *" -${letters:i:1} "* ]] || { echo "-${letters:i:1} is not offered"; fail=1; }
done
exit $fail
