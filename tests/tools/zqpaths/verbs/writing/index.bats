# zqpaths index: a new set of directories or of a list.

load ../setup

# is_set_of LIST SET - the set holds exactly the paths of the list, each ended by NUL
is_set_of() {
    zqpaths list "$2" -0 | cmp - "$1"
}

@test "a list with newlines comes back as it is" {
    printf 'b\na/x\na/x\n/usr/bin/x\na/\n' >list.txt
    zqpaths index s.zqp --list list.txt
    zqpaths list s.zqp | cmp - list.txt
}

@test "the last path of a list needs no delimiter" {
    printf 'a\nb' >list.txt
    zqpaths index s.zqp --list list.txt
    [ "$(zqpaths list s.zqp)" = $'a\nb' ]
    printf 'a\0b' | zqpaths index t.zqp --list - -0
    [ "$(zqpaths list t.zqp)" = $'a\nb' ]
}

@test "odd names in a list of NUL come back as they are" {
    odd_paths >odd.paths
    zqpaths index s.zqp --list odd.paths -0
    is_set_of odd.paths s.zqp
}

@test "a pipe and a named pipe are read like a file" {
    odd_paths >odd.paths
    zqpaths index s.zqp --list - -0 <odd.paths
    is_set_of odd.paths s.zqp
    zqpaths index t.zqp --list <(cat odd.paths) -0
    is_set_of odd.paths t.zqp
}

@test "standard input leaves nothing in the folder for temporary files" {
    mkdir temporary
    seq 1000 | TMPDIR=$PWD/temporary zqpaths index s.zqp --list -
    [ "$(zqpaths list s.zqp | tail -n 1)" = 1000 ]
    [ -z "$(ls -A temporary)" ]
}

@test "standard input is read as it comes, and kept nowhere" {
    (
        export TMPDIR=$PWD/none
        [ "$(seq 100000 | zqpaths index s.zqp --list - 2>&1)" = 'zqpaths: s.zqp holds 100,000 paths' ]
    )
    seq 100000 | cmp - <(zqpaths list s.zqp)
}

@test "20,000 random strings of bytes come back as they are" {
    random_paths 20000 >random.paths
    [ "$(tr -cd '\0' <random.paths | wc -c)" -eq 20000 ]
    zqpaths index s.zqp --list random.paths -0
    is_set_of random.paths s.zqp
}

@test "a path longer than all buffers comes back" {
    { head -c 3000000 /dev/zero | tr '\0' 'x'; printf '/y\nz\n'; } >list.txt
    zqpaths index s.zqp --list list.txt
    zqpaths list s.zqp | cmp - list.txt
}

@test "an empty line is refused with its number" {
    printf 'a\nb\n\nc\n' >list.txt
    fails_with 2 'list.txt: line 3 is empty' zqpaths index s.zqp --list list.txt
    fails_with 2 'standard input: line 1 is empty' zqpaths index s.zqp --list - <<<''
    printf 'a\0\0' >list.nul
    fails_with 2 'list.nul: path 2 is empty' zqpaths index s.zqp --list list.nul -0
    [ ! -e s.zqp ]
}

@test "a NUL in a list of lines is refused with its line" {
    printf 'a\nb\0c\n' >list.txt
    fails_with 2 'list.txt: line 2 holds a NUL' zqpaths index s.zqp --list list.txt
    [ ! -e s.zqp ]
}

@test "a list that cannot be read is refused" {
    fails_with 2 'none.txt: No such file or directory' zqpaths index s.zqp --list none.txt
    fails_with 2 '.: Is a directory' zqpaths index s.zqp --list .
}

@test "a source without paths is refused" {
    : >empty.txt
    mkdir -p bare/bare
    fails_with 2 'no paths in empty.txt' zqpaths index s.zqp --list empty.txt
    fails_with 2 'no paths in standard input' zqpaths index s.zqp --list - </dev/null
    fails_with 2 'no paths in bare' zqpaths index s.zqp bare
    [ ! -e s.zqp ]
}

@test "a set that is there is replaced only with --force" {
    make_set s.zqp old
    fails_with 2 's.zqp: is there already' zqpaths index s.zqp --list - <<<new
    [ "$(zqpaths list s.zqp)" = old ]
    zqpaths index s.zqp --force --list - <<<new
    [ "$(zqpaths list s.zqp)" = new ]
}

@test "a damaged set is replaced with --force, and no other file" {
    make_set whole.zqp old
    local file
    head -c 5 whole.zqp >short.zqp
    : >empty.zqp
    { head -c 4096 /dev/zero && tail -c +4097 whole.zqp; } >overwritten.zqp
    for file in short empty overwritten; do
        fails_with 2 'is there already; --force' zqpaths index "$file.zqp" --list - <<<new
        zqpaths index "$file.zqp" --force --list - <<<new
        [ "$(zqpaths list "$file.zqp")" = new ]
    done
    echo text >text
    fails_with 2 'text: is no saved set' zqpaths index text --force --list - <<<new
    [ "$(<text)" = text ]
}

@test "a set that is there is seen before the source is read" {
    make_set s.zqp old
    mkfifo never
    fails_with 2 's.zqp: is there already' timeout 10 "$ZQPATHS" index s.zqp --list - <>never
    fails_with 2 's.zqp: is there already' timeout 10 "$ZQPATHS" index s.zqp --list never
    fails_with 2 'none: No such file or directory' \
        timeout 10 "$ZQPATHS" index none/s.zqp --list - <>never
}

@test "a failed index --force leaves the old set" {
    make_set s.zqp old
    printf 'a\n\n' >list.txt
    fails_with 2 'line 2 is empty' zqpaths index s.zqp --force --list list.txt
    [ "$(zqpaths list s.zqp)" = old ]
}

@test "directories or a list are needed, not both" {
    fails_with 2 'DIR or --list' zqpaths index s.zqp
    fails_with 2 'excludes' zqpaths index s.zqp . --list list.txt
}

@test "a tree comes in byte order, files first, hidden names left out" {
    mkdir -p tree/b tree/a/.git tree/.hidden tree/empty
    touch tree/z tree/B tree/.x tree/a/q tree/a/.git/q tree/b/q tree/.hidden/q $'tree/\xff'
    ln -s nowhere tree/link
    zqpaths index s.zqp tree
    zqpaths list s.zqp >got
    printf 'tree/%s\n' B link z $'\xff' a/q b/q | cmp - got
    zqpaths index t.zqp tree/.hidden
    [ "$(zqpaths list t.zqp)" = tree/.hidden/q ]
    zqpaths index u.zqp --hidden tree
    [ "$(zqpaths list u.zqp | grep -c '/\.')" -eq 3 ]
}

@test "odd names in a tree are those that find sees" {
    make_odd_tree odd
    for jobs in 1 2 7; do
        zqpaths index "s$jobs.zqp" --hidden -j "$jobs" odd
        zqpaths list "s$jobs.zqp" -0 >"got$jobs"
    done
    cmp got1 got2
    cmp got1 got7
    LC_ALL=C find odd ! -type d -print0 | LC_ALL=C sort -z >expected
    LC_ALL=C sort -z got1 | cmp - expected
}

@test "several directories stand one after the other" {
    mkdir one two
    touch one/x two/x
    zqpaths index s.zqp two one two
    [ "$(zqpaths list s.zqp)" = $'two/x\none/x\ntwo/x' ]
}

@test "an unreadable directory is told, skipped and status 2 in the end" {
    mkdir -p tree/closed tree/open
    touch tree/closed/x tree/open/x
    chmod 0 tree/closed
    as_user=()
    if [ "$(id -u)" -eq 0 ]; then
        chmod 777 . tree
        as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
        "${as_user[@]}" test -x "$ZQPATHS" -a -r . || skip "root reads all, and cannot step down"
    fi
    run -2 --separate-stderr "${as_user[@]}" "$ZQPATHS" index s.zqp tree
    [[ $stderr == *"1 directory could not be read: tree/closed: Permission denied"* ]]
    [ "$(zqpaths list s.zqp)" = tree/open/x ]
    "${as_user[@]}" "$ZQPATHS" index t.zqp --ignore-unreadable tree
    [ "$(zqpaths list t.zqp)" = tree/open/x ]
}

@test "what is no directory is refused" {
    touch file
    fails_with 2 'file: Not a directory' zqpaths index s.zqp file
    fails_with 2 'none: No such file or directory' zqpaths index s.zqp none
}

@test "links to directories are followed with --follow, loops are told" {
    mkdir -p tree/a other
    touch tree/a/x other/y
    ln -s ../other tree/b
    zqpaths index s.zqp tree
    [ "$(zqpaths list s.zqp)" = $'tree/b\ntree/a/x' ]
    zqpaths index t.zqp --follow tree
    [ "$(zqpaths list t.zqp)" = $'tree/a/x\ntree/b/y' ]
    ln -s .. tree/a/up
    run -2 --separate-stderr zqpaths index u.zqp --follow tree
    [[ $stderr == *"1 directory could not be read: tree/a/up: is tree, in which it is: a loop"* ]]
    [ "$(zqpaths list u.zqp)" = $'tree/a/x\ntree/b/y' ]
}

@test "the number of paths is told unless -q" {
    run --separate-stderr zqpaths index s.zqp --list - <<<$'a\nb'
    [ -z "$output" ]
    [ "$stderr" = 'zqpaths: s.zqp holds 2 paths' ]
    run --separate-stderr zqpaths index t.zqp -q --list - <<<$'a\nb'
    [ -z "$output$stderr" ]
}

@test "a name cannot write on the terminal through a message" {
    mkdir $'tree\x1b[31m'
    fails_with 2 'no paths in tree\x1B[31m' zqpaths index s.zqp $'tree\x1b[31m'
}
