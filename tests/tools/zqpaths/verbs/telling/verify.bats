# zqpaths verify: everything is read, and what is damaged is told.

load ../setup

@test "a whole set is told to be whole" {
    make_set s.zqp a/x b
    run -0 zqpaths verify s.zqp
    [ "$output" = 's.zqp: 2 paths, all whole' ]
    run -0 zqpaths verify -q s.zqp
    [ -z "$output" ]
}

@test "odd names are whole" {
    make_odd_set s.zqp
    zqpaths verify s.zqp
}

@test "paths that became folders, and paths added twice, are whole" {
    make_set s.zqp a/b a/b a/b/c x x/y x a/ // / /q/r /q q
    zqpaths verify s.zqp
    zqpaths add s.zqp --list - <<<$'a/b/c/d/e\nx/y/z\na\nq/\nb/b/b'
    zqpaths verify s.zqp
}

@test "random bytes are whole" {
    random_paths 5000 >list
    zqpaths index s.zqp --list list -0
    zqpaths verify s.zqp
}

@test "every damage is told with its place" {
    make_set s.zqp a/x b
    zqpaths add s.zqp --list - <<<c
    # Each segment begins at a page of its own.
    damage s.zqp 4200 8400
    fails_with 3 's.zqp: ' zqpaths verify s.zqp
    [ "$(grep -c '^zqpaths: s.zqp: .*damaged' <<<"$stderr")" -ge 2 ]
    [[ $stderr == *4096* ]]
    [[ $stderr == *8192* ]]
}

@test "a packed set is verified, too" {
    make_odd_set s.zqp
    zqpaths compact s.zqp p.zqp --packed
    zqpaths verify p.zqp
    damage p.zqp 4300
    fails_with 3 'p.zqp: ' zqpaths verify p.zqp
}

@test "what is no set is refused" {
    fails_with 2 'none.zqp: No such file or directory' zqpaths verify none.zqp
    echo text >text
    fails_with 2 'text: is no saved set' zqpaths verify text
    fails_with 2 'Is a directory' zqpaths verify .
    { printf 'SQLite format 3\0' && head -c 8192 /dev/zero; } >old.zqp
    fails_with 2 'old.zqp: is a set of an older form; index it anew' zqpaths verify old.zqp
}

@test "a file cut short is damaged" {
    make_set s.zqp a/x b
    local size
    size=$(stat --format %s s.zqp)
    truncate --size $((size - 1)) s.zqp
    fails_with 3 "has $((size - 1)) bytes instead of $size" zqpaths verify s.zqp
    fails_with 3 "has $((size - 1)) bytes instead of $size" zqpaths list s.zqp
}

@test "a tail that was not committed is none of the set" {
    make_set s.zqp a/x b
    printf 'left by a writer that was killed' >>s.zqp
    zqpaths verify s.zqp
    [ "$(zqpaths list s.zqp)" = $'a/x\nb' ]
}

@test "no changed bit goes unseen" {
    make_odd_set s.zqp
    local size offset byte status told
    size=$(stat --format %s s.zqp)
    RANDOM=1
    for _ in $(seq $((8 * tries))); do
        offset=$(((RANDOM << 15 | RANDOM) % size))
        byte=$(od --address-radix n --format u1 --skip-bytes "$offset" --read-bytes 1 s.zqp)
        cp s.zqp t.zqp
        printf "\\x$(printf %02x $((byte ^ 1 << RANDOM % 8)))" |
            dd of=t.zqp bs=1 seek="$offset" conv=notrunc status=none
        status=0
        told=$(zqpaths verify t.zqp 2>&1) || status=$?
        case $status in
            0) zqpaths list t.zqp -0 | cmp - s.zqp.paths ;; # a byte that says nothing
            2 | 3) [ -n "$told" ] ;;
            *) false ;;
        esac
    done
}

@test "paths are looked for on the disk" {
    make_odd_tree tree
    zqpaths index s.zqp --hidden tree
    run --separate-stderr -0 zqpaths verify s.zqp --disk
    [ -z "$output" ]
    [[ $stderr == *'all whole, 0 missing on disk'* ]]
    rm tree/plain.txt $'tree/bad\xff\xfeutf8'
    run --separate-stderr -1 zqpaths verify s.zqp --disk
    [ "$output" = $'tree/bad\xff\xfeutf8\ntree/plain.txt' ]
    [[ $stderr == *', 2 missing on disk'* ]]
    rm -r tree
}

@test "a folder that is no folder any more has no files" {
    make_set s.zqp a/x
    touch a
    run --separate-stderr -1 zqpaths verify s.zqp --disk
    [ "$output" = a/x ]
}

@test "symbolic links count themselves" {
    ln -s nowhere link
    make_set s.zqp link
    zqpaths verify s.zqp --disk
}

@test "a full device is an error" {
    make_set s.zqp a/x
    run --separate-stderr -2 bash -c '"$ZQPATHS" verify s.zqp >/dev/full'
    [ -n "$stderr" ]
}
