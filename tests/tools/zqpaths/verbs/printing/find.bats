# zqpaths find: paths that match.

load ../setup

@test "a glob without separator is matched against file names" {
    make_set s.zqp /usr/x.hpp x.hpp/y b.hpp
    [ "$(zqpaths find s.zqp '*.hpp')" = $'/usr/x.hpp\nb.hpp' ]
}

@test "a glob with separator is matched against whole paths" {
    make_set s.zqp /usr/lib/x /usr/lib/a/x usr/lib/x x
    [ "$(zqpaths find s.zqp '/usr/*/x')" = /usr/lib/x ]
    [ "$(zqpaths find s.zqp '/usr/**/x')" = $'/usr/lib/x\n/usr/lib/a/x' ]
    [ "$(zqpaths find s.zqp -c '**/x')" = 4 ]
}

@test "a regular expression may be anywhere" {
    make_set s.zqp lib/a.so.1 lib/a.so.x $'new\nline'
    [ "$(zqpaths find s.zqp -r 'so\.[0-9]+$')" = lib/a.so.1 ]
    [ "$(zqpaths find s.zqp -r -c 'w.l')" = 1 ]
    fails_with 2 'pattern (a: missing )' zqpaths find s.zqp -r '(a'
}

@test "a fixed text may be anywhere" {
    make_set s.zqp 'a*b' axb
    [ "$(zqpaths find s.zqp -F '*')" = 'a*b' ]
    [ "$(zqpaths find s.zqp -F -- 'xb')" = axb ]
}

@test "names that are not UTF-8 are found by all kinds of patterns" {
    make_set s.zqp $'bad\xff\xfe' good
    local expected=$'bad\xff\xfe'
    [ "$(zqpaths find s.zqp 'bad??')" = "$expected" ]
    [ "$(zqpaths find s.zqp $'bad\xff*')" = "$expected" ]
    [ "$(zqpaths find s.zqp -r '^bad..$')" = "$expected" ]
    [ "$(zqpaths find s.zqp -F $'\xfe')" = "$expected" ]
    [ "$(zqpaths find s.zqp -i -F 'BAD')" = "$expected" ]
}

@test "case is disregarded where told" {
    make_set s.zqp README readme $'\xc3\x89t\xc3\xa9'
    [ "$(zqpaths find s.zqp -c readme)" = 1 ]
    [ "$(zqpaths find s.zqp -i -c 'read*')" = 2 ]
    [ "$(zqpaths find s.zqp -i -c -F ReadMe)" = 2 ]
    [ "$(zqpaths find s.zqp -i -c -r '^READ')" = 2 ]
    [ "$(zqpaths find s.zqp -i -c $'\xc3\xa9t\xc3\x89')" = 1 ]
}

@test "the exit status tells whether something matches" {
    make_set s.zqp a
    run -0 zqpaths find s.zqp a
    run -1 zqpaths find s.zqp b
    [ -z "$output" ]
    run -1 zqpaths find s.zqp -c b
    [ "$output" = 0 ]
    run -0 zqpaths find s.zqp -q a
    [ -z "$output" ]
    run -1 zqpaths find s.zqp -q b
}

@test "matches are printed as objects or ended by NUL" {
    make_set s.zqp $'a\nb' c
    [ "$(zqpaths find s.zqp --json 'a*')" = '{"number":1,"path":"a\nb"}' ]
    [ "$(zqpaths find s.zqp --json -c '*')" = '{"count":2}' ]
    zqpaths find s.zqp -0 '*' >got
    printf 'a\nb\0c\0' | cmp - got
}

@test "what is found can be handed to other programs" {
    mkdir tree
    echo one >$'tree/a\nb'
    echo two >'tree/c  d'
    zqpaths index s.zqp tree
    [ "$(zqpaths find s.zqp -0 '*' | xargs -0 cat | sort)" = $'one\ntwo' ]
}

@test "numbers are printed before the paths where told" {
    make_set s.zqp x.c y x.h
    [ "$(zqpaths find s.zqp -n 'x*')" = $'1\tx.c\n3\tx.h' ]
    zqpaths find s.zqp --number -0 'x*' >got
    printf '1\tx.c\0003\tx.h\0' | cmp - got
    fails_with 2 '--fields excludes --number' zqpaths find s.zqp -n --fields path 'x*'
}

@test "odd names are found as they are" {
    make_odd_set s.zqp
    local name
    for name in "${odd_names[@]}"; do
        [ "$(zqpaths find s.zqp -c -F -- "/$name")" -ge 3 ] || {
            echo "not found: $name"
            return 1
        }
    done
    [ "$(zqpaths find s.zqp -c 'the end')" = 1 ]
    [ "$(zqpaths find s.zqp -c 'odd/deep/**/d/the end')" = 1 ]
}

@test "many paths are found as grep finds them" {
    seq -f 'dir%.0f/file' 30000 >list
    zqpaths index s.zqp --list list
    zqpaths find s.zqp -F 77 >got
    grep -F 77 list | cmp - got
    zqpaths find s.zqp -n -r '7[0-3]+/' | cut -f 1 >got
    grep -n -E '7[0-3]+/' list | cut -d : -f 1 | cmp - got
}
