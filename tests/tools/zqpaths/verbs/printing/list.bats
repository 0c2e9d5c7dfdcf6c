# zqpaths list: all paths. Here is also what holds for whatever is printed: full devices, closed
# pipes and standard output that is not there.

load ../setup

@test "odd names come back to the byte" {
    make_odd_set s.zqp
    zqpaths list s.zqp -0 | cmp - s.zqp.paths
}

@test "a tree of odd names comes back as find sees it" {
    make_odd_tree tree
    zqpaths index s.zqp --hidden tree
    zqpaths list s.zqp -0 | sort -z >got
    find tree ! -type d -print0 | sort -z | cmp - got
}

@test "only a folder is listed, by whole names" {
    make_set s.zqp /usr/lib/x /usr/library/y /usr/lib/a/b /usr/lib usr/lib/z
    [ "$(zqpaths list s.zqp --under /usr/lib)" = $'/usr/lib/x\n/usr/lib/a/b\n/usr/lib' ]
    [ "$(zqpaths list s.zqp --under /usr//lib/)" = $'/usr/lib/x\n/usr/lib/a/b\n/usr/lib' ]
    [ "$(zqpaths list s.zqp --under usr)" = usr/lib/z ]
}

@test "only some depth is listed" {
    make_set s.zqp /usr/lib/x /usr/lib/a/b top
    [ "$(zqpaths list s.zqp --depth 1)" = top ]
    [ "$(zqpaths list s.zqp --under /usr/lib --depth 1)" = /usr/lib/x ]
}

@test "only what matches a glob is listed" {
    make_set s.zqp a/x.c a/x.h b/y.c
    [ "$(zqpaths list s.zqp --glob '*.c')" = $'a/x.c\nb/y.c' ]
    [ "$(zqpaths list s.zqp --glob 'a/*')" = $'a/x.c\na/x.h' ]
    [ "$(zqpaths list s.zqp --under a --glob '*.c')" = a/x.c ]
    fails_with 2 'pattern [b-a]' zqpaths list s.zqp --glob '[b-a]'
}

@test "nothing to list is a negative answer, and a folder that is not there is told" {
    make_set s.zqp usr/a.c $'usr\e/b'
    fails_with 1 'zqpaths: s.zqp has no folder /usr/x' zqpaths list s.zqp --under /usr/x
    fails_with 1 'has no folder \x1B' zqpaths list s.zqp --walk --under $'\e'
    run -1 --separate-stderr zqpaths list -q s.zqp --under /usr/x
    [ -z "$output$stderr" ]
    # The folder is there, the rest is not.
    local part
    for part in '--glob *.h' '--under usr --glob *.h' '--under usr --depth 0' '--depth 0'; do
        # shellcheck disable=SC2086
        run -1 --separate-stderr zqpaths list s.zqp $part
        [ -z "$output$stderr" ]
    done
    run -0 zqpaths list s.zqp --under usr/a.c # a path is in a folder of its name
}

@test "the walk has the same paths in an order of its own" {
    make_set s.zqp b/x a/y b/z
    zqpaths list s.zqp --walk | sort >walked
    zqpaths list s.zqp | sort | cmp - walked
    [ "$(zqpaths list s.zqp --walk --under a)" = a/y ]
    [ "$(zqpaths list s.zqp --walk --under a --json --fields name)" = '{"name":"y"}' ]
    [ "$(zqpaths list s.zqp --walk --under a --csv)" = $'path\r\na/y\r' ]
    fails_with 2 '--walk gives no numbers' zqpaths list s.zqp --walk --fields number,path
}

@test "a full device is a failure that is told" {
    make_set s.zqp a
    run --separate-stderr -2 bash -c '"$ZQPATHS" list s.zqp >/dev/full'
    [[ $stderr == *'standard output: No space left on device'* ]]
    run -2 bash -c '"$ZQPATHS" --help >/dev/full'
}

@test "standard output that is closed from the start is a failure, and no file gets the paths" {
    make_set s.zqp a
    cp s.zqp before
    run --separate-stderr -2 bash -c '"$ZQPATHS" list s.zqp >&-'
    [[ $stderr == *'standard output: Bad file descriptor'* ]]
    run -2 bash -c '"$ZQPATHS" list s.zqp <&- >&- 2>&-'
    cmp s.zqp before
}

@test "a closed pipe ends it quietly and as the system would" {
    seq 100000 | zqpaths index s.zqp --list -
    run --separate-stderr -141 bash -c 'set -o pipefail; "$ZQPATHS" list s.zqp | head -n 1'
    [ "$output" = 1 ]
    [ -z "$stderr" ]
    # Also where whoever started it takes no notice of such signals.
    run --separate-stderr -141 bash -c '
        trap "" PIPE
        set -o pipefail
        "$ZQPATHS" list s.zqp --json | head -n 1'
    [ -z "$stderr" ]
}

@test "one terminator at a time is asked for" {
    make_set s.zqp a
    fails_with 2 '--null excludes --json' zqpaths list s.zqp -0 --json
    fails_with 2 'excludes --csv' zqpaths list s.zqp -0 --csv
    fails_with 2 'excludes --csv' zqpaths list s.zqp --csv --json
}

@test "a set that is not there is told by name" {
    fails_with 2 'none.zqp' zqpaths list none.zqp
}
