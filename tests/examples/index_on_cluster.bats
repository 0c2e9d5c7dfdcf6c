# The job for a cluster, on one machine: what stands for srun here starts two ranks.

load ../tools/zqpaths-mpi/setup

setup() {
    cd "$BATS_TEST_TMPDIR"
    mkdir stand-ins
    printf '#!/bin/sh\nexec "%s" -n 2 "$@"\n' "$ZQ_MPIEXEC" >stand-ins/srun
    ln -s "$ZQPATHS_MPI" stand-ins/zqpaths-mpi
    chmod +x stand-ins/srun
    PATH=$PWD/stand-ins:$PATH
    job=$BATS_TEST_DIRNAME/../../examples/index_on_cluster.sbatch
    seq 1 2000 | numbered_paths >list
}

@test "a job makes a set, verifies it and writes the shares" {
    SEED=3 bash "$job" all.zqs --list list
    zqpaths list all.zqs | cmp - list
    zqpaths split all.zqs --rank 1 --of 2 --seed 3 | cmp - all-share-1.txt
    sort all-share-*.txt | cmp - list
}

@test "a job that is put into the queue again goes on" {
    mv list whole
    sed '1500s|^data/|\n\n\n\n\n|' whole >list # of the same size
    touch -d 2020-01-01 list
    run bash "$job" all.zqs --list list --piece-size 5000
    [ "$status" -ne 0 ]
    [ -e all.zqs.d/plan.json ]
    cp whole list
    touch -d 2020-01-01 list
    bash "$job" all.zqs --list list --piece-size 5000
    zqpaths list all.zqs | cmp - whole
    bash "$job" all.zqs --list list --piece-size 5000 # nothing is left to be made
}

@test "a job without input says how it is used" {
    run bash "$job" all.zqs
    [ "$status" -eq 2 ]
    [[ $output == "usage: sbatch "* ]]
}
