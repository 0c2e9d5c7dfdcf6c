# zqpaths merge: one set of many, each path once.

load ../setup

@test "paths stand where they are met first" {
    make_set a.zqp x b/y x
    make_set b.zqp z b/y b/w
    make_set c.zqp b/w x v
    zqpaths merge out.zqp a.zqp b.zqp c.zqp
    [ "$(zqpaths list out.zqp)" = $'x\nb/y\nz\nb/w\nv' ]
}

@test "sets of different characters are merged" {
    make_odd_set a.zqp
    make_set b.zqp $'\xc4\x80' plain.txt $'\xe2\x82\xac'
    zqpaths merge out.zqp a.zqp b.zqp
    zqpaths list out.zqp -0 >got
    { cat a.zqp.paths; printf '\xc4\x80\0\xe2\x82\xac\0'; } | cmp - got
}

@test "a set merged with itself is the set without repetitions" {
    make_set a.zqp x y x
    zqpaths merge out.zqp a.zqp a.zqp
    [ "$(zqpaths list out.zqp)" = $'x\ny' ]
}

@test "many paths are merged as sort and awk would" {
    seq -f 'n/%.0f' 1 2 60000 >a
    seq -f 'n/%.0f' 1 3 60000 >b
    zqpaths index a.zqp --list a
    zqpaths index b.zqp --list b
    zqpaths merge out.zqp a.zqp b.zqp
    zqpaths list out.zqp >got
    cat a b | awk '!seen[$0]++' | cmp - got
}

@test "a set that is there is replaced only with --force, even one of the merged" {
    make_set a.zqp x
    make_set b.zqp y
    fails_with 2 'a.zqp: is there already' zqpaths merge a.zqp a.zqp b.zqp
    [ "$(zqpaths list a.zqp)" = x ]
    zqpaths merge --force a.zqp a.zqp b.zqp
    [ "$(zqpaths list a.zqp)" = $'x\ny' ]
}

@test "a set that cannot be read leaves nothing" {
    make_set a.zqp x
    fails_with 2 'none.zqp' zqpaths merge out.zqp a.zqp none.zqp
    echo nonsense >bad.zqp
    fails_with 2 'bad.zqp' zqpaths merge out.zqp a.zqp bad.zqp
    [ ! -e out.zqp ]
}
