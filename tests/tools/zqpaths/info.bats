#!/usr/bin/env bats
load setup

# json_of SET FILTER - what jq's filter makes of the object
json_of() {
    zqpaths info "$1" --json | jq --compact-output "$2"
}

# in_terminal COMMAND - what a command prints on a terminal
in_terminal() {
    script -qec "$1" /dev/null
}

@test "counts are those of the set" {
    make_set few.zqp a/b a/c a/c2 d
    [ "$(json_of few.zqp '.paths')" = 4 ]
    [ "$(json_of few.zqp '.textBytes')" = 15 ]
    [ "$(json_of few.zqp '.tree.depth')" = 2 ]
    [ "$(json_of few.zqp '.tree.widest')" = 3 ]
    [ "$(json_of few.zqp '.characters')" = 7 ]
    [ "$(json_of few.zqp '.charactersOfNames')" = 8 ]
}

@test "text bytes are those of the list, odd names and all" {
    make_odd_set odd.zqp
    [ "$(json_of odd.zqp '.textBytes')" = "$(wc -c <odd.zqp.paths)" ]
    [ "$(json_of odd.zqp '.tree.depth')" = 3003 ]
}

@test "bits a character are those of the best prefix code" {
    # Without folders: b four times, c twice, d once, and the mark of no folder once.
    make_set few.zqp bb bb cc d
    [ "$(json_of few.zqp '.charactersOfNames')" = 8 ]
    [ "$(json_of few.zqp '.bitsACharacter')" = 1.75 ]
}

@test "the saved bytes of all pieces make up the saved form" {
    make_odd_set odd.zqp
    run -0 json_of odd.zqp '.saved | .form - 8 - ([.shape, .structure, .names, .index] | map(.saved) | add)'
    # What is left is the check sum of the stream, whose last bits a piece may share.
    ((output >= 0 && output <= 8))
    [ "$(json_of odd.zqp '.saved.file')" = "$(stat -c %s odd.zqp)" ]
}

@test "the ten largest folders are named, largest first" {
    local i
    for ((i = 1; i <= 12; ++i)); do
        seq -f "top/folder $i/%.0f" "$i"
    done >list
    zqpaths index many.zqp --list list
    run -0 json_of many.zqp '[.largestFolders[] | [.folder, .files]] == [range(12; 2; -1) | ["top/folder \(.)/", .]]'
    [ "$output" = true ]
}

@test "paths without folder have a place among the folders" {
    make_set few.zqp x/a b c
    [ "$(json_of few.zqp '[.largestFolders[].folder]')" = '["","x/"]' ]
    run -0 zqpaths info few.zqp
    [[ $output == *"(no folder)"* ]]
}

@test "folders that are not UTF-8 come with their bytes" {
    make_set odd.zqp $'bad\xff/a'
    [ "$(json_of odd.zqp '.largestFolders[0].bytes')" = "\"$(printf 'bad\xff/' | base64)\"" ]
}

@test "control characters do not reach the terminal" {
    make_set odd.zqp $'line\nfeed\x1b[31m/a'
    run -0 zqpaths info odd.zqp
    [[ $output == *'line\x0Afeed\x1B[31m/'* ]]
}

@test "bars are plain where standard output is no terminal" {
    make_set few.zqp a/b a/c d
    LC_ALL=C.UTF-8 run -0 zqpaths info few.zqp
    [[ $output == *"###"* ]]
    [[ $output != *$'\x1b'* ]]
    [[ $output != *█* ]]
}

@test "bars are blocks in a terminal, plain where it has no UTF-8" {
    make_set few.zqp a/b a/c d
    run -0 in_terminal "LC_ALL=C.UTF-8 NO_COLOR= '$ZQPATHS' info few.zqp"
    [[ $output == *█* ]]
    [[ $output == *$'\x1b[36m'* ]]
    run -0 in_terminal "LC_ALL=C '$ZQPATHS' info few.zqp"
    [[ $output == *"###"* ]]
    [[ $output != *█* ]]
}

@test "NO_COLOR is honoured" {
    make_set few.zqp a/b a/c d
    run -0 in_terminal "LC_ALL=C.UTF-8 NO_COLOR=1 '$ZQPATHS' info few.zqp"
    [[ $output == *█* ]]
    [[ $output != *$'\x1b'* ]]
}

@test "a set without frequencies has unknown bits" {
    make_set few.zqp a/b a/c d
    zqpaths export few.zqp --tree-string chars --path-tree paths
    zqpaths import other.zqp --tree-string chars --path-tree paths
    [ "$(json_of other.zqp '.bitsACharacter')" = null ]
    run -0 zqpaths info other.zqp
    [[ $output == *"unknown"* ]]
}

@test "a set that is not there is told by name" {
    fails_with 2 "none.zqp" zqpaths info none.zqp
}

@test "a file that is no set is refused" {
    echo text >text.zqp
    fails_with 2 "text.zqp" zqpaths info text.zqp
}

@test "a damaged set is told by name and offset" {
    make_odd_set odd.zqp
    local stream
    stream=$(LC_ALL=C grep -obUaP '\x78\xda' odd.zqp | head -n 1 | cut -d: -f1)
    printf 'damage' | dd of=odd.zqp bs=1 seek="$((stream + 100))" conv=notrunc status=none
    fails_with 3 "odd.zqp" zqpaths info odd.zqp
    [[ $stderr == *"byte 0"* ]]
}
