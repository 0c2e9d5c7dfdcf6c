# zqpaths export: the two saved pieces raw.

load ../setup

export_pieces() {
    zqpaths export "$@" --tree-string characters --path-tree paths
}

@test "a set of several segments, or packed, gives the same pieces" {
    make_odd_set s.zqp
    export_pieces s.zqp
    mv characters c
    mv paths p
    zqpaths compact s.zqp packed.zqp --packed
    export_pieces packed.zqp
    cmp c characters
    cmp p paths
    rm characters paths
    head -z -n 7 s.zqp.paths | zqpaths index t.zqp --list - -0
    tail -z -n +8 s.zqp.paths | zqpaths add t.zqp --list - -0
    export_pieces t.zqp
    cmp c characters
    cmp p paths
}

@test "characters are UTF-16, the lowest byte first" {
    make_set s.zqp ab ba
    export_pieces s.zqp
    # Those of the names, and the one of no folder.
    [ "$(iconv --from-code UTF-16LE --to-code UTF-8 characters | tr '\0' 0 | fold -w 1 | sort |
        tr -d '\n')" = 0ab ]
}

@test "files that are there are replaced only with --force, and nothing is left beside them" {
    make_set s.zqp ab ba
    mkdir folder
    seq 1000 >folder/paths
    cp folder/paths before
    cd folder
    fails_with 2 'paths: is there already; --force replaces it' export_pieces ../s.zqp
    cmp paths ../before
    [ "$(ls -A)" = paths ]
    ln -s none characters
    fails_with 2 'characters: is there already' export_pieces ../s.zqp
    rm characters
    export_pieces ../s.zqp --force
    [ "$(stat --format %s characters)" = 6 ]
    cmp paths <(zqpaths export ../s.zqp --tree-string /dev/null --path-tree /dev/stdout)
    [ "$(ls -A | tr '\n' ' ')" = 'characters paths ' ]
}

@test "both files are written, or neither" {
    make_set s.zqp ab ba
    mkdir folder
    echo old >folder/characters
    fails_with 2 'none/p: No such file' \
        zqpaths export s.zqp --tree-string folder/characters --path-tree none/p --force
    [ "$(<folder/characters)" = old ]
    [ "$(ls -A folder)" = characters ]
}

@test "pipes and devices take the pieces, too" {
    make_set s.zqp ab ba
    export_pieces s.zqp
    zqpaths export s.zqp --tree-string /dev/null --path-tree /dev/stdout | cmp - paths
    [ -c /dev/null ]
}

@test "what cannot be written is told" {
    make_set s.zqp ab ba
    fails_with 2 'No space left' zqpaths export s.zqp --tree-string /dev/full --path-tree p
    fails_with 2 'none/c: No such file' zqpaths export s.zqp --tree-string none/c --path-tree p
    fails_with 2 'two files' zqpaths export s.zqp --tree-string x --path-tree x
    fails_with 2 'two files' zqpaths export s.zqp --tree-string x --path-tree ./x
    [ ! -e x ]
}

@test "a damaged set gives nothing" {
    make_set s.zqp ab ba
    damage s.zqp 4096
    fails_with 3 's.zqp' export_pieces s.zqp
    [ ! -e characters ]
    [ ! -e paths ]
}
