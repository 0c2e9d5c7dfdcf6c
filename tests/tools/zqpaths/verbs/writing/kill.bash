#!/usr/bin/env bash
# Ends `index --force`, `add`, `update` and `compact` at random moments and looks whether the file
# holds the old set or the new one whole each time:  ZQPATHS=zqpaths kill.bash SET COUNT [SIGNAL]
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

# digest - which paths the set has, under which numbers, and which are gone
digest() {
    {
        "$zqpaths" list --csv --fields number,path "$set"
        "$zqpaths" list --gone --csv --fields number,path "$set"
    } | sha256sum | cut -d ' ' -f 1
}

# What is survived is what goes on. The verbs lead from one state to the next and round again:
#
#     0 of the directory ── add ──▶ 1 and of the list ── update ──▶ 2 some gone ── compact ──▶ 3
#     ▲                                                                                       │
#     └──────────────────────────────── index --force ────────────────────────────────────────┘
make_list 30000 1 >"$folder/more"
mkdir -p "$folder/directory"/{stays,goes}
for part in stays goes; do seq -f "$folder/directory/$part/%g" 200 | xargs touch; done

# start - sets `process` to what changes the state; signals are as a shell in front leaves them
start() {
    local arguments
    case $state in
        0) arguments=(add "$set" --list "$folder/more") ;;
        1) arguments=(update "$set") ;;
        2) arguments=(compact "$set") ;;
        3) arguments=(index --force "$set" "$folder/directory") ;;
    esac
    # What update finds gone is there again for index.
    [ "$state" != 1 ] || [ ! -e "$folder/directory/goes" ] || mv "$folder/directory/goes" "$folder"
    [ "$state" != 3 ] || [ ! -e "$folder/goes" ] || mv "$folder/goes" "$folder/directory"
    env --default-signal=INT,TERM "$zqpaths" "${arguments[@]}" -q >/dev/null &
    process=$!
}

# What each state is, and within how many microseconds the way from it to the next is ended.
"$zqpaths" index -q --force "$set" "$folder/directory"
declare -a digests duration
for state in 0 1 2 3; do
    digests[state]=$(digest)
    begin=${EPOCHREALTIME/./}
    start
    wait "$process"
    duration[state]=$((${EPOCHREALTIME/./} - begin))
done
[ "$(digest)" = "${digests[0]}" ] || fail "index makes another set each time"
[ "$(printf '%s\n' "${digests[@]}" | sort -u | wc -l)" = 4 ] || fail "some states are the same"
state=0

old=0 new=0 left=0
for ((i = 0; i < count; i++)); do
    start
    moment=$(((RANDOM << 15 | RANDOM) % duration[state]))
    sleep "$(printf '%d.%06d' $((moment / 1000000)) $((moment % 1000000)))"
    kill -s "$signal" "$process" 2>/dev/null || true
    wait "$process" 2>/dev/null || true
    beside=$(find "$(dirname "$set")" -mindepth 1 ! -name "$(basename "$set")" | wc -l)
    [ "$beside" -le "$([ "$signal" = KILL ] && echo 1 || echo 0)" ] ||
        fail "$beside files beside the set after $moment microseconds"
    left=$((left + beside))
    "$zqpaths" verify -q "$set" || fail "the set is not whole after $moment microseconds"
    next=$(((state + 1) % 4))
    case $(digest) in
        # However busy the machine is, some get to their end, and others do not.
        "${digests[state]}")
            old=$((old + 1))
            duration[state]=$((duration[state] * 5 / 4))
            ;;
        "${digests[next]}")
            new=$((new + 1))
            duration[state]=$((duration[state] * 4 / 5 + 1))
            state=$next
            ;;
        *) fail "neither the old set nor the new one after $moment microseconds" ;;
    esac
done
echo "$count times $signal: $old old, $new new, all whole; $left left in the midst of writing"
