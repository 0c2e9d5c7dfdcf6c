# What verbs that write do with a set of sets: adding makes a file for it, the others leave it alone.

load ../setup

# A set of the sets a.zqp and b.zqp, with three paths.
make_set_of_sets() {
    make_set a.zqp x y
    make_set b.zqp z
    zqpaths merge -q all.zqs a.zqp b.zqp
}

@test "paths that are added stand in a new file beside the set" {
    make_set_of_sets
    sha256sum a.zqp b.zqp >sums
    run -0 --separate-stderr zqpaths add all.zqs --list - <<<w
    [ "$stderr" = 'zqpaths: all.zqs holds 4 paths' ]
    zqpaths add -q all.zqs --list - <<<$'v\nx'
    [ "$(zqpaths list all.zqs)" = $'x\ny\nz\nw\nv\nx' ]
    [ "$(ls all.zqs.d)" = $'added-1.zqp\nadded-2.zqp' ]
    sha256sum --check --quiet sums
    zqpaths verify -q all.zqs
    mkdir elsewhere
    mv all.zqs all.zqs.d [ab].zqp elsewhere
    [ "$(zqpaths get elsewhere/all.zqs 5)" = v ]
}

@test "two who add at once lose nothing of each other" {
    make_set_of_sets
    local i
    for i in 1 2 3 4 5 6; do
        zqpaths add -q all.zqs --list - <<<"added $i" &
    done
    wait
    [ "$(zqpaths list all.zqs | sort)" = "$(printf '%s\n' 'added '{1..6} x y z)" ]
}

@test "a kill in the midst of adding leaves the old set or the new one" {
    make_set_of_sets
    awk 'BEGIN { srand(1); for (i = 0; i < 30000; ++i) printf "%08x%08x\n", rand() * 2 ^ 32, i }' >more
    local before after i
    before=$(zqpaths list all.zqs | sha256sum)
    after=$({ zqpaths list all.zqs && cat more; } | sha256sum)
    cp all.zqs former
    for i in $(seq $((tries / 2))); do
        "$ZQPATHS" add -q all.zqs --list more &
        sleep "$(printf '0.%03d' $((RANDOM % 150)))"
        kill -KILL "$!" 2>/dev/null || true
        wait "$!" || true
        found=$(zqpaths list all.zqs | sha256sum)
        [ "$found" = "$before" ] || [ "$found" = "$after" ]
        zqpaths verify -q all.zqs
        cp former all.zqs
    done
    rm -rf all.zqs.d
    zqpaths add -q all.zqs --list more
    [ "$(zqpaths list all.zqs | sha256sum)" = "$after" ]
    [ "$(ls -A all.zqs.d)" = added-1.zqp ]
}

@test "what is taken back leaves nothing" {
    make_set_of_sets
    cp all.zqs before
    fails_with 2 'none: No such file' zqpaths add all.zqs none
    zqpaths add -q all.zqs --list - </dev/null
    cmp before all.zqs
    [ ! -e all.zqs.d ]
}

@test "it is not updated, which says what to do" {
    mkdir data
    touch data/a
    zqpaths index -q d.zqp data
    zqpaths merge -q all.zqs d.zqp
    touch data/b
    fails_with 2 "all.zqs: is a set of sets, which cannot be updated; make one set file of it with 'zqpaths merge --into'" \
        zqpaths update all.zqs
    fails_with 2 'cannot be updated' zqpaths update all.zqs --dry-run data
    zqpaths merge -q --into one.zqp all.zqs
    [ "$(zqpaths update one.zqp data 2>/dev/null)" = '+ data/b' ]
}

@test "it is compacted into one set file only" {
    make_set_of_sets
    cp all.zqs before
    fails_with 2 'all.zqs: is a set of sets, which cannot be compacted in place; give the set file to make as OUT' \
        zqpaths compact all.zqs
    cmp before all.zqs
    zqpaths compact -q all.zqs out.zqp --packed
    [ "$(zqpaths list out.zqp)" = $'x\ny\nz' ]
}

@test "it is exported as the pieces of one set" {
    make_set_of_sets
    zqpaths export -q all.zqs --tree-string chars --path-tree paths
    zqpaths import -q back.zqp --tree-string chars --path-tree paths
    [ "$(zqpaths list back.zqp)" = $'x\ny\nz' ]
    fails_with 2 'all.zqs: is there already; --force replaces it' \
        zqpaths import all.zqs --tree-string chars --path-tree paths
    zqpaths import -q --force all.zqs --tree-string chars --path-tree paths
    [ "$(zqpaths info --json all.zqs | jq .files.count)" = 1 ]
}
