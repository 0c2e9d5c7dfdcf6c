#!/usr/bin/env bats
load ../setup

# tree_of SET ARGUMENT... - the names with what leads to them, without the figures of less than ten
# files
tree_of() {
    LC_ALL=C.UTF-8 zqpaths tree "$@" | LC_ALL=C.UTF-8 sed -E 's/^.{34}//'
}

# names_of SET ARGUMENT... - the objects as "level name files"
names_of() {
    zqpaths tree --json "$@" | jq --raw-output '"\(.level) \(.folder // .file // .restOf) \(.files)"'
}

make_few() {
    make_set few.zqp /usr/share/a /usr/share/b /usr/share/doc/c /usr/lib/d /usr/e
}

@test "folders stand below each other, with their files and their share" {
    make_few
    LC_ALL=C.UTF-8 run -0 zqpaths tree few.zqp
    [ "${lines[0]}" = '5  100.0 %  ████████████████████  /usr' ]
    [ "${lines[1]}" = '3   60.0 %  ████████████          ├── share' ]
    [ "${lines[2]}" = '1   20.0 %  ████                  │   ├── doc' ]
    [ "${lines[3]}" = '2   40.0 %  ████████              │   └── … 2 files' ]
    [ "${lines[4]}" = '1   20.0 %  ████                  ├── lib' ]
    [ "${lines[5]}" = '1   20.0 %  ████                  └── … 1 file' ]
    [ "${#lines[@]}" -eq 6 ]
}

@test "a locale without UTF-8 gets ASCII" {
    make_few
    LC_ALL=C run -0 zqpaths tree few.zqp
    [ "${lines[1]}" = '3   60.0 %  ############          |-- share' ]
    [ "${lines[3]}" = '2   40.0 %  ########              |   `-- ... 2 files' ]
    LC_ALL=C run -0 zqpaths tree few.zqp
    [[ $output != *[$'\x80'-$'\xff']* ]]
}

@test "a tree begins at a folder" {
    make_few
    run -0 names_of few.zqp /usr/share
    [ "$output" = $'0 /usr/share 3\n1 /usr/share/doc 1\n1 /usr/share 2' ]
    run -0 names_of few.zqp //usr//share/ --depth 0
    [ "$output" = '0 /usr/share 3' ]
}

@test "a folder that is none has status 1 and is named" {
    make_few
    fails_with 1 'few.zqp: /usr/x is no folder of the set' zqpaths tree few.zqp /usr/x
    fails_with 1 'usr is no folder of the set' zqpaths tree few.zqp usr
    fails_with 1 '/usr/e is no folder' zqpaths tree few.zqp /usr/e
    fails_with 1 'x\x1B[2J is no folder' zqpaths tree few.zqp $'x\e[2J'
}

@test "depth counts the levels" {
    make_few
    [ "$(names_of few.zqp --depth 0)" = '0 /usr 5' ]
    [ "$(names_of few.zqp --depth 1)" = $'0 /usr 5\n1 /usr/share 3\n1 /usr/lib 1\n1 /usr 1' ]
    [ "$(names_of few.zqp --depth 99)" = "$(names_of few.zqp --depth 3)" ]
}

@test "what is beyond the top is summed up" {
    printf '%s\n' a/1 a/2 a/3 b/4 b/5 c/6 d/7 e >list
    zqpaths index many.zqp --list list
    LC_ALL=C.UTF-8 run -0 zqpaths tree many.zqp --depth 1 --top 2
    [[ ${lines[1]} == '3   37.5 %'*'├── a' ]]
    [[ ${lines[2]} == '2   25.0 %'*'├── b' ]]
    [[ ${lines[3]} == '3   37.5 %'*'└── … 2 more folders, 1 file' ]]
    run -0 zqpaths tree many.zqp --depth 1 --top 2 --json
    [ "${lines[3]}" = '{"restOf":"","files":3,"filesInIt":1,"foldersInIt":2,"level":1}' ]
    run -0 names_of many.zqp --depth 1 --top 0
    [ "$output" = $'0  8\n1 a 3\n1 b 2\n1 c 1\n1 d 1\n1  1' ]
}

@test "folders are sorted by name if that is wanted" {
    make_set few.zqp c/1 c/2 a/3 b/4 b/5 b/6
    [ "$(names_of few.zqp --depth 1)" = $'0  6\n1 b 3\n1 c 2\n1 a 1' ]
    [ "$(names_of few.zqp --depth 1 --sort name)" = $'0  6\n1 a 1\n1 b 3\n1 c 2' ]
    fails_with 2 "--sort is count or name, not 'bytes'" zqpaths tree few.zqp --sort bytes
}

@test "files are shown by name, as many as folders" {
    make_few
    zqpaths add few.zqp --list - <<<$'/usr/share/c\n/usr//share/0'
    run -0 tree_of few.zqp --files --top 2
    [ "$output" = "/usr
├── share
│   ├── doc
│   ├── 0
│   ├── a
│   └── … 2 files
├── lib
│   └── d
└── e" ]
}

@test "a folder that holds nothing but another shares its line" {
    make_set chain.zqp a/b/c/d/1 a/b/c/e/2
    [ "$(names_of chain.zqp --depth 1)" = $'0 a/b/c 2\n1 a/b/c/d 1\n1 a/b/c/e 1' ]
    [ "$(names_of chain.zqp a/b --depth 0)" = '0 a/b/c 2' ]
}

@test "absolute paths, relative ones and those without folder stand side by side" {
    make_set mixed.zqp /usr/a usr/b usr//c d //usr/e
    run -0 tree_of mixed.zqp
    [ "$output" = "mixed.zqp
├── /usr
├── usr
└── … 1 file" ]
}

@test "the files of a set without folders stand below its name" {
    make_set flat.zqp b a
    [ "$(tree_of flat.zqp --files)" = $'flat.zqp\n├── a\n└── b' ]
}

@test "folders count once, however many segments they are in" {
    make_set few.zqp a/b/x a/y
    zqpaths add few.zqp --list - <<<$'a/z\na/c/x\na/b/z'
    [ "$(names_of few.zqp --depth 1 --sort name)" = $'0 a 5\n1 a/b 2\n1 a/c 1\n1 a 2' ]
    zqpaths compact few.zqp packed.zqp --packed
    [ "$(names_of packed.zqp --depth 1 --sort name)" = $'0 a 5\n1 a/b 2\n1 a/c 1\n1 a 2' ]
}

@test "thousands of levels are gone through" {
    seq 3000 | perl -ne 'chomp; print "d/" x $_, "f\n"' >list
    zqpaths index deep.zqp --list list
    run -0 awk 'length > longest { longest = length } END { print NR, (longest > 12000) }' \
        <(LC_ALL=C zqpaths tree deep.zqp --depth 9999 --files)
    [ "$output" = '6000 1' ]
    run -0 jq --slurp 'map(.level) | max' <(zqpaths tree deep.zqp --depth 9999 --files --json)
    [ "$output" = 3000 ]
    make_odd_set odd.zqp
    run -0 zqpaths tree odd.zqp
    [[ $output == *"$(deep_path | cut -c 1-100)"* ]]
}

@test "odd names are printed safely, and whole in JSON" {
    make_odd_set odd.zqp
    run -0 zqpaths tree odd.zqp --files --top 0 --color never
    [[ $output != *$'\xff'* && $output != *$'\t'* ]]
    [[ $output == *'new\x0Aline'*  && $output == *'bad\xFF\xFEutf8'* ]]
    run -0 jq --slurp --raw-output 'map(select(.fileBytes)) | length > 3' \
        <(zqpaths tree odd.zqp --files --top 0 --json)
    [ "$output" = true ]
}

@test "lines are as wide as the terminal, in cells" {
    make_set wide.zqp 漢字漢字漢字漢字漢字漢字漢字漢字/a abcdefghijklmnopqrstuvwxyzabcdefghijkl/b
    run -0 in_terminal "stty cols 40; LC_ALL=C.UTF-8 NO_COLOR=1 '$ZQPATHS' tree wide.zqp --sort name --depth 1"
    [ "${lines[0]%$'\r'}" = '2  100.0 %  wide.zqp' ]
    [ "${lines[1]%$'\r'}" = '1   50.0 %  ├── abcdefghijklmnopqrstuvw…' ]
    [ "${lines[2]%$'\r'}" = '1   50.0 %  └── 漢字漢字漢字漢字漢字漢…' ]
}

@test "names have the colours of LS_COLORS on a terminal, or where they are wanted" {
    make_set few.zqp a/x.tar a/y
    export LS_COLORS='di=01;35:*.tar=01;31:*.y=\e[2J' LC_ALL=C.UTF-8
    run -0 in_terminal "NO_COLOR= '$ZQPATHS' tree few.zqp --files"
    [[ $output == *$'\e[01;35ma\e[0m'*$'\e[01;31mx.tar\e[0m'*'└── y'* ]]
    run -0 zqpaths tree few.zqp
    [[ $output != *$'\e'* ]]
    run -0 in_terminal "NO_COLOR=1 '$ZQPATHS' tree few.zqp"
    [[ $output != *$'\e'* ]]
    NO_COLOR=1 run -0 zqpaths tree few.zqp --color always
    [[ $output == *$'\e[01;35ma\e[0m'* ]]
    run -0 in_terminal "NO_COLOR= '$ZQPATHS' tree few.zqp --color never"
    [[ $output != *$'\e'* ]]
}

@test "a damaged set is told by name" {
    make_odd_set odd.zqp
    damage odd.zqp 4096
    fails_with 3 "odd.zqp" zqpaths tree odd.zqp
    fails_with 2 "none.zqp" zqpaths tree none.zqp
}

@test "what is gone from the disk is in no tree" {
    mkdir -p data/a data/b
    touch data/a/1.c data/a/2.c data/b/3.h
    zqpaths index s.zqp data
    rm -r data/b data/a/2.c
    zqpaths update s.zqp -q
    [ "$(names_of s.zqp --files)" = $'0 data/a 1\n1 data/a/1.c null' ]
}
