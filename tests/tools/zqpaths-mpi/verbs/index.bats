# zqpaths-mpi index: a set of sets that many processes make, as one process makes its set.

load ../setup

# alone ARGUMENT... - what one rank does, which needs nobody to start it
alone() {
    "$ZQPATHS_MPI" "$@"
}

# same_as_one RANKS PIECE_SIZE ARGUMENT... - `index` by so many ranks, in pieces of so many bytes, gives
# the paths in their order, the messages and the status of one process
same_as_one() {
    local count=$1 size=$2 status=0 status_of_one=0
    shift 2
    rm -rf all.zqs all.zqs.d one.zqp
    zqpaths index one.zqp "$@" 2>one.err || status_of_one=$?
    team "$count" index all.zqs "$@" --piece-size "$size" 2>all.err || status=$?
    [ "$status" -eq "$status_of_one" ]
    diff <(sed 's/^zqpaths: //; s/one.zqp/all.zqs/' one.err) \
        <(sed -n 's/^zqpaths-mpi: //p' all.err)
    zqpaths list one.zqp -0 >one.paths
    zqpaths list all.zqs -0 | cmp - one.paths
}

# only_whole FOLDER - nothing but set files is in the folder, and each is whole
only_whole() {
    [ -z "$(find "$1" -type f ! -name '*.zqp')" ]
    find "$1" -name '*.zqp' -print0 | xargs -0 -n 1 "$ZQPATHS" verify -q
}

# refused TEXT ARGUMENT... - `index` of one rank ends with status 2 and tells the text
refused() {
    fails_with 2 "$1" alone index "${@:2}"
}

lines() {
    seq -f 'folder/%g' "$1"
}

@test "any number of ranks makes the set that one process makes" {
    lines 3000 >list
    printf 'caf\xc3\xa9\nbad\xff\xfe\n\ttab\nlast' >>list
    for count in 1 2 3 4; do
        same_as_one "$count" 2000 --list list --hidden
        ls all.zqs.d >"names.$count"
        cmp names.1 "names.$count"
        only_whole all.zqs.d
    done
    [ "$(wc -l <names.1)" -gt 15 ]
    grep -q '"zqs"' all.zqs
}

@test "lists stand one after the other, however they are cut" {
    lines 20 >one
    printf 'no newline at the end' >two
    : >three
    head -c 300 /dev/zero | tr '\0' x >four
    printf '\nz\n' >>four
    cat one two <(echo) three four >all
    for size in 3 10 100 100000; do
        rm -rf all.zqs*
        team 2 index -q all.zqs --list one two three --list four --piece-size "$size"
        zqpaths list all.zqs | cmp - all
    done
}

@test "lists of NUL are cut as well" {
    printf 'a\nb\0\n\0%s\0c' "$(seq 100)" >list
    same_as_one 2 10 --list list -0
    refused '-0 is for paths that end with one' s.zqs --list list --piece-size 10
}

@test "listings are cut, with their headings and other lines" {
    for i in $(seq 30); do
        printf 'gs://b/d%d/:\ngs://b/d%d/x\r\ngs://b/d%d/y:\n\n' "$i" "$i" "$i"
    done >listing
    same_as_one 2 23 --from gsutil listing
    seq -f '{"o": {"p": "caf\u00e9 %g"}}' 30 >objects
    echo >>objects
    same_as_one 2 100 --from jsonl --field o.p objects --exclude '*5'
}

@test "archives and directories are mixed, and patterns, depth and links act from the root on" {
    mkdir -p tree/{a,b}/{a,b}/{a,b}/c tree/.hidden other
    for folder in tree tree/{a,b} tree/{a,b}/{a,b} tree/{a,b}/{a,b}/{a,b}/c tree/.hidden other; do
        touch "$folder"/{x,y.o,$'new\nline',$'\xff'}
    done
    ln -s .. tree/a/loop
    ln -s ../../other tree/b/link
    tar cf x.tar tree/a
    same_as_one 2 20 tree x.tar tree/
    same_as_one 3 1 tree --hidden --exclude /a/b --exclude 'b/*.o' --exclude '!/b/y.o'
    same_as_one 2 1 tree --max-depth 2 --type f,d
    same_as_one 2 1 tree --hidden --follow --ignore-unreadable
    same_as_one 1 1000 tree other --max-depth 4 --one-file-system --hidden
}

@test "neither the set nor its folder is among the paths of a directory that they are in" {
    mkdir -p d/a
    touch d/x d/a/y
    for force in '' --force; do
        alone index -q d/s.zqs d --hidden --piece-size 1 $force
        [ "$(zqpaths list d/s.zqs)" = $'d/x\nd/a/y' ]
    done
}

@test "what cannot be read is counted over all pieces, told, and status 2 in the end" {
    mkdir -p tree/{a,b,c}/closed
    touch tree/{a,b,c}/closed/x tree/b/x
    chmod 0 tree/{a,b,c}/closed
    as_user=()
    if [ "$(id -u)" -eq 0 ]; then
        chmod 777 .
        chmod a+x "$BATS_RUN_TMPDIR"  # names of set files are relative to the folder of the set
        as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
        "${as_user[@]}" test -x "$ZQPATHS_MPI" -a -r . || skip "root reads all, and cannot step down"
    fi
    run -2 --separate-stderr "${as_user[@]}" "$ZQPATHS_MPI" index s.zqs tree --piece-size 1
    [[ $stderr == *"3 directories could not be read, the first tree/a/closed: Permission denied"* ]]
    [ "$(zqpaths list s.zqs)" = tree/b/x ]
    run -0 --separate-stderr "${as_user[@]}" "$ZQPATHS_MPI" index t.zqs tree --verbose \
        --ignore-unreadable
    [[ $stderr == *"tree/b/closed: Permission denied"* ]]
}

@test "a line that is no path is told with its list and place, and leaves no set" {
    { lines 1000; echo; lines 10; } >list
    run --separate-stderr -2 team 3 index s.zqs --list list --piece-size 700
    [[ $stderr =~ rank\ [0-2]:\ list:\ the\ line\ at\ byte\ $(lines 1000 | wc -c)\ is\ empty ]]
    [ ! -e s.zqs ]
    printf 'a\n\n' >short
    refused 'short: line 2 is empty' t.zqs --list short
}

@test "what one process alone can read is refused" {
    mkfifo pipe
    refused 'standard input can be read by one process alone' s.zqs --list -
    refused 'pipe: is no regular file' s.zqs --list pipe
    refused 'none: No such file' s.zqs --list none
    refused 'none: No such file' s.zqs none
    refused 'piece-size 0' s.zqs --list list --piece-size 0
    [ ! -e s.zqs ]
    [ ! -e s.zqs.d ]
}

@test "without a path there is no set, and nothing is left" {
    : >empty
    refused 'no paths in empty, empty' s.zqs --list empty empty
    lines 100 >list
    refused 'no paths in list' s.zqs --list list --exclude '*' --piece-size 10
    [ ! -e s.zqs ]
    [ ! -e s.zqs.d ]
}
