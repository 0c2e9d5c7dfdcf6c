# zqpaths merge: sets of sets, and copies of all paths in one file.

load ../setup

@test "a name that ends with .zqs makes a set of sets of all paths, repeated ones, too" {
    make_set a.zqp x b/y x
    make_set b.zqp z b/y
    run -0 --separate-stderr zqpaths merge out.zqs b.zqp a.zqp
    [ -z "$output" ]
    [ "$stderr" = 'zqpaths: out.zqs holds 5 paths' ]
    [ "$(zqpaths list out.zqs)" = $'z\nb/y\nx\nb/y\nx' ]
    jq -e '.zqs == 1 and [.files[].path] == ["b.zqp", "a.zqp"]' out.zqs
    mkdir elsewhere
    mv out.zqs a.zqp b.zqp elsewhere
    [ "$(zqpaths get elsewhere/out.zqs 3)" = x ]
}

@test "sets of sets are taken apart, wherever they are" {
    mkdir -p d/e
    make_set d/a.zqp x
    make_set d/e/b.zqp y
    zqpaths merge -q d/one.zqs d/a.zqp d/e/b.zqp
    zqpaths merge -q d/e/two.zqs d/one.zqs d/a.zqp
    [ "$(zqpaths list d/e/two.zqs)" = $'x\ny\nx' ]
    jq -e '[.files[].path] == ["../a.zqp", "b.zqp"]' d/e/two.zqs
    rm d/one.zqs
    [ "$(zqpaths get d/e/two.zqs 3)" = x ]
}

@test "--into copies the segments of all sets, gone paths as gone" {
    mkdir data
    touch data/a data/b
    zqpaths index -q a.zqp data
    rm data/a
    zqpaths update -q a.zqp
    make_odd_set b.zqp
    zqpaths compact -q b.zqp p.zqp --packed
    zqpaths merge -q s.zqs a.zqp b.zqp
    run -0 --separate-stderr zqpaths merge --into out.zqp s.zqs p.zqp a.zqp
    [ -z "$output" ]
    [[ $stderr == 'zqpaths: out.zqp holds '*' paths' ]]
    for set in s.zqs p.zqp a.zqp; do zqpaths list -0 "$set"; done >expected
    zqpaths list -0 out.zqp | cmp - expected
    [ "$(zqpaths list --gone out.zqp)" = $'data/a\ndata/a' ]
    [ "$(zqpaths info --json out.zqp | jq -c .segments)" = '{"count":4,"packed":1}' ]
    zqpaths verify -q out.zqp
}

@test "--into makes no set of sets" {
    make_set a.zqp x
    fails_with 2 'out.zqs: is the name of a set of sets; --into makes one file, as out.zqp' \
        zqpaths merge --into out.zqs a.zqp
    [ ! -e out.zqs ]
}

@test "a set that is missing, damaged or no set leaves nothing" {
    make_set a.zqp x y
    echo nonsense >bad.zqp
    cp a.zqp cut.zqp
    truncate --size -1 cut.zqp
    local out
    for out in out.zqs '--into out.zqp'; do
        # shellcheck disable=SC2086
        {
            fails_with 2 'none.zqp: No such file' zqpaths merge $out a.zqp none.zqp
            fails_with 2 'bad.zqp: is no saved set' zqpaths merge $out a.zqp bad.zqp
            fails_with 3 'cut.zqp: has ' zqpaths merge $out a.zqp cut.zqp
        }
    done
    damage a.zqp 4200
    fails_with 3 'a.zqp: segment 1 at byte 4096' zqpaths merge --into out.zqp a.zqp
    [ "$(echo out*)" = 'out*' ]
}

@test "a set without paths adds none, and some must have some" {
    make_set a.zqp x
    mkdir data
    touch data/a
    zqpaths index -q e.zqp data
    rm data/a
    zqpaths update -q e.zqp
    zqpaths compact -q e.zqp
    zqpaths merge -q out.zqs e.zqp a.zqp e.zqp
    [ "$(zqpaths list out.zqs)" = x ]
    zqpaths merge -q --into out.zqp e.zqp a.zqp
    [ "$(zqpaths list out.zqp)" = x ]
    fails_with 2 'no paths in these sets' zqpaths merge n.zqs e.zqp
    fails_with 2 'no paths in these sets' zqpaths merge --into n.zqp e.zqp
    [ "$(echo n.*)" = 'n.*' ]
}

@test "what is there is replaced only with --force, a set of sets by a set and a set by one of sets" {
    make_set a.zqp x
    make_set b.zqp y z
    zqpaths merge -q all.zqs a.zqp b.zqp
    fails_with 2 'all.zqs: is there already; --force replaces it' zqpaths merge all.zqs b.zqp
    run -0 --separate-stderr zqpaths merge --force all.zqs all.zqs b.zqp
    [ "$stderr" = 'zqpaths: all.zqs holds 5 paths' ]
    [ "$(zqpaths list all.zqs)" = $'x\ny\nz\ny\nz' ]
    fails_with 2 'all.zqs: is there already; --force replaces it' \
        zqpaths index all.zqs --list - <<<w
    run -0 --separate-stderr zqpaths index --force all.zqs --list - <<<w
    [ "$stderr" = 'zqpaths: all.zqs holds 1 path' ]
    [ "$(zqpaths list all.zqs)" = w ]
    run -0 --separate-stderr zqpaths merge --force all.zqs a.zqp b.zqp
    [ "$stderr" = 'zqpaths: all.zqs holds 3 paths' ]
    [ "$(zqpaths list all.zqs)" = $'x\ny\nz' ]
    zqpaths merge -q --force --into a.zqp all.zqs b.zqp
    [ "$(zqpaths list a.zqp)" = $'x\ny\nz\ny\nz' ]
    fails_with 3 'a.zqp: was changed since the set was made of it' zqpaths list all.zqs
    echo text >notes.zqs
    fails_with 2 'notes.zqs: is no saved set' zqpaths merge --force notes.zqs b.zqp
    [ "$(cat notes.zqs)" = text ]
}

@test "a set of sets does not take the place of one of its own files" {
    make_set a.zqs x
    fails_with 2 'a.zqs: cannot be a part of itself' zqpaths merge --force a.zqs a.zqs
    [ "$(zqpaths list a.zqs)" = x ]
}
