# What the end-to-end tests of zqpaths-mpi share; each file begins with `load ../setup`. ZQPATHS_MPI is
# the program, ZQ_MPIEXEC what starts it as several ranks, and ZQPATHS the program that it is
# compared with.

load "$(dirname "${BASH_SOURCE[0]}")/../zqpaths/verbs/setup"
: "${ZQPATHS_MPI:?the program to test}" "${ZQ_MPIEXEC:?what starts it}"

# team RANKS ARGUMENT... - what so many ranks do
team() {
    "$ZQ_MPIEXEC" -n "$1" "$ZQPATHS_MPI" "${@:2}"
}

# equal_with_any_team ARGUMENT... - one to four ranks print what one process of zqpaths prints, and
# the status is the same; what differs is left in the files expected and got
equal_with_any_team() {
    local expected=0 got ranks
    zqpaths "$@" >expected || expected=$?
    for ranks in 1 2 3 4; do
        got=0
        team "$ranks" "$@" >got || got=$?
        if ((got != expected)) || ! cmp expected got; then
            echo "$ranks ranks, status $got for $expected: $*"
            return 1
        fi
    done
}

# wipe FILE - zeros in place of all bytes but the first and the last 4,096
wipe() {
    head -c $(($(stat -c %s "$1") - 8192)) /dev/zero | dd of="$1" bs=4096 seek=1 conv=notrunc status=none
}

# numbered_paths - a path for each number on standard input, in folders of a hundred
numbered_paths() {
    awk '{ printf "data/%05d/file-%07d.txt\n", $1 / 100, $1 }'
}

# make_numbered_set SET COUNT - a set of so many such paths
make_numbered_set() {
    seq "$2" | numbered_paths | zqpaths index -q "$1" --list -
}
