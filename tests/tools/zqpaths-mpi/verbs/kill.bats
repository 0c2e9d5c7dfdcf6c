# zqpaths-mpi index whose ranks are killed or fail.

load ../setup

@test "a killed rank leaves no set or a whole one, and the work can be resumed" {
    run -0 "$BATS_TEST_DIRNAME/kill.bash" 5 3 20000
    [[ $output == "5 times: "*"all equal in the end" ]]
}

@test "a rank that fails stops the job with its message, and leaves what can be resumed" {
    awk 'BEGIN { for (i = 0; i < 600000; i++) printf "%08x%08x%08x\n", rand() * 2 ^ 32,
        rand() * 2 ^ 32, rand() * 2 ^ 32 }' >list
    # No file grows beyond 8 MiB there, as on a full disk; that is enough for MPI, not for the set.
    # shellcheck disable=SC2016  # the ranks expand it
    run -2 --separate-stderr "$ZQ_MPIEXEC" -n 2 bash -c 'ulimit -f 8192; exec "$@"' rank \
        "$ZQPATHS_MPI" index s.zqs --list list
    [[ $stderr =~ zqpaths-mpi:\ rank\ [01]:\ s.zqs.d/000001.zqp:\ File\ too\ large ]]
    [ ! -e s.zqs ]
    [ ! -e s.zqs.d/000001.zqp ]
    team 2 index -q s.zqs --list list --resume
    zqpaths list s.zqs | cmp - list
}
