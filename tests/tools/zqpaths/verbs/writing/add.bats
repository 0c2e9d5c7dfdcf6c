# zqpaths add: more paths after those of a set.

load ../setup

@test "paths stand after those that were there" {
    make_set s.zqp a/x b
    zqpaths add s.zqp --list - <<<$'a/b\nb'
    [ "$(zqpaths list s.zqp)" = $'a/x\nb\na/b\nb' ]
    [ "$(zqpaths get s.zqp 2 3)" = $'b\na/b' ]
}

@test "new characters come in, and numbers stay" {
    make_odd_set s.zqp
    printf 'a/\xc4\x80\0\xe2\x82\xac/new\0' >more.paths
    zqpaths add s.zqp --list more.paths -0
    zqpaths list s.zqp -0 >got
    cat s.zqp.paths more.paths | cmp - got
}

@test "a set can be extended again and again" {
    make_set s.zqp start
    printf 'start\n' >expected
    for i in $(seq 20); do
        printf 'folder/%s/%b\n' "$i" "\\u$(printf '%04x' $((0x400 + i)))" >more
        zqpaths add s.zqp --list more
        cat more >>expected
    done
    zqpaths list s.zqp | cmp - expected
}

@test "directories are added" {
    make_set s.zqp start
    mkdir -p tree/.git
    touch tree/y tree/x tree/.git/z
    zqpaths add s.zqp tree
    [ "$(zqpaths list s.zqp)" = $'start\ntree/x\ntree/y' ]
    zqpaths add s.zqp --hidden tree/.git
    [ "$(zqpaths list s.zqp | tail -n 1)" = tree/.git/z ]
}

@test "nothing to add leaves the file as it is" {
    make_set s.zqp a
    cp s.zqp before
    zqpaths add s.zqp --list - </dev/null
    cmp before s.zqp
}

@test "a bad list leaves the set as it is" {
    make_set s.zqp a
    cp s.zqp before
    fails_with 2 'standard input: line 2 is empty' zqpaths add s.zqp --list - <<<$'b\n\nc'
    fails_with 2 'none.txt: No such file or directory' zqpaths add s.zqp --list none.txt
    fails_with 2 'none: No such file or directory' zqpaths add s.zqp none
    cmp before s.zqp
}

@test "a set that is not there is refused" {
    fails_with 2 'none.zqp' zqpaths add none.zqp --list - <<<a
    [ ! -e none.zqp ]
}

@test "many paths over several batches are added in order" {
    seq -f 'a/%.0f' 30000 >first
    seq -f 'b/%.0f' 30000 >second
    zqpaths index s.zqp --list first
    zqpaths add s.zqp --list second
    zqpaths list s.zqp >got
    cat first second | cmp - got
}
