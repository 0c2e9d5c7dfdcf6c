# What is saved stays whole: in crashes, on full disks, with other programs at the same file.

load setup

teardown() {
    [ -z "${holder:-}" ] || kill "$holder" 2>/dev/null || true
    mountpoint --quiet disk && umount disk || true
}

# hold SET STATEMENTS - another program runs statements and stays in its transaction; its process
# is `holder`
hold() {
    mkfifo statements
    sqlite3 "$1" <statements >held &
    holder=$!
    exec 9>statements
    echo "$2; SELECT 'held';" >&9
    until grep --quiet held held; do sleep 0.01; done
}

# let_go - the other program ends its transaction without a change
let_go() {
    exec 9>&-
    wait "$holder"
    holder=
}

# a_small_disk - mounts one of a mebibyte on the folder disk
a_small_disk() {
    mkdir disk
    mount -t tmpfs -o size=1m tmpfs disk 2>/dev/null || skip "no file system can be mounted here"
}

# random_list COUNT - paths that take about 16 bytes each in a set
random_list() {
    awk -v count="$1" 'BEGIN {
        srand(1)
        while (count-- > 0)
            printf "%08x%08x%08x%08x\n", rand() * 2 ^ 32, rand() * 2 ^ 32, rand() * 2 ^ 32,
                   rand() * 2 ^ 32
    }'
}

files() {
    ls -A "$@" | tr '\n' ' '
}

@test "a set is whole after each of a number of kills" {
    mkdir folder
    "$BATS_TEST_DIRNAME/kill.bash" folder/s.zqp "$tries"
}

@test "signals leave a whole set and nothing else" {
    mkdir folder
    "$BATS_TEST_DIRNAME/kill.bash" folder/s.zqp $((tries / 2)) TERM
    "$BATS_TEST_DIRNAME/kill.bash" folder/s.zqp $((tries / 2)) INT
}

@test "a signal leaves no half of a new set" {
    mkdir folder
    random_list 20000 >list
    local i
    for i in $(seq "$tries"); do
        env --default-signal=TERM "$ZQPATHS" index -q folder/s.zqp --list list &
        sleep "$(printf '0.%03d' $((i * 160 / tries)))"
        kill "$!" 2>/dev/null || true
        wait "$!" || true
        [ ! -e folder/s.zqp ] || zqpaths verify folder/s.zqp
        rm -f folder/s.zqp
        [ -z "$(files folder)" ]
    done
}

@test "a signal ends a wait for another program" {
    make_set s.zqp a
    hold s.zqp 'BEGIN IMMEDIATE'
    env --default-signal=TERM "$ZQPATHS" index -q --force s.zqp --list - <<<b 9>&- &
    local process=$!
    sleep 0.5
    kill "$process"
    local status=0
    wait "$process" || status=$?
    [ "$status" = 143 ]
    let_go
    [ "$(zqpaths list s.zqp)" = a ]
}

@test "a full disk leaves the old set whole" {
    a_small_disk
    make_set disk/s.zqp a/x b
    cp disk/s.zqp before
    random_list 60000 >list
    fails_with 2 'disk/s.zqp: there is no space left on the device' \
        zqpaths index --force disk/s.zqp --list list
    fails_with 2 'there is no space left on the device' zqpaths add disk/s.zqp --list list
    [ "$(files disk)" = 's.zqp ' ]
    zqpaths verify disk/s.zqp
    cmp before disk/s.zqp
    zqpaths add disk/s.zqp --list - <<<c
    [ "$(zqpaths list disk/s.zqp)" = $'a/x\nb\nc' ]
}

@test "a full disk gets no half of a new set" {
    a_small_disk
    random_list 60000 >list
    fails_with 2 'disk/s.zqp: there is no space left on the device' \
        zqpaths index disk/s.zqp --list list
    [ -z "$(files disk)" ]
}

@test "a limit of the file size leaves the old set whole" {
    mkdir folder
    make_set folder/s.zqp a
    random_list 60000 >list
    (
        ulimit -f 400
        fails_with 2 's.zqp: File too large' zqpaths index --force folder/s.zqp --list list
        fails_with 2 'File too large' zqpaths index folder/new.zqp --list list
    )
    [ "$(files folder)" = 's.zqp ' ]
    [ "$(zqpaths list folder/s.zqp)" = a ]
}

@test "lack of memory is a limit, not a damage, and leaves the set whole" {
    (ulimit -v 16000000 && zqpaths --version) || skip "a sanitizer takes all addresses there are"
    random_list 400000 >list
    zqpaths index -q s.zqp --list list
    local kilobytes
    for kilobytes in 30000 35000 40000; do
        (
            ulimit -v "$kilobytes"
            fails_with 4 'out of memory' zqpaths list s.zqp
            fails_with 4 'out of memory' zqpaths index --force s.zqp --list list
        )
    done
    zqpaths list s.zqp | cmp - list
}

@test "media that cannot be written can be read" {
    a_small_disk
    make_set disk/s.zqp a/x b
    mount -o remount,ro disk
    [ "$(zqpaths list disk/s.zqp)" = $'a/x\nb' ]
    zqpaths verify disk/s.zqp
    fails_with 2 'disk' zqpaths index --force disk/s.zqp --list - <<<c
}

@test "a second writer waits" {
    make_set s.zqp a
    hold s.zqp 'BEGIN IMMEDIATE'
    zqpaths add s.zqp --list - <<<b 9>&- &
    local process=$!
    sleep 1
    kill -0 "$process"
    let_go
    wait "$process"
    [ "$(zqpaths list s.zqp)" = $'a\nb' ]
}

@test "a second writer says who holds the file" {
    make_set s.zqp a
    hold s.zqp 'BEGIN IMMEDIATE'
    fails_with 2 "s.zqp: is held by sqlite3 (process $holder)" zqpaths add s.zqp --list - <<<b
    let_go
    [ "$(zqpaths list s.zqp)" = a ]
}

@test "a writer says which reader does not let it end" {
    mkdir folder
    make_set folder/s.zqp a
    hold folder/s.zqp 'BEGIN; SELECT count(*) FROM objects'
    fails_with 2 "s.zqp: is held by sqlite3 (process $holder)" zqpaths add folder/s.zqp --list - <<<b
    let_go
    [ "$(zqpaths list folder/s.zqp)" = a ]
    [ "$(files folder)" = 's.zqp ' ]
}

@test "readers read on while one writes" {
    make_set s.zqp a
    hold s.zqp "BEGIN IMMEDIATE; DELETE FROM parts; DELETE FROM objects"
    [ "$(zqpaths list s.zqp)" = a ]
    zqpaths verify s.zqp
    let_go
}

@test "readers always find a whole set while one writes again and again" {
    random_list 10000 | sort >list
    zqpaths index -q s.zqp --list list
    (for _ in $(seq 10); do zqpaths index -q --force s.zqp --list list; done) &
    local writer=$!
    while kill -0 "$writer" 2>/dev/null; do
        zqpaths list s.zqp | cmp - list
    done
    wait "$writer"
}

@test "what two add at one time are both there" {
    make_set s.zqp start
    local i
    for i in $(seq 8); do
        zqpaths add -q s.zqp --list - <<<"new $i" &
    done
    wait
    [ "$(zqpaths list s.zqp | sort | tr '\n' ' ')" = \
        'new 1 new 2 new 3 new 4 new 5 new 6 new 7 new 8 start ' ]
}

@test "of two that make one new set at one time, one makes it" {
    mkdir folder
    random_list 10000 >list
    local first second
    for _ in 1 2 3; do
        first=0 second=0
        zqpaths index -q folder/s.zqp --list list 2>errors.1 &
        local one=$!
        zqpaths index -q folder/s.zqp --list list 2>errors.2 || second=$?
        wait "$one" || first=$?
        [[ "$first $second" == '0 2' || "$first $second" == '2 0' ]]
        grep --quiet 's.zqp: is there already' errors.1 errors.2
        zqpaths list folder/s.zqp | cmp - list
        [ "$(files folder)" = 's.zqp ' ]
        rm folder/s.zqp
    done
}

@test "a save that was cut off is taken back by who reads next" {
    random_list 20000 >list
    zqpaths index -q s.zqp --list list
    cp s.zqp before
    # Pages in the file and the journal on the disk, but the transaction has no end.
    mkfifo statements
    sqlite3 s.zqp <statements &
    holder=$!
    exec 9>statements
    echo "PRAGMA cache_size = 1; BEGIN; UPDATE parts SET data = zeroblob(length(data));" >&9
    until [ -s s.zqp-journal ] && ! cmp --quiet before s.zqp; do sleep 0.01; done
    kill -KILL "$holder"
    exec 9>&-
    zqpaths list s.zqp | cmp - list
    [ ! -e s.zqp-journal ]
}
