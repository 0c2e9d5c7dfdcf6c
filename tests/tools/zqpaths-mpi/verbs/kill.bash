#!/usr/bin/env bash
# Kills a random rank of `index` at a random moment, again and again, and looks at what is left: a set
# that is whole or none, and under the names of set files whole ones alone. Then the work is resumed,
# and now and then killed once more, until the set is there and equals that of one process:
#     ZQPATHS=zqpaths ZQPATHS_MPI=zqpaths-mpi ZQ_MPIEXEC=mpiexec kill.bash COUNT [RANKS [PATHS]]
set -euo pipefail

: "${ZQPATHS:?the program for one process}" "${ZQPATHS_MPI:?the program to test}"
: "${ZQ_MPIEXEC:?what starts ranks}"
count=$1
ranks=${2:-3}
paths=${3:-200000}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

fail() {
    echo "kill.bash: $1" >&2
    exit 1
}

microseconds() {
    echo "${EPOCHREALTIME/./}"
}

# start ARGUMENT... - begins `index`; `job` is the process, and `pids` fills with those of the ranks
start() {
    rm -f pids
    # Each rank writes down which process it is, and becomes the program.
    # shellcheck disable=SC2016  # the ranks expand it
    "$ZQ_MPIEXEC" -n "$ranks" bash -c 'echo $$ >>pids; exec "$@"' rank \
        "$ZQPATHS_MPI" index -q all.zqs --list list --piece-size "$piece_size" "$@" \
        </dev/null >told 2>&1 &
    job=$!
}

# await_ranks - until all ranks have begun
await_ranks() {
    until [ -e pids ] && [ "$(wc -l <pids)" -eq "$ranks" ]; do
        kill -0 "$job" 2>/dev/null || fail "the ranks do not begin: $(cat told)"
        sleep 0.005
    done
}

# await_end - until the job has ended, and all of its ranks
await_end() {
    status=0
    wait "$job" || status=$?
    local pid deadline=$((SECONDS + 20))
    while read -r pid; do
        while kill -0 "$pid" 2>/dev/null; do
            ((SECONDS < deadline)) || fail "rank process $pid goes on after its job"
            sleep 0.01
        done
    done <pids
}

# kill_once ARGUMENT... - begins the work and kills a rank somewhere between its begin and a little
# after its end
kill_once() {
    start "$@"
    await_ranks
    moment=$(((RANDOM << 15 | RANDOM) % duration))
    sleep "$(printf '%d.%06d' $((moment / 1000000)) $((moment % 1000000)))"
    kill -s KILL "$(shuf -n 1 pids)" 2>/dev/null || true
    await_end
}

# require_whole_or_none - looks at what a killed job has left
require_whole_or_none() {
    if [ -e all.zqs ]; then
        "$ZQPATHS" verify -q all.zqs || fail "the set is not whole after $moment microseconds"
        "$ZQPATHS" list all.zqs | cmp -s - list || fail "another set after $moment microseconds"
    elif [ -e all.zqs.d ]; then
        find all.zqs.d -name '*.zqp' -print0 | xargs -0 -r -n 1 "$ZQPATHS" verify -q ||
            fail "a set file is not whole after $moment microseconds"
    fi
}

# set_files - the names of all set files and which they are
set_files() {
    find all.zqs.d -name '*.zqp' -printf '%f %i\n' 2>/dev/null | sort || true
}

# require_finished - the set is there, with nothing beside it
require_finished() {
    "$ZQPATHS" list all.zqs | cmp -s - list || fail "the set is not that of one process"
    "$ZQPATHS" verify -q all.zqs || fail "the set is not whole"
    set_files | cut -d ' ' -f 1 | cmp -s - names || fail "other set files than one rank makes"
    local beside
    beside=$(find . -name '.zqpaths-*' -o -path './all.zqs.d/*' ! -name '*.zqp')
    [ -z "$beside" ] || fail "left beside the set: $beside"
}

awk -v count="$paths" 'BEGIN {
    srand(1)
    for (i = 1; i <= count; i++)
        printf "folder%d/%08x%08x\n", i / 100, rand() * 2 ^ 32, rand() * 2 ^ 32
}' >list
piece_size=$(($(wc -c <list) / 50))

# One rank makes what is expected; several tell how long it takes.
"$ZQPATHS_MPI" index -q all.zqs --list list --piece-size "$piece_size"
set_files | cut -d ' ' -f 1 >names
rm -rf all.zqs all.zqs.d
start
await_ranks
begin=$(microseconds)
await_end
duration=$((($(microseconds) - begin) * 11 / 10))

none=0 whole=0 again=0 kept=0
for ((i = 0; i < count; i++)); do
    rm -rf all.zqs all.zqs.d
    kill_once
    require_whole_or_none
    if [ ! -e all.zqs ]; then
        none=$((none + 1))
        if ((RANDOM % 3 == 0)); then
            again=$((again + 1))
            kill_once --resume
            require_whole_or_none
        fi
    else
        whole=$((whole + 1))
    fi
    # A set without a plan beside it is what a whole run leaves.
    if [ ! -e all.zqs ] || [ -e all.zqs.d/plan.json ]; then
        set_files >before
        start --resume
        await_ranks
        await_end
        [ "$status" -eq 0 ] || fail "cannot be resumed after $moment microseconds: $(cat told)"
        lost=$(comm -23 before <(set_files))
        [ -z "$lost" ] || fail "made again after $moment microseconds: $lost"
        kept=$((kept + $(wc -l <before)))
    else
        rm -f all.zqs.d/*.json  # what is done last of all, and was not begun or not ended
    fi
    require_finished
done
echo "$count times: $none without a set, $whole with a whole one, $again killed again," \
    "$kept set files kept; all equal in the end"
