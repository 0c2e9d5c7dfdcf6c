# zqpaths compact: a set written anew, as images or packed.

load ../setup

# is_packed SET - all segments are
is_packed() {
    [ "$(zqpaths info "$1" --json | jq '.segments.count == .segments.packed')" = true ]
}

@test "a packed set has the same paths and numbers, in less room" {
    make_odd_set s.zqp
    seq -f 'some/folder/with a name/%.0f' 20000 >list
    zqpaths add -q s.zqp --list list
    zqpaths compact s.zqp p.zqp --packed
    is_packed p.zqp
    [ $(($(stat -c %s p.zqp) * 2)) -lt "$(stat -c %s s.zqp)" ]
    cmp <(zqpaths list s.zqp -0) <(zqpaths list p.zqp -0)
    [ "$(zqpaths get p.zqp 20000)" = "$(zqpaths get s.zqp 20000)" ]
    cmp <(zqpaths find s.zqp '*7*' -0) <(zqpaths find p.zqp '*7*' -0)
    cmp <(zqpaths list s.zqp -0 --under odd) <(zqpaths list p.zqp -0 --under odd)
    [ "$(zqpaths number p.zqp 'some/folder/with a name/777')" = \
        "$(zqpaths number s.zqp 'some/folder/with a name/777')" ]
    zqpaths verify p.zqp
}

@test "a packed set becomes images again" {
    make_odd_set s.zqp
    zqpaths compact s.zqp --packed
    is_packed s.zqp
    zqpaths compact s.zqp
    run ! is_packed s.zqp
    zqpaths list s.zqp -0 | cmp - s.zqp.paths
}

@test "what a set grew by becomes one" {
    make_set s.zqp a
    zqpaths add s.zqp --list - <<<b
    zqpaths add s.zqp --list - <<<c
    local size
    size=$(stat -c %s s.zqp)
    zqpaths compact s.zqp
    [ "$(stat -c %s s.zqp)" -lt "$size" ]
    [ "$(zqpaths info s.zqp --json | jq .segments.count)" = 1 ]
    [ "$(zqpaths list s.zqp)" = $'a\nb\nc' ]
}

@test "more can be added to a packed set" {
    make_set s.zqp a/x b
    zqpaths compact s.zqp --packed
    zqpaths add s.zqp --list - <<<new/characters
    [ "$(zqpaths list s.zqp)" = $'a/x\nb\nnew/characters' ]
}

@test "the number of paths is told unless -q" {
    make_set s.zqp a b
    run --separate-stderr zqpaths compact s.zqp
    [ "$stderr" = 'zqpaths: s.zqp holds 2 paths' ]
    run --separate-stderr zqpaths compact -q s.zqp t.zqp
    [ -z "$output$stderr" ]
}

@test "another set that is there is replaced only with --force" {
    make_set s.zqp a
    make_set t.zqp b
    fails_with 2 't.zqp: is there already; --force replaces it' zqpaths compact s.zqp t.zqp
    [ "$(zqpaths list t.zqp)" = b ]
    zqpaths compact --force s.zqp t.zqp
    [ "$(zqpaths list t.zqp)" = a ]
}

@test "what is no set stays as it is" {
    fails_with 2 'none.zqp: No such file or directory' zqpaths compact none.zqp
    [ ! -e none.zqp ]
    echo text >text
    fails_with 2 'text: is no saved set' zqpaths compact text
    [ "$(cat text)" = text ]
}

@test "a damaged set stays as it is" {
    make_set s.zqp a/x b
    damage s.zqp 4096
    cp s.zqp before
    fails_with 3 's.zqp' zqpaths compact s.zqp
    cmp before s.zqp
    fails_with 3 's.zqp' zqpaths compact s.zqp t.zqp
    [ ! -e t.zqp ]
}
