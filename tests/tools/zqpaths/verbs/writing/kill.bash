#!/usr/bin/env bash
# Ends `index --force` and `add` at random moments and looks whether the file holds the old set or
# the new one whole each time:  ZQPATHS=zqpaths kill.bash SET COUNT [SIGNAL]
# SET is made; SIGNAL is KILL unless it is given. After KILL one file may lie beside SET, which the
# next writer removes; after a signal that can be caught, none.
set -euo pipefail

zqpaths=${ZQPATHS:?the program to test}
set=$1
count=$2
signal=${3:-KILL}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
    echo "kill.bash: $1" >&2
    exit 1
}

# make_list COUNT SEED - paths with much that does not repeat
make_list() {
    awk -v count="$1" -v seed="$2" 'BEGIN {
        srand(seed)
        for (i = 1; i <= count; i++)
            printf "folder%d/%08x%08x%08x%08x\n", i / 100, rand() * 2 ^ 32, rand() * 2 ^ 32,
                   rand() * 2 ^ 32, rand() * 2 ^ 32
    }'
}

digest() {
    sha256sum | cut -d ' ' -f 1
}

# The set is the base, or the base with more behind it: `add` leads to the one, `index --force` to
# the other, and either can be cut off.
make_list 30000 1 >"$folder/base"
make_list 30000 2 >"$folder/more"
base=$(digest <"$folder/base")
extended=$(cat "$folder/base" "$folder/more" | digest)
"$zqpaths" index -q --force "$set" --list "$folder/base"
state=$base

# start - sets `process` to what changes the state; signals are as a shell in front leaves them
start() {
    if [ "$state" = "$base" ]; then
        next=$extended
        env --default-signal=INT,TERM "$zqpaths" add -q "$set" --list "$folder/more" &
    else
        next=$base
        env --default-signal=INT,TERM "$zqpaths" index -q --force "$set" --list "$folder/base" &
    fi
    process=$!
}

# How long each takes in full, in microseconds; a little more, so that some get to their end.
declare -A duration
for _ in 1 2; do
    begin=${EPOCHREALTIME/./}
    start
    wait "$process"
    duration[$state]=$(((${EPOCHREALTIME/./} - begin) * 11 / 10))
    state=$next
done

old=0 new=0 left=0
for ((i = 0; i < count; i++)); do
    start
    moment=$(((RANDOM << 15 | RANDOM) % duration[$state]))
    sleep "$(printf '%d.%06d' $((moment / 1000000)) $((moment % 1000000)))"
    kill -s "$signal" "$process" 2>/dev/null || true
    wait "$process" 2>/dev/null || true
    beside=$(find "$(dirname "$set")" -mindepth 1 ! -name "$(basename "$set")" | wc -l)
    [ "$beside" -le "$([ "$signal" = KILL ] && echo 1 || echo 0)" ] ||
        fail "$beside files beside the set after $moment microseconds"
    left=$((left + beside))
    "$zqpaths" verify -q "$set" || fail "the set is not whole after $moment microseconds"
    found=$("$zqpaths" list "$set" | digest)
    case $found in
        "$state") old=$((old + 1)) ;;
        "$next") new=$((new + 1)) ;;
        *) fail "neither the old set nor the new one after $moment microseconds" ;;
    esac
    state=$found
done
echo "$count times $signal: $old old, $new new, all whole; $left left in the midst of writing"
