# zqpaths import: a set of two pieces that another host saved.

load ../setup

# export_pieces SET - to the files characters and paths
export_pieces() {
    zqpaths export "$1" --tree-string characters --path-tree paths
}

import_pieces() {
    zqpaths import "$1" --tree-string "${2:-characters}" --path-tree "${3:-paths}"
}

@test "exported pieces give the same set" {
    make_odd_set s.zqp
    export_pieces s.zqp
    import_pieces t.zqp
    zqpaths list t.zqp -0 | cmp - s.zqp.paths
    zqpaths verify t.zqp
    mv characters c
    mv paths p
    export_pieces t.zqp
    cmp c characters
    cmp p paths
}

@test "pieces come through pipes, too" {
    make_set s.zqp a/x b
    export_pieces s.zqp
    import_pieces t.zqp <(cat characters) <(cat paths)
    [ "$(zqpaths list t.zqp)" = $'a/x\nb' ]
}

@test "an imported set can be extended" {
    make_set s.zqp a/x b
    export_pieces s.zqp
    import_pieces t.zqp
    zqpaths add t.zqp --list - <<<a/b
    zqpaths add t.zqp --list - <<<new/characters
    [ "$(zqpaths list t.zqp)" = $'a/x\nb\na/b\nnew/characters' ]
}

@test "a set that is there is replaced only if that is wanted" {
    make_set s.zqp a/x b
    make_set t.zqp other
    export_pieces s.zqp
    cp t.zqp before
    fails_with 2 't.zqp: is there already; --force replaces it' import_pieces t.zqp
    cmp before t.zqp
    zqpaths import t.zqp --tree-string characters --path-tree paths --force
    [ "$(zqpaths list t.zqp)" = $'a/x\nb' ]
}

@test "garbage is refused as damaged" {
    make_set s.zqp a/x b
    export_pieces s.zqp
    head -c 5000 "$ZQPATHS" >garbage
    : >empty
    printf abc >half
    run -3 import_pieces t.zqp characters garbage
    run -3 import_pieces t.zqp characters empty
    run -3 import_pieces t.zqp characters characters
    run -3 import_pieces t.zqp empty paths
    fails_with 3 'half: half a character at byte 2' import_pieces t.zqp half paths
    [ ! -e t.zqp ]
}

@test "too few characters are refused as damaged" {
    make_set s.zqp a/x b
    export_pieces s.zqp
    head -c -2 characters >fewer
    run -3 import_pieces t.zqp fewer paths
    [ ! -e t.zqp ]
}

@test "pieces cut short are refused as damaged" {
    make_set s.zqp a/x b/y c/z
    export_pieces s.zqp
    local size status refused=0 whole
    whole=$(stat --format %s paths)
    for ((size = whole - 1; size >= 0; size--)); do
        head -c "$size" paths >cut
        status=0
        zqpaths import t.zqp --force --tree-string characters --path-tree cut || status=$?
        case $status in
            0) [ "$(zqpaths list t.zqp)" = $'a/x\nb/y\nc/z' ] ;;
            3) refused=$((refused + 1)) ;;
            *) false ;;
        esac
    done
    # The last bytes are a checksum of the stream and the mark of its end: what is saved stands in
    # front of them.
    ((refused >= whole - 6))
}

@test "a bit that changed is seen, or the set can be read all the same" {
    make_set s.zqp a/x b/y c/z
    export_pieces s.zqp
    local size offset byte status
    size=$(stat --format %s paths)
    for ((offset = 0; offset < size; offset++)); do
        byte=$(od --address-radix n --format u1 --skip-bytes "$offset" --read-bytes 1 paths)
        cp paths changed
        printf "\\x$(printf %02x $((byte ^ 1 << offset % 8)))" |
            dd of=changed bs=1 seek="$offset" conv=notrunc status=none
        status=0
        zqpaths import t.zqp --force --tree-string characters --path-tree changed || status=$?
        case $status in
            0) zqpaths verify t.zqp ;;
            3) ;;
            *) false ;;
        esac
    done
}

@test "a piece that is not there is told" {
    make_set s.zqp a
    export_pieces s.zqp
    fails_with 2 'none: No such file' import_pieces t.zqp none paths
    fails_with 2 'none: No such file' import_pieces t.zqp characters none
}
