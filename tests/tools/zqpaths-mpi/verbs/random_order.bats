# zqpaths-mpi sample and shuffle: the orders of zqpaths, whatever the number of ranks.

load ../setup

@test "a sample is that of one process" {
    make_numbered_set s.zqp 60000
    equal_with_any_team sample s.zqp -n 25000 --seed 7
    team 3 sample s.zqp -n 100000 --seed 2 --csv | cmp - <(zqpaths sample s.zqp -n 100000 --seed 2 --csv)
    [ -z "$(team 2 sample s.zqp -n 0 --seed 1)" ]
}

@test "a shuffle is that of one process" {
    make_numbered_set s.zqp 60000
    equal_with_any_team shuffle s.zqp --seed 11
    [ "$(wc -l <got)" -eq 60000 ]
}

@test "a seed that is drawn is told once and gives the same again" {
    make_numbered_set s.zqp 2000
    team 3 shuffle s.zqp >first 2>told
    [ "$(grep -c 'seed' told)" -eq 1 ]
    team 2 shuffle s.zqp --seed "$(sed -n 's/^zqpaths-mpi: seed \([0-9]*\):.*/\1/p' told)" | cmp - first
}

@test "gone paths are left out, or shuffled alone" {
    mkdir tree
    touch tree/{a,b,c,d,e,f}
    zqpaths index -q s.zqp tree
    rm tree/[bdf]
    zqpaths update -q s.zqp
    team 2 shuffle s.zqp --seed 3 | cmp - <(zqpaths shuffle s.zqp --seed 3)
    team 2 shuffle s.zqp --seed 3 --gone | cmp - <(zqpaths shuffle s.zqp --seed 3 --gone)
    team 2 shuffle s.zqp --seed 3 --out all
    cat all-0 all-1 | sort | cmp - <(zqpaths list s.zqp | sort)
}

@test "each rank writes its share to a file of its own" {
    make_numbered_set s.zqp 30000
    local rank
    team 3 shuffle s.zqp --seed 5 --out out/../epoch.txt -0 && false
    mkdir out
    team 3 shuffle s.zqp --seed 5 --out out/epoch.txt -0
    [ "$(ls -A out)" = $'epoch-0.txt\nepoch-1.txt\nepoch-2.txt' ]
    for rank in 0 1 2; do
        zqpaths split s.zqp --rank "$rank" --of 3 --seed 5 -0 | cmp - "out/epoch-$rank.txt"
    done
    team 1 shuffle s.zqp --seed 5 --out one
    cmp one-0 <(zqpaths shuffle s.zqp --seed 5)
}

@test "a file that is there stays, and then none is written" {
    make_numbered_set s.zqp 3000
    echo precious >out-1
    fails_with 2 'rank 1: out-1: is there already; --force replaces it' \
        team 2 shuffle s.zqp --seed 5 --out out
    [ "$(cat out-1)" = precious ]
    [ "$(ls -A | grep -c out)" -eq 1 ]
    team 2 shuffle s.zqp --seed 5 --out out --force
    cat out-0 out-1 | sort | cmp - <(zqpaths list s.zqp | sort)
    fails_with 2 'needs --out' team 2 shuffle s.zqp --force
}
