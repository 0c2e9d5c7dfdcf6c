# Files that released versions wrote are read, added to and merged by this one; scripts/keep-release
# makes them.

load ../setup

releases=$BATS_TEST_DIRNAME/../../../../data/releases

# listing SET - all paths, then those that are gone, of which there may be none
listing() {
    zqpaths list -0 "$1"
    zqpaths list -0 --gone "$1" || (($? == 1))
}

# for_each_set COMMAND - calls it with each set of a copy of all releases, and its digest
for_each_set() {
    local sums digest name count=0
    cp -r "$releases" kept
    for sums in kept/*/listings.sha256; do
        while read -r digest name; do
            "$1" "${sums%/*}/$name" "$digest"
            count=$((count + 1))
        done <"$sums"
    done
    ((count >= 5))
}

@test "sets of all releases are whole, and list what they listed then" {
    is_as_it_was() {
        zqpaths verify -q "$1"
        local digest
        digest=$(listing "$1" | sha256sum)
        [ "${digest%% *}" = "$2" ]
    }
    for_each_set is_as_it_was
}

@test "sets of all releases are added to" {
    grows_by_one() {
        local count first
        count=$(listing "$1" | tr -cd '\0' | wc -c)
        first=$(zqpaths get "$1" 1)
        zqpaths add -q "$1" --list - <<<added/path
        [ "$(listing "$1" | tr -cd '\0' | wc -c)" = $((count + 1)) ]
        [ "$(zqpaths number "$1" added/path)" = $((count + 1)) ]
        [ "$(zqpaths get "$1" 1)" = "$first" ]
        zqpaths verify -q "$1"
    }
    # A set of sets goes first: adding to its files would change them.
    cp -r "$releases" kept
    for set in kept/*/*.zqs kept/*/*.zqp; do grows_by_one "$set"; done
}

@test "sets of all releases are written anew with the same paths" {
    is_compacted() {
        zqpaths compact -q "$1" "$1.new"
        cmp <(zqpaths list -0 "$1") <(zqpaths list -0 "$1.new")
    }
    for_each_set is_compacted
}

@test "pieces that all releases exported are imported" {
    cp -r "$releases" kept
    for pieces in kept/*/*.characters; do
        zqpaths import -q "${pieces%.*}.new" --tree-string "$pieces" \
            --path-tree "${pieces%.*}.paths"
        cmp <(zqpaths list -0 "${pieces%.*}.zqp") <(zqpaths list -0 "${pieces%.*}.new")
    done
}
