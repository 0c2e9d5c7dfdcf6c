# zqpaths index and add: what of directories and lists is left out, and that it is told.

load ../setup

# told COMMAND... - what the command tells, without the program's name and the size of the set
told() {
    "$@" 2>&1 >/dev/null | sed 's/^zqpaths: //' | grep -v holds
}

@test "names that begin with a dot are counted" {
    mkdir -p tree/.git
    touch tree/a tree/.b tree/.git/{c,d}
    [ "$(told zqpaths index s.zqp tree)" = \
        'left out 2 names that begin with a dot, --hidden takes them' ]
    rm tree/.b
    [ "$(told zqpaths add s.zqp tree)" = 'left out 1 name that begins with a dot, --hidden takes it' ]
    [ -z "$(told zqpaths add s.zqp --hidden tree)" ]
    [ -z "$(told zqpaths add s.zqp -q tree)" ]
    [ "$(zqpaths list s.zqp)" = $'tree/a\ntree/a\ntree/a\ntree/.git/c\ntree/.git/d\ntree/a' ]
}

@test "patterns leave out names and what is in them, in directories and in lists" {
    mkdir -p tree/{src,build/deep}
    touch tree/{a.o,keep.o,b} tree/src/{a.o,c} tree/build/deep/x
    printf '%s\n' '# objects' '*.o ' '' '!keep.o' >rules
    zqpaths index s.zqp tree --exclude-from rules --exclude /build/ 2>told
    [ "$(zqpaths list s.zqp)" = $'tree/b\ntree/keep.o\ntree/src/c' ]
    grep -qx 'zqpaths: left out 3 names by --exclude' told

    # What the command line says comes last.
    zqpaths index t.zqp --exclude=keep.o tree --exclude-from rules --exclude '[bc]' --exclude=[s]rc
    [ "$(zqpaths list t.zqp)" = tree/build/deep/x ]

    printf '%s\n' /x/build/y ./build x//b.o x/c build/ >list
    zqpaths index u.zqp --exclude 'build/' --exclude '*.o' --list list 2>told
    [ "$(zqpaths list u.zqp)" = $'./build\nx/c' ]
    grep -qx 'zqpaths: left out 3 names by --exclude' told
}

@test "types and depth are chosen" {
    mkdir -p tree/a/b
    touch tree/a/x tree/a/b/y
    ln -s x tree/link
    zqpaths index s.zqp tree --type f 2>told
    [ "$(zqpaths list s.zqp)" = $'tree/a/x\ntree/a/b/y' ]
    grep -qx 'zqpaths: left out 1 name by --type' told
    zqpaths index t.zqp tree/ --type l,d --max-depth 2 2>told
    [ "$(zqpaths list t.zqp)" = $'tree/a\ntree/link\ntree/a/b' ]
    grep -qx 'zqpaths: left out 1 name by --max-depth' told
    zqpaths index u.zqp --max-depth 2 --list - <<<$'/a/b\n./a/b\na//b/\na/b/c' 2>told
    [ "$(zqpaths list u.zqp)" = $'/a/b\na//b/' ]
}

@test "a set is not among its own paths" {
    touch a
    zqpaths index --hidden s.zqp .
    [ "$(zqpaths list s.zqp)" = ./a ]
    zqpaths add --hidden s.zqp .
    [ "$(zqpaths list s.zqp)" = $'./a\n./a' ]
    ln s.zqp other-name
    zqpaths index --hidden --force s.zqp "$PWD"
    [ "$(zqpaths list s.zqp)" = "$PWD/a" ]
    zqpaths index --hidden t.zqp .
    [ "$(zqpaths list t.zqp)" = $'./a\n./other-name\n./s.zqp' ]
}

@test "many unreadable directories are one line, and all of them with --verbose" {
    mkdir -p tree/{1..30}
    local i
    for i in {1..30}; do ln -s . "tree/$i/loop"; done
    touch tree/x
    run -2 --separate-stderr zqpaths index s.zqp --follow tree
    [ "${#stderr_lines[@]}" -eq 2 ]
    [ "${stderr_lines[1]}" = 'zqpaths: 30 directories could not be read, the first tree/1/loop: is tree/1, in which it is: a loop; --verbose tells all' ]
    run -0 --separate-stderr zqpaths add s.zqp --verbose --ignore-unreadable --follow tree
    [ "$(grep -c 'a loop$' <<<"$stderr")" -eq 30 ]
    [[ $stderr == *'30 directories could not be read' ]]
}

@test "filters that cannot be meant are refused" {
    mkdir tree
    fails_with 2 '--max-depth 0' zqpaths index s.zqp --max-depth 0 tree
    local types
    for types in '' x f, ,f fd 'f d'; do
        fails_with 2 '--type' zqpaths index s.zqp --type "$types" tree
    done
    fails_with 2 'only directories tell types' zqpaths index s.zqp --type f --list - <<<a
    fails_with 2 'none: No such file' zqpaths index s.zqp --exclude-from none tree
}
