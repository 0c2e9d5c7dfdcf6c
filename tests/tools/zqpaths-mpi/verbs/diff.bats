# zqpaths-mpi diff: hashes are dealt to all ranks.

load ../setup

@test "what differs is what one process prints" {
    make_numbered_set a.zqp 60000
    { seq 20001 65000 | shuf --random-source=<(yes); seq 20001 21000; } | numbered_paths |
        zqpaths index -q b.zqp --list -
    equal_with_any_team diff a.zqp b.zqp
    [ "$(wc -l <got)" -eq 25000 ]
    team 3 diff --csv b.zqp a.zqp >got && false
    zqpaths diff --csv b.zqp a.zqp | cmp - got
}

@test "paths that occur again count once, by their first number" {
    make_set a.zqp x y x only only y
    make_set b.zqp y new x new
    equal_with_any_team diff --json a.zqp b.zqp
    [ "$(jq -c '[.in, .number]' got)" = $'["first",4]\n["second",2]' ]
}

@test "sets of the same paths do not differ, whatever their order" {
    make_set a.zqp x y z
    make_set b.zqp z x y y
    equal_with_any_team diff a.zqp b.zqp
    [ ! -s got ]
}

@test "gone paths are of neither" {
    mkdir tree
    touch tree/{a,b,c}
    zqpaths index -q a.zqp tree
    rm tree/b
    zqpaths update -q a.zqp
    make_set b.zqp tree/a tree/d
    equal_with_any_team diff a.zqp b.zqp
    [ "$(cat got)" = $'< tree/c\n> tree/d' ]
}
