#!/bin/bash
# A report that cannot be written completely: one line on standard error and
# status 1; a reader that closes the pipe ends the run without a word.
#
#   write_failures.sh KRD DUMP
set -u
krd=$(realpath "$1") dump=$(realpath "$2")
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
cd "$work" || exit 2
fail=0
expect() {  # label status stderr-text expected-status expected-stderr
    if [ "$2" != "$4" ] || [ "$3" != "$5" ]; then
        printf '%s: status %s, stderr "%s"; expected %s, "%s"\n' "$1" "$2" "$3" "$4" "$5"
        fail=1
    fi
}
full="krd: error writing report: No space left on device"

"$krd" "$dump" > /dev/full 2> err; expect "report to /dev/full" $? "$(cat err)" 1 "$full"
"$krd" -o /dev/full "$dump" 2> err; expect "-o /dev/full" $? "$(cat err)" 1 "$full"
"$krd" --help > /dev/full 2> err; expect "--help to /dev/full" $? "$(cat err)" 1 "$full"
"$krd" "$dump" >&- 2> err; expect "closed standard output" $? "$(cat err)" 1 \
    "krd: error writing report: Bad file descriptor"
# A failing command line keeps its own words and status.
"$krd" -t "$dump" > /dev/full 2> err; expect "-t to /dev/full" $? "$(cat err)" 1 ""

# The reader closes the pipe before krd writes its first byte: the fifo
# "closed" tells the writing side when.
mkfifo closed
{ read -r _ < closed; "$krd" "$dump" 2> err; echo $? > status; } | { exec 0<&-; echo > closed; }
expect "pipe closed early" "$(cat status)" "$(cat err)" 141 ""
{ read -r _ < closed; trap '' PIPE; "$krd" "$dump" 2> err; echo $? > status; } | { exec 0<&-; echo > closed; }
expect "pipe closed early, SIGPIPE ignored" "$(cat status)" "$(cat err)" 1 ""
exit $fail
