#!/usr/bin/env bats
load ../setup

@test "a sample is the front of the shuffled set" {
    make_odd_set odd.zqp
    zqpaths shuffle odd.zqp --seed 5 -0 >shuffled
    zqpaths sample odd.zqp -n 20 --seed 5 -0 >sample
    head -z -n 20 shuffled | cmp - sample
}

@test "a sample has each path at most once" {
    make_odd_set odd.zqp
    zqpaths sample odd.zqp -n 40 --seed 5 -0 | sort -z >sample
    [ "$(tr -cd '\0' <sample | wc -c)" -eq 40 ]
    sort -zu sample | cmp - sample
    [ -z "$(sort -z odd.zqp.paths | comm -z -23 sample - | tr '\0' '\n')" ]
}

@test "the same seed gives the same sample on every machine" {
    make_set ten.zqp p{1..10}
    run -0 zqpaths sample ten.zqp -n 4 --seed 7
    [ "${lines[*]}" = "p10 p4 p8 p9" ]
}

@test "another seed gives another sample" {
    make_odd_set odd.zqp
    zqpaths sample odd.zqp -n 20 --seed 5 -0 >one
    zqpaths sample odd.zqp -n 20 --seed 6 -0 >other
    run -1 cmp -s one other
}

@test "a sample of more than there is has every path" {
    make_odd_set odd.zqp
    zqpaths sample odd.zqp -n 1000000000000 --seed 1 -0 | sort -z >sample
    sort -z odd.zqp.paths | cmp - sample
}

@test "a sample of none is empty" {
    make_odd_set odd.zqp
    run -0 zqpaths sample odd.zqp -n 0 --seed 1
    [ -z "$output" ]
}

@test "numbers come with --json" {
    make_set ten.zqp p{1..10}
    run -0 zqpaths sample ten.zqp -n 1 --seed 7 --json
    [ "$output" = '{"number":10,"path":"p10"}' ]
}

@test "a count that is no number of paths is wrong use" {
    make_set one.zqp p
    local count
    for count in -1 1.5 0x1 '' 18446744073709551616; do
        fails_with 2 "no whole number" zqpaths sample one.zqp --count="$count" --seed 1
    done
}

@test "seeds are decimal" {
    make_odd_set odd.zqp
    zqpaths shuffle odd.zqp --seed 010 -0 >one
    zqpaths shuffle odd.zqp --seed 10 -0 | cmp - one
}

@test "a set that is not there is told by name" {
    fails_with 2 "none.zqp" zqpaths sample none.zqp -n 1 --seed 1
}
