# What holds for all verbs of zqpaths-mpi: how ranks fail, end and tell.

load ../setup

@test "wrong use and help are told once" {
    run -2 --separate-stderr team 3 frob
    [ "$(grep -c "there is no verb 'frob'" <<<"$stderr")" -eq 1 ]
    run -2 --separate-stderr team 3 find s.zqp
    [ "$(grep -c 'zqpaths-mpi: ' <<<"$stderr")" -eq 1 ]
    run -0 team 3 find --help
    [ "$(grep -c '^Usage: zqpaths-mpi find' <<<"$output")" -eq 1 ]
    run -0 team 3 --version
    [ "${#lines[@]}" -eq 1 ]
}

@test "every verb shows two examples of itself" {
    local verb
    for verb in $("$ZQPATHS_MPI" --help | sed -n '/^Verbs:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
        "$ZQPATHS_MPI" help "$verb" >help
        [ "$(sed '1,/^Examples:$/d' help | grep -c "zqpaths-mpi $verb")" -eq 2 ]
    done
}

@test "the manual page is shown without warnings" {
    "$ZQPATHS_MPI" document man >page.1
    run -0 --separate-stderr env MANPAGER=cat MANWIDTH=80 LC_ALL=C.UTF-8 man -l --warnings=w page.1
    [ -z "$stderr" ]
    [[ $output == *'zqpaths-mpi diff A B'* ]]
}

@test "a set that is not there is told once" {
    run -2 --separate-stderr team 3 find none.zqp '*'
    [ "$(grep -c 'none.zqp: No such file or directory' <<<"$stderr")" -eq 1 ]
    [[ $stderr == *'zqpaths-mpi: none.zqp: '* ]]
}

@test "damage that a rank meets ends the job with its rank, message and status" {
    make_numbered_set s.zqp 90000
    wipe s.zqp
    run -3 --separate-stderr team 3 find s.zqp '*'
    [ "$(grep -c 'zqpaths-mpi: rank [012]: s.zqp: ' <<<"$stderr")" -eq 1 ]
    run -3 --separate-stderr team 1 find s.zqp '*'
    [[ $stderr == *'zqpaths-mpi: s.zqp: '* ]]
}

@test "ranks that see different sets under one name say so" {
    make_set here.zqp a b
    make_set there.zqp a c
    mkdir ranks
    cat >as_rank <<'EOF'
#!/bin/sh
# Rank 1 is in another folder, as on a machine whose copy is out of date.
if [ "${PMI_RANK:-$OMPI_COMM_WORLD_RANK}" = 1 ]; then cd ranks; fi
exec "$ZQPATHS_MPI" "$@"
EOF
    chmod +x as_rank
    cp here.zqp s.zqp
    cp there.zqp ranks/s.zqp
    fails_with 2 's.zqp: is another set on rank 1' "$ZQ_MPIEXEC" -n 3 ./as_rank find s.zqp a
    rm ranks/s.zqp
    fails_with 2 'zqpaths-mpi: rank 1: s.zqp: No such file' "$ZQ_MPIEXEC" -n 3 ./as_rank find s.zqp a
}

@test "a reader that has enough ends the job without a word" {
    make_numbered_set s.zqp 90000
    team 3 find s.zqp '*' 2>told | head -1 >got
    [ "$(cat got)" = data/00000/file-0000001.txt ]
    run -1 grep '^zqpaths-mpi: ' told # mpiexec itself may have something to say
    run -141 bash -o pipefail -c '"$ZQPATHS_MPI" find s.zqp "*" 2>told | head -1'
    [ ! -s told ]
}

@test "progress of all ranks is one row of objects with totals" {
    make_numbered_set s.zqp 90000
    team 3 find s.zqp --progress=json -c '*' >/dev/null 2>told
    grep '^{' told >objects
    [ "$(jq -s 'last | [.work, .done, .total]' -c objects)" = '["finding",90000,90000]' ]
}
