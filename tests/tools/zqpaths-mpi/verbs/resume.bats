# zqpaths-mpi index after runs that did not end, and in the place of older sets.

load ../setup

# alone ARGUMENT... - what one rank does, which needs nobody to start it
alone() {
    "$ZQPATHS_MPI" "$@"
}

lines() {
    seq -f 'folder/%g' "$1"
}

# half_made - a run of pieces of 1,000 bytes that fails at a line of `list`, which is then mended with
# its time as it was
half_made() {
    lines 3000 >whole
    sed '2000s/^f/\n/' whole >list
    touch -d 2020-01-01 list
    run -2 team 2 index s.zqs --list list --piece-size 1000
    [ ! -e s.zqs ]
    cp whole list
    touch -d 2020-01-01 list
}

# inodes - of the set files, with their names, sorted as texts
inodes() {
    (cd s.zqs.d && ls -i -- *.zqp | sort)
}

refused() {
    fails_with 2 "$1" alone index "${@:2}"
}

@test "a run is resumed: whole pieces stay, the others are made" {
    half_made
    inodes >before
    [ -s before ]
    run -0 team 3 index s.zqs --list list --piece-size 1000 --resume
    zqpaths list s.zqs | cmp - whole
    inodes >after
    [ -z "$(comm -23 before after)" ]
    [ -z "$(find s.zqs.d -type f ! -name '*.zqp')" ]
}

@test "what is left is neither passed over nor taken for another input" {
    half_made
    arguments=(s.zqs --list list --piece-size 1000)
    refused 's.zqs.d: holds what a run that did not end has made; --resume goes on' "${arguments[@]}"
    refused 'begun with --list, not with --list --null' "${arguments[@]}" -0 --resume
    refused 'begun with another --piece-size' s.zqs --list list --resume
    refused 'begun with other files or directories' "${arguments[@]}" whole --resume
    touch list
    refused 'list: has changed since the run began' "${arguments[@]}" --resume
    alone index -q "${arguments[@]}" --force
    zqpaths list s.zqs | cmp - whole
}

@test "pieces that are damaged, cut short or gone are made again" {
    half_made
    cd s.zqs.d
    names=(*.zqp)
    [ "${#names[@]}" -ge 4 ]
    rm "${names[0]}"
    : >"${names[1]}"
    head -c 1000 "${names[2]}" >cut
    mv cut "${names[2]}"
    rm "${names[3]%.zqp}.json"
    cd ..
    team 2 index -q s.zqs --list list --piece-size 1000 --resume
    zqpaths list s.zqs | cmp - whole
    zqpaths verify -q s.zqs
}

@test "what was told of pieces that are kept is told in the end" {
    mkdir -p tree/{a,b}
    touch tree/a/{x,.hidden} tree/b/{x,.hidden}
    ln -s . tree/a/loop
    tar cf whole.tar tree/b
    cp whole.tar x.tar
    printf x | dd of=x.tar bs=512 seek=1 conv=notrunc status=none  # the header of its second entry
    touch -d 2020-01-01 x.tar
    arguments=(tree x.tar --follow)
    refused 'x.tar' s.zqs "${arguments[@]}" --piece-size 1
    [ -n "$(ls s.zqs.d/*.zqp)" ]
    cp whole.tar x.tar
    touch -d 2020-01-01 x.tar
    run -2 zqpaths index one.zqp "${arguments[@]}"
    told=${output//zqpaths:/zqpaths-mpi:}
    [[ $told == *"left out 2 names"*"1 directory could not be read: tree/a/loop"* ]]
    run -2 alone index s.zqs "${arguments[@]}" --piece-size 1 --resume
    [ "$output" = "${told/one.zqp/s.zqs}" ]
}

@test "an older set is whole until the new one takes its place" {
    lines 100 >old
    lines 3000 >list
    alone index -q s.zqs --list old --piece-size 500
    refused 's.zqs: is there already; --force replaces it' s.zqs --list list
    printf '\n' >>list
    refused 'is empty' s.zqs --list list --piece-size 1000 --force
    zqpaths list s.zqs | cmp - old
    zqpaths verify -q s.zqs
    lines 3000 >list
    refused 'list: has changed' s.zqs --list list --piece-size 1000 --resume
    for _ in 1 2; do
        team 2 index -q s.zqs --list list --piece-size 1000 --force
        zqpaths list s.zqs | cmp - list
        [ "$(ls s.zqs.d | wc -l)" -eq "$(grep -c '"path"' s.zqs)" ]
    done
}
