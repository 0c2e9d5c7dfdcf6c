# zqpaths-mpi on sets of sets, whose files are pieces of several places.

load ../setup

# Four files in one set, one of them twice; 7,005 paths. The tests share them.
setup_file() {
    cd "$BATS_FILE_TMPDIR"
    make_numbered_set a.zqp 4000
    make_set b.zqp odd/x $'odd/\xff' $'odd/new\nline'
    seq 2001 5000 | numbered_paths | zqpaths index -q c.zqp --list -
    make_set d.zqp last
    zqpaths merge -q s.zqs a.zqp b.zqp c.zqp d.zqp b.zqp
    zqpaths merge -q partly.zqs d.zqp c.zqp b.zqp
}

setup() {
    cd "$BATS_FILE_TMPDIR"
}

# equal_with_three ARGUMENT... - three ranks print what one process prints, with the same status
equal_with_three() {
    local expected=0 got=0
    zqpaths "$@" >expected 2>told || expected=$?
    team 3 "$@" >got 2>told_by_team || got=$?
    cmp expected got
    ((got == expected))
}

@test "all verbs print what one process prints" {
    [ "$(zqpaths find s.zqs -c '**')" = 7007 ]
    equal_with_any_team find s.zqs -n '*5.txt'
    equal_with_three find s.zqs --json 'odd/**'
    equal_with_three sample s.zqs -n 500 --seed 4
    equal_with_three shuffle s.zqs --seed 4
    equal_with_three verify s.zqs
    equal_with_three number s.zqs last odd/x data/00030/file-0003000.txt
    equal_with_any_team diff s.zqs a.zqp
    equal_with_three diff a.zqp s.zqs
}

@test "damage of one file is told with its name" {
    cp a.zqp whole.zqp
    zqpaths merge -q damaged.zqs d.zqp whole.zqp
    wipe whole.zqp
    fails_with 3 'zqpaths-mpi: whole.zqp: ' team 2 verify damaged.zqs
    equal_with_three verify --json damaged.zqs
    run -3 --separate-stderr team 3 find damaged.zqs '*'
    [[ $stderr == *'rank '[012]': whole.zqp: '* ]]
}

@test "a file that is missing ends the job, or is passed over and told once" {
    mv c.zqp kept
    fails_with 2 'partly.zqs: c.zqp: No such file or directory' team 3 find partly.zqs '**'
    local verb
    for verb in "find -n **" "sample -n 9 --seed 1" "shuffle --seed 1" "number last odd/x" \
        "diff d.zqp" "verify"; do
        read -ra words <<<"$verb"
        equal_with_three "${words[0]}" partly.zqs --partial "${words[@]:1}"
        [ -s got ]
        # Open MPI adds words of its own where the status is not 0.
        diff <(sed 's/^zqpaths:/zqpaths-mpi:/' told) <(grep '^zqpaths-mpi:' told_by_team)
        [ "$(grep -c '3,000 paths are missing' told)" -eq 1 ]
    done
    mv kept c.zqp
}

@test "ranks that lack other files than rank 0 say so" {
    cat >as_rank <<'EOF'
#!/bin/sh
# Rank 1 does not see one of the files, as on a machine that has not mounted all.
if [ "${PMI_RANK:-$OMPI_COMM_WORLD_RANK}" = 1 ]; then cd ranks; fi
exec "$ZQPATHS_MPI" "$@"
EOF
    chmod +x as_rank
    mkdir ranks
    cp partly.zqs d.zqp c.zqp ranks
    fails_with 2 'partly.zqs: has other files that are missing on rank 1 than on rank 0' \
        "$ZQ_MPIEXEC" -n 2 ./as_rank find partly.zqs --partial '**'
}
