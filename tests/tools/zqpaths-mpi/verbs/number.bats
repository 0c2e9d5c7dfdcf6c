# zqpaths-mpi number: each rank looks through its part of the set, the lowest number wins.

load ../setup

@test "numbers are those of one process, in the order asked" {
    make_set s.zqp a/x b a/y b
    equal_with_any_team number s.zqp a/y a/x b a/y
    [ "$(cat got)" = $'3\n1\n2\n3' ]
    equal_with_any_team number s.zqp --json b nothing a/x
}

@test "paths come from a list or from standard input, also in many batches" {
    make_numbered_set s.zqp 40000
    zqpaths list s.zqp >list
    team 3 number s.zqp --list list | cmp - <(seq 1 40000)
    tail -n 300 list | team 2 number s.zqp --list - | cmp - <(seq 39701 40000)
    [ -z "$(team 2 number s.zqp --list /dev/null)" ]
    fails_with 2 'PATH or --list is required' team 2 number s.zqp
    printf 'a\n\n' >empty_line
    fails_with 2 'line 2 is empty' team 2 number s.zqp --list empty_line
}

@test "names with newlines come from a list that is ended by NUL" {
    make_odd_set s.zqp
    team 2 number s.zqp --list s.zqp.paths --list-null >got
    local paths
    mapfile -d '' paths <s.zqp.paths
    zqpaths number s.zqp -- "${paths[@]}" | cmp - got
}

@test "a path that is not there or is gone is told, the others are printed" {
    mkdir tree
    touch tree/{a,b}
    zqpaths index -q s.zqp tree
    rm tree/b
    zqpaths update -q s.zqp
    run --separate-stderr -1 team 2 number s.zqp tree/b $'no\nline' tree/a
    [ "$output" = $'2\n1' ]
    [[ $stderr == *'zqpaths-mpi: no\x0Aline: is not in s.zqp'* ]]
    [[ $stderr == *'zqpaths-mpi: tree/b: is gone'* ]]
    run --separate-stderr -1 team 2 number -q s.zqp none
    [[ $output$stderr != *'is not in'* ]]
}
