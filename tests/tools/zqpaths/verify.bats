# zqpaths verify: everything is read, and what is damaged is told.

load setup

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

@test "every damage is told with field and offset" {
    make_set s.zqp a/x b
    sqlite3 s.zqp 'UPDATE parts SET data = zeroblob(length(data))'
    fails_with 3 's.zqp: field StringTree, byte 0: the checksum differs' zqpaths verify s.zqp
    [[ $stderr == *'s.zqp: field PathTree, byte 0: the checksum differs'* ]]
    [[ $stderr == *'s.zqp: field Frequencies, byte 0: the checksum differs'* ]]
}

@test "what is no set is refused" {
    fails_with 2 'none.zqp: No such file or directory' zqpaths verify none.zqp
    echo text >text
    fails_with 2 'text: is no saved set' zqpaths verify text
    fails_with 2 'Is a directory' zqpaths verify .
    sqlite3 other.db 'CREATE TABLE t (a)'
    fails_with 2 'is a database of another program' zqpaths verify other.db
    make_set s.zqp a
    sqlite3 s.zqp 'PRAGMA user_version = 2'
    fails_with 2 'is a set of version 2, and only version 1 is known here' zqpaths verify s.zqp
}

@test "a file cut short is damaged" {
    make_set s.zqp a/x b
    local size
    size=$(stat --format %s s.zqp)
    truncate --size $((size - 1)) s.zqp
    fails_with 3 "has $((size - 1)) bytes instead of $size" zqpaths verify s.zqp
    truncate --size 100000 s.zqp
    run -3 zqpaths verify s.zqp
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
