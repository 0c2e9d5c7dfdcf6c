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

@test "with a seed, readers share a shuffle that is another one in each epoch" {
    make_odd_set odd.zqp
    zqpaths split odd.zqp --rank 0 --of 1 --seed 7 -0 >first
    zqpaths shuffle odd.zqp --seed 7 -0 | cmp - first
    local epoch
    for epoch in 1 2; do
        zqpaths split odd.zqp --rank 0 --of 2 --seed 7 --epoch "$epoch" -0 >"share$epoch"
        zqpaths split odd.zqp --rank 1 --of 2 --seed 7 --epoch "$epoch" -0 |
            sort -z - "share$epoch" | cmp - <(sort -z odd.zqp.paths)
    done
    run -1 cmp -s share1 share2
}

@test "shares of a shuffle are the same on every machine" {
    make_set ten.zqp p{1..10}
    [ "$(zqpaths split ten.zqp --rank 1 --of 3 --seed 7 --epoch 5 | tr '\n' ' ')" = "p5 p8 p3 " ]
}

@test "a reader goes on after so many paths" {
    make_odd_set odd.zqp
    local shuffle
    for shuffle in '' '--seed 3 --epoch 2'; do
        zqpaths split odd.zqp --rank 1 --of 3 $shuffle -0 >share
        zqpaths split odd.zqp --rank 1 --of 3 $shuffle --skip 9 -0 >rest
        tail -z -n +10 share | cmp - rest
    done
    make_set two.zqp a b
    [ -z "$(zqpaths split two.zqp --rank 0 --of 2 --skip 1)" ]
    fails_with 2 "--skip 2: so many paths are in this share: 1" \
        zqpaths split two.zqp --rank 0 --of 2 --skip 2
}

@test "each path is in one part, and stays there when the set grows" {
    seq -f '/data/%.0f.png' 10000 >list
    zqpaths index s.zqp -q --list list
    local part
    for part in 1 2 3; do
        zqpaths split s.zqp --fractions 0.8,0.1,0.1 --part "$part" --seed 7 >"part$part"
    done
    sort list | cmp - <(sort part?)
    (($(wc -l <part1) > 7800 && $(wc -l <part1) < 8200))
    (($(wc -l <part3) > 850 && $(wc -l <part3) < 1150))

    { seq -f '/new/%.0f' 500; shuf --random-source=list list; } >larger
    zqpaths index t.zqp -q --list larger
    zqpaths split t.zqp --fractions 0.8,0.1,0.1 --part 2 --seed 7 | grep -v ^/new/ | sort |
        cmp - <(sort part2)
    [ "$(zqpaths split t.zqp --fractions 1 --part 1 --seed 1 | wc -l)" = 10500 ]
}

@test "parts are the same on every machine" {
    make_set s.zqp a a/b.txt /data/images/train/0001.png
    # Their places by XXH3 with seed 7 are 0.620446, 0.133727 and 0.459353.
    [ "$(zqpaths split s.zqp --fractions 0.133,0.327,0.54 --part 2 --seed 7)" = \
        $'a/b.txt\n/data/images/train/0001.png' ]
    [ "$(zqpaths split s.zqp --fractions 0.62,0.38 --part 2 --seed 7 --json)" = \
        '{"number":1,"path":"a"}' ]
}

@test "a seed that is drawn is told, and gives the same again" {
    make_odd_set odd.zqp
    local way seed
    for way in 'shuffle odd.zqp' 'sample odd.zqp -n 9' 'split odd.zqp --rank 0 --of 2 --epoch 1' \
        'split odd.zqp --fractions .5,.5 --part 2'; do
        zqpaths $way -0 >drawn 2>told
        seed=$(sed -n 's/^zqpaths: seed \([0-9]*\): --seed \1 gives the same again$/\1/p' told)
        zqpaths $way -0 --seed "$seed" 2>told | cmp - drawn
        [ ! -s told ]
    done
    zqpaths sample odd.zqp -n 1 -0 -q 2>told >sample
    [ ! -s told ]
    # Others could not have the same one.
    fails_with 2 "--seed is required" zqpaths split odd.zqp -q --rank 0 --of 2 --epoch 1
}

@test "options that do not go together are refused" {
    make_set one.zqp p
    fails_with 2 "either --rank and --of" zqpaths split one.zqp
    fails_with 2 "--rank and --of go together" zqpaths split one.zqp --of 4
    fails_with 2 "--fractions and --part go together" zqpaths split one.zqp --fractions 1
    fails_with 2 "--rank" zqpaths split one.zqp --fractions 1 --part 1 --rank 0 --of 1
    fails_with 2 "--epoch and --skip go with --rank" \
        zqpaths split one.zqp --fractions 1 --part 1 --epoch 1
    fails_with 2 "--part 3: the parts count from 1 to 2" \
        zqpaths split one.zqp --fractions .5,.5 --part 3 --seed 1
    fails_with 2 "--fractions: they add up to 0.800000, not to 1" \
        zqpaths split one.zqp --fractions .5,.3 --part 1 --seed 1
    local fractions
    for fractions in '' '0.5,' 0.5x 0,5; do
        fails_with 2 "--fractions" zqpaths split one.zqp --fractions "$fractions" --part 1 --seed 1
    done
}
