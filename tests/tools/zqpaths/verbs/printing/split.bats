#!/usr/bin/env bats
load ../setup

@test "every reader gets each path once, and shares differ by one at most" {
    make_odd_set odd.zqp
    local count rank of
    count=$(tr -cd '\0' <odd.zqp.paths | wc -c)
    for of in 1 2 3 7 64 1000; do
        : >all
        for ((rank = 0; rank < of && rank < 70; ++rank)); do
            zqpaths split odd.zqp --rank "$rank" --of "$of" -0 >share
            local size
            size=$(tr -cd '\0' <share | wc -c)
            ((size == count / of || size == count / of + 1))
            cat share >>all
        done
        sort -z odd.zqp.paths | cmp - <(sort -z all)
    done
}

@test "paths are dealt in the order of their numbers" {
    make_set ten.zqp p{1..10}
    run -0 zqpaths split ten.zqp --rank 0 --of 3
    [ "${lines[*]}" = "p1 p4 p7 p10" ]
    run -0 zqpaths split ten.zqp --rank 2 --of 3
    [ "${lines[*]}" = "p3 p6 p9" ]
}

@test "one reader gets the set as it is" {
    make_odd_set odd.zqp
    zqpaths split odd.zqp --rank 0 --of 1 -0 | cmp - odd.zqp.paths
}

@test "a reader past the last path gets nothing" {
    make_set two.zqp a b
    run -0 zqpaths split two.zqp --rank 18446744073709551614 --of 18446744073709551615
    [ -z "$output" ]
}

@test "numbers come with --json" {
    make_set two.zqp a b
    run -0 zqpaths split two.zqp --rank 1 --of 2 --json
    [ "$output" = '{"number":2,"path":"b"}' ]
}

@test "a rank beyond the readers and no readers are refused" {
    make_set one.zqp p
    fails_with 2 "--rank 4: of 4 readers the last has rank 3" \
        zqpaths split one.zqp --rank 4 --of 4
    fails_with 2 "--of 0: there is no reader" zqpaths split one.zqp --rank 0 --of 0
}
