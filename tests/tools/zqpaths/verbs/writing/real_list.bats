# A list as large as real ones are, through the whole program.

load ../setup

setup_file() {
    export REAL_LIST REAL_SET=$BATS_FILE_TMPDIR/real.zqp
    REAL_LIST=$("$BATS_TEST_DIRNAME/../../../../../scripts/real-list") || return 0
    "$ZQPATHS" index -q "$REAL_SET" --list "$REAL_LIST"
}

setup() {
    [ -n "$REAL_LIST" ] || skip "Debian's package index cannot be reached"
    cd "$BATS_TEST_TMPDIR"
}

@test "all paths come back in their order" {
    zqpaths list "$REAL_SET" | cmp - "$REAL_LIST"
}

@test "it is whole" {
    run -0 zqpaths verify "$REAL_SET"
    [[ $output == *" paths, all whole" ]]
}

@test "paths are at their numbers" {
    local count
    count=$(wc -l <"$REAL_LIST")
    [ "$count" -gt 1000000 ]
    zqpaths get "$REAL_SET" "$count:1:-1009" | cmp - <(tac "$REAL_LIST" | awk 'NR % 1009 == 1')
}

@test "a fixed text is found where grep finds it" {
    zqpaths find "$REAL_SET" -n -F libz >found
    [ -s found ]
    grep --fixed-strings --line-number libz "$REAL_LIST" | sed 's/:/\t/' | cmp - found
}

@test "a shuffled set has all paths" {
    zqpaths shuffle "$REAL_SET" --seed 7 | LC_ALL=C sort | cmp - <(LC_ALL=C sort "$REAL_LIST")
}

@test "new characters and more paths leave the numbers as they are" {
    cp "$REAL_SET" more.zqp
    printf 'new/\xf0\x9f\x98\x80\n' >more.txt
    zqpaths add -q more.zqp --list more.txt
    zqpaths list more.zqp | cmp - <(cat "$REAL_LIST" more.txt)
}
