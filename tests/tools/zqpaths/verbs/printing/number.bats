# zqpaths number: the numbers of exact paths.

load ../setup

@test "numbers are printed in the order asked" {
    make_set s.zqp a/x b a/y
    [ "$(zqpaths number s.zqp a/y a/x b a/y)" = $'3\n1\n2\n3' ]
}

@test "a path that occurs again has its first number" {
    make_set s.zqp a b a b
    [ "$(zqpaths number s.zqp b a)" = $'2\n1' ]
}

@test "a path that is not there is told, the others are printed" {
    make_set s.zqp a/x b
    run --separate-stderr -1 zqpaths number s.zqp b a a/ $'no\nline' a/x
    [ "$output" = $'2\n1' ]
    [[ $stderr == *'zqpaths: a: is not in s.zqp'* ]]
    [[ $stderr == *'zqpaths: a/: is not in s.zqp'* ]]
    [[ $stderr == *'zqpaths: no\x0Aline: is not in s.zqp'* ]]
    run -1 zqpaths number s.zqp -q c
    [ -z "$output" ]
}

@test "every odd name is found, and get gives it back" {
    make_odd_set s.zqp
    local paths
    mapfile -d '' paths <s.zqp.paths
    zqpaths number s.zqp -- "${paths[@]}" | zqpaths get s.zqp -0 - | cmp - s.zqp.paths
}

@test "names that look like something else are taken as they are" {
    make_set s.zqp '[a,b]' a b '{}' '%%' -- -x $'\1a' '[]' ''$'\1[x]'
    run -0 zqpaths number s.zqp '[a,b]' '{}' '%%' '[]' -- -x -- $'\1a' $'\1[x]'
    [ "$output" = $'1\n4\n5\n9\n7\n6\n8\n10' ]
}

@test "numbers ended by NUL are taken by get" {
    make_set s.zqp a b c
    [ "$(zqpaths number -0 s.zqp c a | zqpaths get s.zqp -)" = $'c\na' ]
}

@test "objects have number and path" {
    make_set s.zqp a b
    [ "$(zqpaths number --json s.zqp b)" = '{"number":2,"path":"b"}' ]
}

@test "the last of many paths is found" {
    seq 30000 >list
    zqpaths index s.zqp --list list
    [ "$(zqpaths number s.zqp 30000 1 10001)" = $'30000\n1\n10001' ]
}
