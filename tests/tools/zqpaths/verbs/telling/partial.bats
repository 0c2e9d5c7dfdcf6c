# --partial of all verbs that read: a set of sets of which a file is missing.

load ../setup

# Five paths, of which 3 and 4 are in a file that is gone. The tests share them.
setup_file() {
    cd "$BATS_FILE_TMPDIR"
    make_set a.zqp a/x a/y
    make_set b.zqp b/x b/z
    make_set c.zqp a/z
    zqpaths merge -q s.zqs a.zqp b.zqp c.zqp
    rm b.zqp
}

setup() {
    cd "$BATS_FILE_TMPDIR"
}

readonly reason='zqpaths: s.zqs: b.zqp: No such file or directory'

# reads_partly STATUS OUTPUT VERB ARGUMENT... - without --partial the verb fails and names the file;
# with it, it prints this, sorted, and ends with the status, and tells what is missing once
reads_partly() {
    local ends=$1 expected=$2
    shift 2
    run --separate-stderr -2 zqpaths "$@"
    [[ $stderr == *"$reason"* ]]
    run --separate-stderr -"$ends" zqpaths "$@" --partial
    [ "$(sort <<<"$output")" = "$expected" ]
    [ "$(head -n 1 <<<"$stderr")" = "$reason; 2 paths are missing, numbers 3 to 4" ]
    [ "$(grep -c b.zqp <<<"$stderr")" -eq 1 ]
}

@test "verbs that print paths pass over those that are missing, and numbers stay" {
    reads_partly 0 $'a/x\na/y\na/z' list s.zqs
    reads_partly 0 $'1\ta/x\n5\ta/z' find s.zqs -n '[xz]'
    reads_partly 0 2 find s.zqs -c '[xz]'
    reads_partly 1 '' find s.zqs 'b/*'
    reads_partly 0 $'a/x\na/y\na/z' sample s.zqs -n 9 --seed 1
    reads_partly 0 $'a/x\na/y\na/z' shuffle s.zqs --seed 1
    reads_partly 0 $'a/x\na/z' split s.zqs --rank 0 --of 2
    reads_partly 1 '' number s.zqs b/x
}

@test "a path that is missing and asked for by its number is an error that names the file" {
    fails_with 2 "$reason" zqpaths get s.zqs --partial 1 3
    run -0 --separate-stderr zqpaths get s.zqs --partial 1 5
    [ "$output" = $'a/x\na/z' ]
    # What is not touched is not missed.
    run -0 --separate-stderr zqpaths get s.zqs 1 5
    [ -z "$stderr" ]
}

@test "verbs that tell of a set tell of what is there" {
    reads_partly 0 's.zqs: 3 of 5 paths, all whole' verify s.zqs
    reads_partly 1 $'< a/z' diff s.zqs a.zqp
    run -0 --separate-stderr zqpaths tree s.zqs --json --partial
    [ "$(jq -s -c '.[0] | [.folder, .files]' <<<"$output")" = '["a",3]' ]
    run -0 --separate-stderr zqpaths report s.zqs page.html --partial
    [[ $stderr == "$reason; "*'page.html shows s.zqs' ]]
    run -0 --separate-stderr zqpaths verify s.zqs --json --partial
    [ "$(jq -c '[.paths, .pathsMissing, .whole]' <<<"$output")" = '[5,2,true]' ]
}

@test "info tells of files, and of those that are missing" {
    run -0 --separate-stderr zqpaths info s.zqs --partial
    [[ $output == *'files '*' 3  1 of them missing, with 2 of the paths'* ]]
    [ "$(zqpaths info s.zqs --partial --json 2>/dev/null | jq -c '[.paths, .files, .segments.count]')" = \
        '[5,{"count":3,"missing":1,"pathsMissing":2},2]' ]
    zqpaths merge -q whole.zqs a.zqp c.zqp
    run -0 --separate-stderr zqpaths info whole.zqs
    [[ $output == *'files '*' 2  all there'*'segments '*' 2  images'* ]]
    [ "$(zqpaths info whole.zqs --json | jq .saved.file)" -eq "$(cat whole.zqs [ac].zqp | wc -c)" ]
    run -0 zqpaths info a.zqp
    [[ $output != *'files  '* ]]
    [ "$(zqpaths info a.zqp --json | jq -c .files)" = '{"count":1,"missing":0,"pathsMissing":0}' ]
}

@test "verify names the file of each damage" {
    make_set d.zqp d
    make_set e.zqp e
    zqpaths merge -q t.zqs a.zqp d.zqp e.zqp
    damage d.zqp 4200
    rm e.zqp
    # A file that is not there says less than damage does: the status is that of damage.
    fails_with 3 'd.zqp: segment 1 at byte 4096: the sum differs' zqpaths verify t.zqs
    [[ $stderr == *'t.zqs: e.zqp: No such file or directory'* ]]
    make_set e.zqp x y
    fails_with 3 't.zqs: e.zqp: was changed since the set was made of it' zqpaths verify t.zqs
    rm d.zqp e.zqp
}

@test "a file in several rows is told once, with all that is missing" {
    make_set f.zqp d1 d2
    zqpaths merge -q u.zqs f.zqp a.zqp f.zqp
    rm f.zqp
    run --separate-stderr -0 zqpaths list u.zqs --partial
    [ "$output" = $'a/x\na/y' ]
    [ "$stderr" = 'zqpaths: u.zqs: f.zqp: No such file or directory; 4 paths are missing, among the numbers 1 to 6' ]
}
