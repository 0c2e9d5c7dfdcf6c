# zqpaths-mpi find: what zqpaths find prints, whatever the number of ranks.

load ../setup

@test "matches are those of one process, in the order of numbers" {
    make_numbered_set s.zqp 90000
    equal_with_any_team find s.zqp '*7.txt'
    [ "$(wc -l <expected)" -eq 9000 ]
    equal_with_any_team find s.zqp -n -r '/file-00.*10\.txt$'
    team 3 find s.zqp --json -F -i 'FILE-00042' >got
    zqpaths find s.zqp --json -F -i 'FILE-00042' | cmp - got
    [ -s got ]
}

@test "odd names come out as bytes, ended by NUL, in a table and as objects" {
    make_odd_set s.zqp
    local how
    for how in -0 --csv --json '--fields=number,folder,name'; do
        team 2 find s.zqp "$how" '**' >got
        zqpaths find s.zqp "$how" '**' | cmp - got
    done
    run -2 --separate-stderr team 2 find s.zqp --strict '**'
    [[ $stderr == *'zqpaths-mpi: '*'holds a newline'* ]]
}

@test "matches are counted, or one is looked for" {
    make_numbered_set s.zqp 50000
    equal_with_any_team find s.zqp -c '*0.txt'
    [ "$(cat got)" = 5000 ]
    run -0 team 3 find s.zqp -q '*49999.txt'
    [ -z "$output" ]
    run -1 team 3 find s.zqp -q '*50001.txt'
    [ "$(team 2 find s.zqp -c --json '*1.txt')" = '{"count":5000}' ]
}

@test "what matches nothing has status 1" {
    make_set s.zqp a b
    run -1 --separate-stderr team 3 find s.zqp c
    [ -z "$output" ]
    run -1 --separate-stderr team 2 find s.zqp --csv c
    [ "$output" = $'number,path\r' ]
}

@test "gone paths are left out, or shown alone" {
    mkdir tree
    touch tree/{a,b,c,d}
    zqpaths index -q s.zqp tree
    rm tree/[bd]
    zqpaths update -q s.zqp
    equal_with_any_team find s.zqp '*'
    [ "$(cat got)" = $'tree/a\ntree/c' ]
    [ "$(team 2 find s.zqp --gone '*')" = $'tree/b\ntree/d' ]
    [ "$(team 2 find s.zqp --gone -c '*')" = 2 ]
}

@test "a path of many megabytes travels in parts" {
    { head -c 9000000 /dev/zero | tr '\0' x; echo; echo short; } >list
    zqpaths index -q s.zqp --list list
    team 2 find s.zqp '*' | cmp - list
}

@test "results that are larger than what may wait come in order" {
    local name
    name=$(printf '%0200d' 0)
    seq 1 60000 | sed "s|.*|&/$name|" >list
    zqpaths index -q s.zqp --list list
    team 4 find s.zqp '*' | cmp - list
}
