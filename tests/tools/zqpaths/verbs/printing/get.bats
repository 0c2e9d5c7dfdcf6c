# zqpaths get: paths by number.

load ../setup

@test "one number, a range and a step are printed in the order asked" {
    make_set s.zqp a b c d e
    [ "$(zqpaths get s.zqp 4)" = d ]
    [ "$(zqpaths get s.zqp 2:4)" = $'b\nc\nd' ]
    [ "$(zqpaths get s.zqp 5:1:-2 1:5:3 2 2)" = $'e\nc\na\na\nd\nb\nb' ]
}

@test "ranges reach the set's ends, and numbers below zero count from the end" {
    make_set s.zqp a b c d e
    [ "$(zqpaths get s.zqp -1 -2:)" = $'e\nd\ne' ]
    [ "$(zqpaths get s.zqp :2 4: ::4)" = $'a\nb\nd\ne\na\ne' ]
    [ "$(zqpaths get -0 s.zqp -- -4::-1 | tr '\0' ' ')" = 'b a ' ]
    [ "$(zqpaths get s.zqp - <<<'-1 :1 ::-2')" = $'e\na\ne\nc\na' ]
    fails_with 2 'there is no path -6 in this set of 5 paths' zqpaths get s.zqp 1 -6:
    fails_with 2 'standard input: line 2: there is no path -6' zqpaths get s.zqp - <<<$'\n-6'
}

@test "every odd name is at its number" {
    make_odd_set s.zqp
    local count
    count=$(tr -cd '\0' <s.zqp.paths | wc -c)
    zqpaths get s.zqp -0 "1:$count" | cmp - s.zqp.paths
    zqpaths get s.zqp -0 "$count:1:-1" | tac -s '' | cmp - s.zqp.paths
}

@test "a number beyond the set is told with the size, and nothing is printed" {
    make_set s.zqp a b c
    fails_with 2 'there is no path 4 in this set of 3 paths' zqpaths get s.zqp 1 4
    fails_with 2 'there is no path 9 in this set of 3 paths' zqpaths get s.zqp 1:9
    fails_with 2 '0: the first path has number 1' zqpaths get s.zqp 0
    fails_with 2 '1x: is neither a number nor numbers' zqpaths get s.zqp 1 1x
    fails_with 2 '3:1: counts down, which takes a step like -1' zqpaths get s.zqp 3:1
}

@test "numbers come from standard input, separated by white space or NUL" {
    make_set s.zqp a b c d e
    run -0 zqpaths get s.zqp 5 - 1 < <(printf '2 3\n\n\t4:3:-1\r\n5\0001')
    [ "$output" = $'e\nb\nc\nd\nc\ne\na\na' ]
    [ -z "$(zqpaths get s.zqp - </dev/null)" ]
}

@test "many numbers from standard input are as many paths" {
    seq 50000 | sed 's/^/n/' >list
    zqpaths index s.zqp --list list
    seq 50000 | shuf --random-source=list >numbers
    zqpaths get s.zqp - <numbers >got
    sed 's/^/n/' numbers | cmp - got
}

@test "a bad number in standard input is told with its line, after the paths before it" {
    make_set s.zqp a b c
    run --separate-stderr -2 zqpaths get s.zqp - < <(printf '1 2\n\n3 x\n1\n')
    [ "$output" = $'a\nb\nc' ]
    [[ $stderr == *'standard input: line 3: x: is neither'* ]]
    run --separate-stderr -2 zqpaths get s.zqp - < <(printf '1\n7\n')
    [ "$output" = a ]
    [[ $stderr == *'standard input: line 2: there is no path 7 in this set of 3 paths'* ]]
}

@test "what is no number is refused before it is read to its end" {
    make_set s.zqp a
    run --separate-stderr -2 zqpaths get s.zqp - < <(head -c 10000000 /dev/zero | tr '\0' 7)
    [ -z "$output" ]
    [ ${#stderr} -lt 1000 ]
}

@test "numbers that come slowly are answered at once" {
    make_set s.zqp a b
    mkfifo asked answered
    "$ZQPATHS" get s.zqp - <asked >answered 3>&- &
    exec 8>asked 9<answered
    local answer
    echo 2 >&8
    read -r -t 60 answer <&9
    [ "$answer" = b ]
    echo 1 >&8
    read -r -t 60 answer <&9
    [ "$answer" = a ]
    exec 8>&- 9<&-
    wait
}

@test "groups are folders with their files" {
    make_set s.zqp a/x a/y b//z top a/w
    [ "$(zqpaths get s.zqp --groups 1:5)" = $'a/\n\tx\n\ty\nb//\n\tz\n\n\ttop\na/\n\tw' ]
    [ "$(zqpaths get s.zqp --groups --json 1:2 4)" = \
        $'{"folder":"a/","files":["x","y"]}\n{"folder":"","files":["top"]}' ]
}

@test "a group of many files is one" {
    seq 25000 | sed 's,^,d/,' >list
    zqpaths index s.zqp --list list
    zqpaths get s.zqp --groups 1:25000 >got
    { echo d/; seq 25000 | sed 's/^/\t/'; } | cmp - got
}

@test "objects have number and path, and the bytes where they are not UTF-8" {
    make_set s.zqp a $'new\nline' $'bad\xff'
    [ "$(zqpaths get s.zqp --json 1:3)" = \
        $'{"number":1,"path":"a"}\n{"number":2,"path":"new\\nline"}\n{"number":3,"path":"bad\xef\xbf\xbd","bytes":"YmFk/w=="}' ]
}
