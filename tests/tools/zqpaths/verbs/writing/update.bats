# zqpaths update: a set is brought up to date with its directories.

load ../setup

# make_tree - a tree, and a set of it
make_tree() {
    mkdir -p tree/a/b tree/c
    touch tree/top tree/a/x tree/a/b/y tree/c/z
    zqpaths index -q s.zqp tree
}

# is_as_indexed SET ARGUMENT... - the set has what indexing with these arguments gives now
is_as_indexed() {
    local set=$1
    shift
    zqpaths index -q --force anew.zqp "$@"
    cmp <(zqpaths list -0 "$set" | LC_ALL=C sort -z) <(zqpaths list -0 anew.zqp | LC_ALL=C sort -z)
}

@test "what is new and what is gone is printed, counted and saved" {
    make_tree
    rm -r tree/a/b
    touch tree/c/new tree/other
    run --separate-stderr -0 zqpaths update s.zqp
    [ "$output" = $'+ tree/other\n- tree/a/b/y\n+ tree/c/new' ]
    [ "$stderr" = 'zqpaths: s.zqp: 2 paths added, 1 gone' ]
    [ "$(zqpaths get s.zqp 1:6)" = \
        $'tree/top\ntree/a/x\ntree/a/b/y\ntree/c/z\ntree/other\ntree/c/new' ]
    is_as_indexed s.zqp tree
}

@test "a path that comes back has its old number" {
    make_tree
    rm tree/a/x
    zqpaths update -q s.zqp
    touch tree/a/x
    run --separate-stderr -0 zqpaths update s.zqp
    [ "$output" = '+ tree/a/x' ]
    [ "$stderr" = 'zqpaths: s.zqp: 0 paths added, 0 gone, 1 back' ]
    [ "$(zqpaths number s.zqp tree/a/x)" = 2 ]
}

@test "changes are told to programs, and nothing with --quiet" {
    make_tree
    rm tree/top
    touch tree/a/new
    run --separate-stderr -0 zqpaths update --json --dry-run s.zqp
    [ "$output" = '{"change":"gone","number":1,"path":"tree/top"}
{"change":"added","number":5,"path":"tree/a/new"}' ]
    run -0 zqpaths update -q s.zqp
    [ -z "$output" ]
    touch tree/top
    [ "$(zqpaths update --json s.zqp 2>/dev/null)" = '{"change":"back","number":1,"path":"tree/top"}' ]
}

@test "a dry run tells the same and writes nothing" {
    make_tree
    rm tree/c/z
    cp s.zqp before.zqp
    run --separate-stderr -0 zqpaths update --dry-run s.zqp
    [ "$output" = '- tree/c/z' ]
    [ "$stderr" = 'zqpaths: s.zqp: 0 paths added, 1 gone' ]
    cmp s.zqp before.zqp
}

@test "a set of directories that have not changed is not touched" {
    make_tree
    sleep 2.1
    zqpaths update -q s.zqp  # those made within two seconds of the index are known from here on
    cp s.zqp before.zqp
    run --separate-stderr -0 zqpaths update s.zqp
    [ "$stderr" = 'zqpaths: s.zqp: nothing has changed' ]
    cmp s.zqp before.zqp
}

@test "directories are read as they were, and in no other way" {
    mkdir -p tree/.git other
    touch tree/.git/x other/y
    ln -s ../other tree/link
    zqpaths index -q s.zqp tree --hidden --follow
    touch tree/.git/new other/new
    [ "$(zqpaths update s.zqp 2>/dev/null)" = $'+ tree/.git/new\n+ tree/link/new' ]
    zqpaths update -q s.zqp --follow --hidden
    fails_with 2 'tree: was read with --follow --hidden for s.zqp' zqpaths update s.zqp --hidden
    is_as_indexed s.zqp tree --hidden --follow
}

@test "one of several directories, a part of one, and one that is new" {
    mkdir -p one two/part three
    touch one/a two/part/b three/c
    zqpaths index -q s.zqp one two/
    rm one/a two/part/b
    touch one/d two/e two/part/f
    [ "$(zqpaths update s.zqp two/part 2>/dev/null)" = $'- two/part/b\n+ two/part/f' ]
    [ "$(zqpaths update s.zqp two 2>/dev/null)" = '+ two/e' ]
    [ "$(zqpaths update s.zqp three 2>/dev/null)" = '+ three/c' ]
    [ "$(zqpaths update s.zqp 2>/dev/null)" = $'- one/a\n+ one/d' ]
    is_as_indexed s.zqp one two three
    fails_with 2 'none: No such file or directory' zqpaths update s.zqp none
}

@test "a set that was made of a list is compared with all of a directory" {
    make_tree
    rm s.zqp
    printf '%s\n' tree/a/x tree/gone/p tree/a/old elsewhere/q | zqpaths index -q s.zqp --list -
    fails_with 2 's.zqp: was not made of directories; DIR is required' zqpaths update s.zqp
    run --separate-stderr -0 zqpaths update s.zqp tree
    [ "$(sort <<<"$output")" = "$(sort <<'END'
+ tree/top
- tree/a/old
+ tree/a/b/y
+ tree/c/z
- tree/gone/p
END
    )" ]
    [ "$(zqpaths list s.zqp --under elsewhere)" = elsewhere/q ]
    touch tree/c/new
    [ "$(zqpaths update s.zqp 2>/dev/null)" = '+ tree/c/new' ]  # it is known now
}

@test "directories that were added are known, and so are those of a compacted set" {
    make_tree
    mkdir -p more/empty
    zqpaths add -q s.zqp more
    touch more/empty/file
    rm tree/top
    [ "$(zqpaths update s.zqp 2>/dev/null)" = $'- tree/top\n+ more/empty/file' ]
    zqpaths compact -q s.zqp
    touch tree/c/new
    [ "$(zqpaths update s.zqp 2>/dev/null)" = '+ tree/c/new' ]
    is_as_indexed s.zqp tree more
}

@test "the set itself is never among its paths" {
    mkdir tree
    touch tree/x
    zqpaths index -q s.zqp tree
    mv s.zqp tree
    touch tree/y
    [ "$(zqpaths update tree/s.zqp tree 2>/dev/null)" = '+ tree/y' ]
}

@test "names of all kinds at all depths are updated" {
    make_odd_tree tree
    zqpaths index -q s.zqp tree --hidden
    rm tree/$'odd\n\xff folder'/*
    rm tree/--json tree/.hidden
    mv tree/'two  spaces' tree/deep/d/d/
    zqpaths update -q s.zqp
    is_as_indexed s.zqp tree --hidden
}

@test "a directory that is not there keeps its paths, and status 2 tells" {
    make_tree
    mkdir empty
    zqpaths add -q s.zqp empty
    mv tree elsewhere
    touch empty/new
    run --separate-stderr -2 zqpaths update s.zqp
    [ "$output" = '+ empty/new' ]
    [[ $stderr == *'tree: No such file or directory'*'stays as it was'* ]]
    run -0 zqpaths update -q --ignore-unreadable s.zqp
    [ "$(zqpaths list s.zqp | wc -l)" -eq 5 ]
    mv elsewhere tree
    zqpaths update -q s.zqp
    is_as_indexed s.zqp tree empty
}

@test "an update that is killed leaves the old set or the new one" {
    mkdir tree
    (cd tree && mkdir {a..z} && touch {a..z}/{1..40})
    zqpaths index -q before.zqp tree
    rm tree/{a..m}/{1..20}
    touch tree/{n..z}/{50..70}
    cp before.zqp after.zqp
    zqpaths update -q after.zqp
    local old new
    old=$(zqpaths list before.zqp | cksum)
    new=$(zqpaths list after.zqp | cksum)
    for _ in $(seq "$((tries / 2))"); do
        cp before.zqp s.zqp
        zqpaths update -q s.zqp &
        sleep "0.0$((RANDOM % 40 + 10))"
        kill -KILL $! 2>/dev/null || true
        wait $! || true
        zqpaths verify -q s.zqp
        [[ $(zqpaths list s.zqp | cksum) == @("$old"|"$new") ]]
    done
    zqpaths update -q s.zqp
    [ "$(zqpaths list s.zqp | sort | cksum)" = "$(zqpaths list after.zqp | sort | cksum)" ]
    [ "$(ls -A)" = $'after.zqp\nbefore.zqp\ns.zqp\ntree' ]
}

@test "what was left out by pattern, type and depth stays out" {
    mkdir -p data/x/y data/keep
    touch data/a.o data/a.c data/x/b.o data/x/y/deep.c
    local filters=(--exclude '*.o' --exclude keep/ --max-depth 2)
    zqpaths index -q s.zqp data "${filters[@]}"
    touch data/new.o data/new.c data/keep/k data/x/y/deeper.c
    [ "$(zqpaths update s.zqp)" = '+ data/new.c' ]
    [ -z "$(zqpaths update s.zqp data "${filters[@]}")" ]
    fails_with 2 'data: was read with --exclude *.o --exclude keep/ --max-depth 2' \
        zqpaths update s.zqp --exclude $'\e'

    zqpaths index -q t.zqp data --type d,f
    rm -r data/x/y
    mkdir data/x/z
    [ "$(zqpaths update t.zqp | sort)" = \
        $'+ data/x/z\n- data/x/y\n- data/x/y/deep.c\n- data/x/y/deeper.c' ]
}
