# How far a work is, on terminals and to programs. Slow work is a list that comes slowly.

load ../setup
load ../terminal

# index_slowly [OPTION]... - takes a list that begins at once and ends after $1 seconds
index_slowly() {
    local seconds=$1
    shift
    { seq 1000; sleep "$seconds"; echo end; } | zqpaths index s.zqp --list - "$@"
}

# start_indexing - a work on the terminal, below three lines, that goes on for as long as the
# pipe is open
start_indexing() {
    mkfifo list
    start_on_terminal bash -c 'printf "%s\n" one two three; zqpaths index s.zqp --list list'
    exec 7>list
    seq 1000 >&7
}

# await_that CHECK... - waits until a command succeeds, which looks at the terminal: a busy machine
# may take its time
await_that() {
    local i
    for ((i = 0; i < 400; ++i)); do
        "$@" && return
        sleep 0.05
    done
    echo "shown: $screen"
    return 1
}

# shows TEXT - whether the terminal shows it; await_screen TEXT waits until it does
shows() {
    screen=$(terminal_screen)
    [[ $screen == *"$1"* ]]
}
await_screen() {
    await_that shows "$1"
}

end_indexing() {
    exec 7>&-
    await_terminal
    [ "$status" -eq 0 ]
}

@test "a terminal shows one line, which is gone in the end" {
    start_indexing
    await_screen 'indexing: reading, 1,000 paths, '
    [ "$(wc -l <<<"$screen")" -eq 4 ]
    local before=$screen
    shows_another() { screen=$(terminal_screen) && [ "$screen" != "$before" ]; }
    await_that shows_another # its wheel turns although nothing comes
    end_indexing
    [ "$screen" = $'one\ntwo\nthree\nzqpaths: s.zqp holds 1,000 paths' ]
    grep -q '[⠋⠙⠹⠸⠼⠴⠦⠧⠇⠏] indexing' terminal.bytes
}

@test "nothing is left of a line when the terminal becomes narrower, then wider" {
    start_indexing
    await_screen 'indexing: reading, 1,000 paths, '
    # Also in what has left the screen there is nothing but the line that is there now.
    shows_one_line() {
        screen=$(on_server capture-pane -p -S - | grep .)
        [[ $screen == $'one\ntwo\nthree\n'?' indexing: reading'* ]] &&
            [ "$(wc -l <<<"$screen")" -eq 4 ]
    }
    local columns
    for columns in 20 80; do
        resize_terminal "$columns" 24
        sleep 0.25 # until it has been drawn for this width
        await_that shows_one_line
    done
    end_indexing
    [[ $screen == *'zqpaths: s.zqp holds 1,000 paths' ]]
    [[ $screen != *indexing* ]]
}

@test "a terminal whose locale is C gets ASCII alone" {
    terminal_locale=C
    start_indexing
    await_screen 'indexing: reading, 1,000 paths, '
    end_indexing
    ! LC_ALL=C grep -q '[^ -~[:cntrl:]]' terminal.bytes
}

@test "a dumb terminal gets whole lines, and no sequences" {
    terminal_kind=dumb
    start_indexing
    await_screen 'indexing: reading, 1,000 paths, '
    end_indexing
    [[ $screen == *$'\nindexing: reading, 1,000 paths, '* ]]
    ! grep -q $'\e' terminal.bytes
}

@test "a line is drawn where there is no terminal if it is asked for" {
    index_slowly 1.3 --progress=line 2>told
    [[ $(tr '\r' '\n' <told) == *' indexing: reading, 1,000 paths'* ]]
    grep -q 'zqpaths: s.zqp holds 1,001 paths' told
}

@test "a work that is verified shows what it counts" {
    make_set s.zqp a b/c
    zqpaths verify s.zqp --progress=json 2>told >/dev/null
    [ "$(tail -n 1 told | jq -c '[.work, .phase, .unit, .done, .total, .part]')" = \
        '["verifying","reading","paths",2,2,1]' ]
}

@test "programs get objects as their schema says, wherever they read them" {
    index_slowly 0.7 --progress=json 2>told
    grep '^{' told >objects
    [ "$(wc -l <objects)" -ge 3 ]
    local schema=$BATS_TEST_DIRNAME/../../../../../docs/schemas/progress.json
    [ "$(jq -c 'keys' objects | uniq)" = "$(jq -c '.required | sort' "$schema")" ]
    [ "$(jq -c '.properties | keys' "$schema")" = "$(jq -c '.required | sort' "$schema")" ]
    # Each value is of one of the types of its property, or one of its words.
    jq -es --slurpfile schema "$schema" '
        def kind: type as $t | if $t == "number" and floor == . then ["integer", "number"] else [$t] end;
        [.[] | to_entries[] | . as $e | $schema[0].properties[$e.key] |
            if .enum then .enum | index($e.value) != null
            else ([.type] | flatten) as $types | $e.value | kind | any(IN($types[])) end] | all' objects
    [ "$(tail -n 1 objects | jq -r .phase)" = writing ]
    grep -q '^zqpaths: s.zqp holds 1,001 paths$' told
}

@test "objects are told although all else is to be quiet, and nothing is where that is wanted" {
    make_set s.zqp a
    zqpaths add s.zqp --list - --quiet --progress=json <<<b 2>told
    [ "$(jq -s 'length >= 2' told)" = true ]
    zqpaths add s.zqp --list - --quiet --progress=none <<<c 2>told
    [ ! -s told ]
    fails_with 2 '--progress excludes --no-progress' zqpaths verify s.zqp --no-progress --progress json
    fails_with 2 "--progress is auto, line, json or none, not 'jsno'; the nearest is 'json'" \
        zqpaths verify s.zqp --progress=jsno
}

@test "a file that is read foretells its end" {
    seq 100000 >list.txt
    zqpaths index s.zqp --list list.txt --progress=json 2>told
    zqpaths index again.zqp --list - --progress=json <list.txt 2>>told
    [ "$(grep '^{' told | jq -s 'any(.part != null)')" = true ]
}
