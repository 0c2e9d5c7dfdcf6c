# Paths that are gone: who leaves them out, and who does not.

load ../setup

# make_gone_set - a set of six paths of which tree/b and tree/d/e, numbers 2 and 5, are gone
make_gone_set() {
    mkdir -p tree/d
    touch tree/{a,b,c} tree/d/{d,e,f}
    zqpaths index -q s.zqp tree
    rm tree/b tree/d/e
    zqpaths update -q s.zqp
    present=$'tree/a\ntree/c\ntree/d/d\ntree/d/f'
    gone=$'tree/b\ntree/d/e'
}

@test "list leaves them out, and --gone shows them alone" {
    make_gone_set
    [ "$(zqpaths list s.zqp)" = "$present" ]
    [ "$(zqpaths list s.zqp --gone)" = "$gone" ]
    [ "$(zqpaths list s.zqp --under tree/d)" = $'tree/d/d\ntree/d/f' ]
    [ "$(zqpaths list s.zqp --glob '[ab]')" = tree/a ]
    [ "$(zqpaths list s.zqp --walk)" = "$present" ]
    [ "$(zqpaths list s.zqp --walk --gone)" = "$gone" ]
}

@test "find leaves them out, also when it counts or only looks" {
    make_gone_set
    [ "$(zqpaths find s.zqp '?' | sed 's/.*\t//')" = "$present" ]
    [ "$(zqpaths find s.zqp '?' --gone | sed 's/.*\t//')" = "$gone" ]
    [ "$(zqpaths find s.zqp -c '?')" = 4 ]
    [ "$(zqpaths find s.zqp -c '?' --gone)" = 2 ]
    zqpaths find s.zqp -q a
    run -1 zqpaths find s.zqp -q b
    zqpaths find s.zqp -q b --gone
    run -1 zqpaths find s.zqp b
}

@test "samples, shuffles and shares have the others, each once" {
    make_gone_set
    [ "$(zqpaths sample s.zqp -n 10 --seed 3 | sort)" = "$present" ]
    [ "$(zqpaths sample s.zqp -n 10 --seed 3 --gone | sort)" = "$gone" ]
    [ "$(zqpaths shuffle s.zqp --seed 3 | sort)" = "$present" ]
    [ "$(zqpaths shuffle s.zqp --seed 3 --gone | sort)" = "$gone" ]
    [ "$(zqpaths split s.zqp --rank 0 --of 2)" = $'tree/a\ntree/d/d' ]
    [ "$(zqpaths split s.zqp --rank 1 --of 2)" = $'tree/c\ntree/d/f' ]
    [ "$(zqpaths split s.zqp --rank 1 --of 2 --gone)" = tree/d/e ]
}

@test "numbers are kept: get gives them, number tells that they are gone" {
    make_gone_set
    [ "$(zqpaths get s.zqp 2 5)" = "$gone" ]
    run --separate-stderr -0 zqpaths number s.zqp tree/b tree/c
    [ "$output" = $'2\n3' ]
    [ "$stderr" = 'zqpaths: tree/b: is gone' ]
}

@test "info counts them" {
    make_gone_set
    [[ $(zqpaths info s.zqp) == *'gone '*'2'* ]]
    [ "$(zqpaths info --json s.zqp | jq .gone)" = 2 ]
    make_set none.zqp a
    [[ $(zqpaths info none.zqp) != *gone* ]]
}

@test "what compares or makes sets leaves them out" {
    make_gone_set
    zqpaths index -q anew.zqp tree
    zqpaths diff s.zqp anew.zqp
    zqpaths diff anew.zqp s.zqp
    zqpaths verify -q --disk s.zqp
    zqpaths merge -q all.zqp s.zqp
    [ "$(zqpaths list all.zqp)" = "$present" ]
    zqpaths compact -q s.zqp c.zqp
    [ "$(zqpaths list c.zqp)" = "$present" ]
    [ "$(zqpaths info --json c.zqp | jq -c '[.paths, .gone]')" = '[4,0]' ]
}

@test "export keeps them and tells" {
    make_gone_set
    run --separate-stderr -0 zqpaths export s.zqp --tree-string chars --path-tree paths
    [ "$stderr" = 'zqpaths: s.zqp: 2 paths that are gone are among those exported' ]
    zqpaths import -q again.zqp --tree-string chars --path-tree paths
    [ "$(zqpaths list again.zqp | wc -l)" = 6 ]
}
