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

@test "nothing to list is no failure" {
    make_set s.zqp a
    run -0 zqpaths list s.zqp --under b
    [ -z "$output" ]
}

@test "the walk has the same paths in an order of its own" {
    make_set s.zqp b/x a/y b/z
    zqpaths list s.zqp --walk | sort >walked
    zqpaths list s.zqp | sort | cmp - walked
    [ "$(zqpaths list s.zqp --walk --under a)" = a/y ]
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

@test "a closed pipe ends it quietly" {
    seq 100000 | zqpaths index s.zqp --list -
    run --separate-stderr -0 bash -c '
        set -o pipefail
        { "$ZQPATHS" list s.zqp; echo $? >status; } | head -n 1'
    [ "$output" = 1 ]
    [ -z "$stderr" ]
    [ "$(<status)" = 0 ]
}

@test "one terminator at a time is asked for" {
    make_set s.zqp a
    fails_with 2 '--null excludes --json' zqpaths list s.zqp -0 --json
}

@test "a set that is not there is told by name" {
    fails_with 2 'none.zqp' zqpaths list none.zqp
}
