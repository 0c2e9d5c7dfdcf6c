#!/usr/bin/env bats
load ../setup

@test "a shuffled set has each path once" {
    make_odd_set odd.zqp
    zqpaths shuffle odd.zqp --seed 3 -0 | sort -z >shuffled
    sort -z odd.zqp.paths | cmp - shuffled
}

@test "the order depends on the seed alone" {
    make_odd_set odd.zqp
    zqpaths shuffle odd.zqp --seed 3 -0 >one
    zqpaths shuffle odd.zqp --seed 3 -0 >again
    zqpaths shuffle odd.zqp --seed 4 -0 >other
    cmp one again
    run -1 cmp -s one other
    run -1 cmp -s one odd.zqp.paths
}

@test "the order is the same on every machine" {
    make_set ten.zqp p{1..10}
    run -0 zqpaths shuffle ten.zqp --seed 7
    [ "${lines[*]}" = "p10 p4 p8 p9 p2 p3 p1 p5 p6 p7" ]
}

@test "sets of more than one slice are shuffled whole" {
    seq -f 'folder %.0f/file' 25000 >list
    zqpaths index many.zqp --list list
    zqpaths shuffle many.zqp --seed 1 >shuffled
    sort list >sorted
    sort shuffled | cmp - sorted
    # Neighbours end up far from one another.
    [ "$(head -n 100 shuffled | sort | comm -12 - <(head -n 1000 list | sort) | wc -l)" -lt 30 ]
}

@test "one path is its own order" {
    make_set one.zqp only
    run -0 zqpaths shuffle one.zqp --seed 9
    [ "$output" = only ]
}

@test "a failed write is an error" {
    make_odd_set odd.zqp
    run -2 --separate-stderr bash -c '"$ZQPATHS" shuffle odd.zqp --seed 3 >/dev/full'
    [[ $stderr == *"standard output"* ]]
}

@test "a reader that has enough ends it quietly" {
    seq 200000 >list
    zqpaths index many.zqp --list list
    run -141 --separate-stderr bash -c 'set -o pipefail; "$ZQPATHS" shuffle many.zqp --seed 1 | head -n 1 >/dev/null'
    [ -z "$stderr" ]
}
