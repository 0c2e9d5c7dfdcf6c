# zqpaths diff: paths only in one of two sets.

load ../setup

@test "paths of one set alone are printed, first those of the first" {
    make_set a.zqp x b/y z
    make_set b.zqp z w x b/v
    run -1 zqpaths diff a.zqp b.zqp
    [ "$output" = $'< b/y\n> w\n> b/v' ]
}

@test "order and repetition make no difference" {
    make_set a.zqp x y x
    make_set b.zqp y x y
    run -0 zqpaths diff a.zqp b.zqp
    [ -z "$output" ]
}

@test "a path is printed once" {
    make_set a.zqp x x y
    make_set b.zqp y v v
    run -1 zqpaths diff a.zqp b.zqp
    [ "$output" = $'< x\n> v' ]
}

@test "only the bytes count" {
    make_set a.zqp a/b a//b $'\xff'
    make_set b.zqp a/b a/b/ $'\xef\xbf\xbd'
    run -1 zqpaths diff a.zqp b.zqp
    [ "$output" = $'< a//b\n< \xff\n> a/b/\n> \xef\xbf\xbd' ]
}

@test "objects tell the side, and the number there" {
    make_set a.zqp x y
    make_set b.zqp x z $'\xff'
    run -1 zqpaths diff --json a.zqp b.zqp
    [ "$output" = $'{"in":"first","number":2,"path":"y"}\n{"in":"second","number":2,"path":"z"}\n{"in":"second","number":3,"path":"\xef\xbf\xbd","bytes":"/w=="}' ]
}

@test "odd names are told from one another" {
    make_odd_set a.zqp
    run -0 zqpaths diff a.zqp a.zqp
    zqpaths list a.zqp -0 | sort -z -R --random-source=a.zqp >shuffled
    { cat shuffled; printf 'one more\0'; } | zqpaths index b.zqp --list - -0
    run -1 zqpaths diff a.zqp b.zqp
    [ "$output" = '> one more' ]
}

@test "many paths differ as comm says" {
    seq -f 'd/%.0f' 1 2 60001 | sort >a
    seq -f 'd/%.0f' 1 3 60001 | sort >b
    zqpaths index a.zqp --list a
    zqpaths index b.zqp --list b
    zqpaths diff a.zqp b.zqp >got || [ $? = 1 ]
    { comm -23 a b | sed 's/^/< /'; comm -13 a b | sed 's/^/> /'; } | cmp - got
}

@test "a set that is not there is a failure" {
    make_set a.zqp x
    fails_with 2 'none.zqp' zqpaths diff a.zqp none.zqp
}

@test "a set is compared with a directory, both ways" {
    mkdir -p tree/a tree/.hidden
    touch tree/x tree/a/y tree/.hidden/z
    zqpaths index -q s.zqp tree
    zqpaths diff s.zqp tree
    rm tree/x
    touch tree/a/new
    run -1 zqpaths diff s.zqp tree
    [ "$output" = $'< tree/x\n> tree/a/new' ]
    run -1 zqpaths diff --json s.zqp tree/a
    [ "$output" = '{"in":"second","path":"tree/a/new"}' ]
    zqpaths index -q --force s.zqp tree --hidden
    zqpaths diff s.zqp tree
    cp s.zqp before.zqp
    run -0 zqpaths diff s.zqp tree
    cmp s.zqp before.zqp
}
