#!/usr/bin/env bats
load ../setup

# json_of SET FILTER - what jq's filter makes of the object
json_of() {
    zqpaths info "$1" --json | jq --compact-output "$2"
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
    [ "$(json_of few.zqp '.bitsPerCharacter')" = 1.75 ]
}

@test "the saved bytes of all parts are those of the file" {
    make_odd_set odd.zqp
    [ "$(json_of odd.zqp '.saved.file')" = "$(stat -c %s odd.zqp)" ]
    # What is in no part is the header, the directory and what fills pages.
    run -0 json_of odd.zqp '.saved | .file - ([.names, .folders, .index, .orders, .code, .sums] | add)'
    ((output >= 4096 && output < 2 * 4096))
    [ "$(json_of odd.zqp '.saved.packed')" = 0 ]
    run -0 zqpaths info odd.zqp
    [[ $output == *'names '*'folders '*'index '*'orders '*'code '*'file itself '* ]]
}

@test "the bytes of a packed set are told as one" {
    make_odd_set odd.zqp
    zqpaths compact odd.zqp packed.zqp --packed
    [ "$(json_of packed.zqp '[.saved.names, .saved.folders, .saved.code]')" = '[0,0,0]' ]
    run -0 json_of packed.zqp '.saved | .file - .packed'
    ((output >= 4096 && output < 2 * 4096))
}

@test "segments are counted, and those that are packed" {
    make_set few.zqp a/b
    zqpaths add few.zqp --list - <<<c
    [ "$(json_of few.zqp '.segments')" = '{"count":2,"packed":0}' ]
    zqpaths compact few.zqp --packed
    [ "$(json_of few.zqp '.segments')" = '{"count":1,"packed":1}' ]
    run -0 zqpaths info few.zqp
    [[ $output == *'segments '*'1 of them packed'* ]]
}

@test "folders count once, however many segments they are in" {
    make_set few.zqp a/b/x a/y
    zqpaths add few.zqp --list - <<<$'a/z\na/c/x\na/b/z'
    [ "$(json_of few.zqp '.tree')" = '{"folders":3,"depth":3,"widest":4}' ]
    [ "$(json_of few.zqp '[.largestFolders[] | [.folder, .files]]')" = \
        '[["a/b/",2],["a/",2],["a/c/",1]]' ] ||
        [ "$(json_of few.zqp '[.largestFolders[] | [.folder, .files]]')" = \
            '[["a/",2],["a/b/",2],["a/c/",1]]' ]
}

@test "what opening takes is measured" {
    make_set few.zqp a/b
    [ "$(json_of few.zqp '.microseconds | .opening > 0 and .firstPath > 0')" = true ]
    run -0 zqpaths info few.zqp
    [[ $output == *'opening '*' microseconds, the first path '* ]]
}

@test "one line tells what the file takes, what opening takes and what stays in memory" {
    make_odd_set odd.zqp
    [ "$(json_of odd.zqp '.memory | .ofFile >= 4096')" = true ]
    [ "$(json_of odd.zqp '.memory.ofFile <= .saved.file + 4096')" = true ]
    run -0 zqpaths info --bytes odd.zqp
    local size
    size=$(stat -c %s odd.zqp | sed -E ':a; s/([0-9])([0-9]{3})($|,)/\1,\2\3/; ta')
    [[ ${lines[1]} =~ ^\ \ "$size bytes on disk, the first path after "[0-9,]+" microseconds, then "[0-9,]+" bytes in memory"$ ]]
    [[ $output == *'memory '*' of the file, shared by all who read it, and '*' besides'* ]]
}

@test "sizes are told by 1,024, by 1,000 or exactly" {
    make_set few.zqp a/b
    local size
    size=$(stat -c %s few.zqp)
    run -0 zqpaths info few.zqp
    [[ $output == *"saved  "*" $(awk "BEGIN { printf \"%.1f\", $size / 1024 }") KiB  "* ]]
    run -0 zqpaths info --si few.zqp
    [[ $output == *"saved  "*" $(awk "BEGIN { printf \"%.1f\", $size / 1000 }") kB  "* ]]
    run -0 zqpaths info --bytes few.zqp
    [[ $output == *"text  "*" 4 bytes  as a list"* ]]
    fails_with 2 'excludes' zqpaths info --bytes --si few.zqp
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

@test "a packed set has unknown bits" {
    make_set few.zqp a/b a/c d
    zqpaths compact few.zqp other.zqp --packed
    [ "$(json_of other.zqp '.bitsPerCharacter')" = null ]
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

@test "a damaged set is told by name" {
    make_odd_set odd.zqp
    damage odd.zqp 4096
    fails_with 3 "odd.zqp" zqpaths info odd.zqp
}
