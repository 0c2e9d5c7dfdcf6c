# What is saved stays whole: in crashes, on full disks, with other programs at the same file.

load ../setup

teardown() {
    [ -z "${holder:-}" ] || kill "$holder" 2>/dev/null || true
    mountpoint --quiet disk && umount disk || true
}

# hold SET [VERB] - another program begins to add to the set, and waits for more; its process is
# `holder`
hold() {
    mkfifo more
    # shellcheck disable=SC2086: a verb and its options
    "$ZQPATHS" ${2:-add} -q "$1" --list more &
    holder=$!
    exec 9>more
    echo held >&9
    while flock --nonblock "$1" true; do sleep 0.01; done
}

# let_go - the other program ends without a change
let_go() {
    kill "$holder"
    wait "$holder" || true
    holder=
    exec 9>&-
    rm more
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
    hold s.zqp
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

@test "a signal ends a wait for paths that do not come" {
    mkdir folder
    mkfifo never
    local list process status
    for list in never -; do
        env --default-signal=TERM "$ZQPATHS" index folder/s.zqp --list "$list" <>never &
        process=$!
        until [ -n "$(files folder)" ]; do sleep 0.01; done
        kill "$process"
        status=0
        wait "$process" || status=$?
        [ "$status" = 143 ]
        [ -z "$(files folder)" ]
    done
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
    # What the program and its libraries take before they do anything.
    local floor=10000 more status
    until (ulimit -v "$floor" && zqpaths --version) >/dev/null 2>&1; do floor=$((floor + 1000)); done
    for more in 1000 6000 11000 16000 21000; do
        (
            ulimit -v $((floor + more))
            fails_with 4 'out of memory' zqpaths index --force s.zqp --list list
            # Reading takes little beside the mapped file.
            status=0
            zqpaths list s.zqp >got 2>told || status=$?
            case $status in
                0) cmp list got ;;
                4) [ "$(cat told)" = 'zqpaths: out of memory' ] ;;
                *) false ;;
            esac
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
    hold s.zqp
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
    hold s.zqp
    fails_with 2 "s.zqp: is held by zqpaths (process $holder)" zqpaths add s.zqp --list - <<<b
    let_go
    [ "$(zqpaths list s.zqp)" = a ]
}

@test "a writer does not wait for readers, who keep what they have opened" {
    random_list 20000 >list
    zqpaths index -q s.zqp --list list
    mkfifo slow
    "$ZQPATHS" list s.zqp >slow &
    local reader=$!
    exec 8<slow
    zqpaths add -q s.zqp --list - <<<more 8<&-
    zqpaths index -q --force s.zqp --list - <<<new 8<&-
    cmp list - <&8
    exec 8<&-
    wait "$reader"
    [ "$(zqpaths list s.zqp)" = new ]
}

@test "readers read on while one writes" {
    make_set s.zqp a
    hold s.zqp
    [ "$(zqpaths list s.zqp)" = a ]
    zqpaths verify s.zqp
    let_go
    hold s.zqp 'index --force'
    [ "$(zqpaths list s.zqp)" = a ]
    let_go
    [ "$(zqpaths list s.zqp)" = a ]
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

@test "what a killed writer left is gone after the next one" {
    mkdir folder
    mkfifo more
    local _
    for _ in 1 2; do
        "$ZQPATHS" index -q folder/s.zqp --list more &
        holder=$!
        exec 9>more
        seq 100 >&9
        until [ -n "$(files folder)" ]; do sleep 0.01; done
        kill -KILL "$holder"
        wait "$holder" || true
        exec 9>&-
        [ "$(ls -A folder | wc -l)" = 1 ]
        [ ! -e folder/s.zqp ]
    done
    holder=
    make_set folder/s.zqp a
    [ "$(files folder)" = 's.zqp ' ]
}

@test "a tail that a killed writer left is cut by the next one" {
    make_set s.zqp a
    head -c 100000 /dev/urandom >>s.zqp
    zqpaths add s.zqp --list - <<<b
    [ "$(stat --format %s s.zqp)" -lt 20000 ]
    [ "$(zqpaths list s.zqp)" = $'a\nb' ]
}

@test "a set that is cut short while it is read is named, and the program ends" {
    seq -f 'some/folder/%.0f' 400000 >list
    zqpaths index -q s.zqp --list list
    mkfifo slow
    (
        status=0
        "$ZQPATHS" list s.zqp >slow 2>told || status=$?
        echo "$status" >status
    ) &
    local reader=$!
    exec 8<slow
    local line
    read -r line <&8
    truncate --size 4096 s.zqp
    cat <&8 >rest
    wait "$reader"
    [ "$(cat status)" = 2 ]
    [ "$(cat told)" = 'zqpaths: s.zqp: was cut short while it was read' ]
    [ "$(wc -l <rest)" -lt 400000 ]
}
