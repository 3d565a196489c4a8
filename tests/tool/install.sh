#!/bin/bash
# cmake --install puts krd, its man page and its completion where a system
# looks for them, under a prefix and under DESTDIR.
#
#   install.sh BUILD_TREE
set -u
build=$1
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
fail=0
installed() {  # root
    for f in bin/krd share/man/man1/krd.1 share/bash-completion/completions/krd; do
        [ -f "$1/$f" ] || { echo "$f is not installed under $1"; fail=1; }
    done
    [ -x "$1/bin/krd" ] || { echo "$1/bin/krd is not executable"; fail=1; }
}

cmake --install "$build" --prefix "$work/prefix" > /dev/null || exit 1
installed "$work/prefix"
"$work/prefix/bin/krd" --version | grep -q '^KRD Product ID' || { echo "the installed krd does not run"; fail=1; }
MANWIDTH=80 man -l "$work/prefix/share/man/man1/krd.1" 2> /dev/null | grep -q 'krd - list and display' ||
    { echo "the installed man page does not render"; fail=1; }

DESTDIR=$work/stage cmake --install "$build" --prefix /usr/local > /dev/null || exit 1
installed "$work/stage/usr/local"
exit $fail
