# What the end-to-end tests of all verbs share; each file begins with `load ../setup`. ZQPATHS is the
# program; the tests run in a folder of their own.

bats_require_minimum_version 1.5.0
: "${ZQPATHS:?the program to test}"

# How often chance gets a chance: ZQ_TRIES=1000 takes many minutes.
readonly tries=${ZQ_TRIES:-20}

# Every test starts in an empty folder that is gone afterwards.
setup() {
    cd "$BATS_TEST_TMPDIR"
}

zqpaths() {
    "$ZQPATHS" "$@"
}

readonly deep_levels=3000

# Names that programs get wrong, one a file.
odd_names=(
    plain.txt
    'two  spaces'
    $'new\nline'
    $'tab\there'
    $'bad\xff\xfeutf8'
    $'cut\xe2\x82'
    $'overlong\xc0\xaf'
    $'surrogate\xed\xa0\x80'
    $'emoji \xf0\x9f\x98\x80'
    $'caf\xc3\xa9'
    -leading-dash
    --json
    '*'
    'quote"and\backslash'
    "$(printf '%0255d' 0)"
    .hidden
)

# deep_path - the folders of the deepest file, one below the other
deep_path() {
    printf 'd/%.0s' $(seq "$deep_levels")
}

# make_odd_tree DIR - a new folder of files with odd names, at the top, in a folder whose name is
# odd as well, and at the end of $deep_levels folders
make_odd_tree() {
    local folder name
    for folder in "$1" "$1/"$'odd\n\xff folder'; do
        mkdir -p -- "$folder"
        for name in "${odd_names[@]}"; do
            : >"$folder/$name"
        done
    done
    mkdir "$1/deep"
    (
        cd "$1/deep"
        # In steps that the system takes as one path.
        local step=500 level
        for ((level = 0; level < deep_levels; level += step)); do
            local part
            part=$(printf 'd/%.0s' $(seq "$step"))
            mkdir -p "$part"
            cd -P "$part" 2>/dev/null
        done
        : >'the end'
    )
}

# odd_paths - what is in the tree of make_odd_tree, each path ended by NUL, as a made-up list in
# an order of its own: it needs no disk
odd_paths() {
    local folder name
    for folder in odd/ /odd// $'odd/odd\n\xff folder/' ''; do
        for name in "${odd_names[@]}"; do
            printf '%s\0' "$folder$name"
        done
    done
    printf 'odd/deep/%sthe end\0' "$(deep_path)"
}

# make_odd_set SET - a set of odd_paths, which stay beside it in SET.paths
make_odd_set() {
    odd_paths >"$1.paths"
    zqpaths index "$1" --list "$1.paths" -0
}

# make_set SET PATH... - a set of these paths
make_set() {
    local set=$1
    shift
    printf '%s\0' "$@" | zqpaths index "$set" --list - -0
}

# in_terminal COMMAND - what a command prints on a terminal
in_terminal() {
    script -qec "$1" /dev/null
}

# damage FILE OFFSET... - changes the low bit of the bytes at these offsets
damage() {
    local file=$1 offset byte
    shift
    for offset; do
        byte=$(od --address-radix n --format u1 --skip-bytes "$offset" --read-bytes 1 "$file")
        printf "\\x$(printf %02x $((byte ^ 1)))" |
            dd of="$file" bs=1 seek="$offset" conv=notrunc status=none
    done
}

# random_paths COUNT - paths of any bytes, each ended by NUL, the same each time
random_paths() {
    perl -e '
        srand(7);
        for (1 .. shift) {
            print map({ chr(1 + int(rand(255))) } 1 .. 1 + int(rand(60))), "\0";
        }' "$1"
}

# fails_with STATUS TEXT COMMAND... - the command prints nothing on standard output, ends with this
# status and has TEXT in what it tells on standard error
fails_with() {
    local expected=$1 text=$2
    shift 2
    run --separate-stderr -"$expected" "$@"
    [ -z "$output" ]
    if [[ $stderr != *"$text"* ]]; then
        echo "told: $stderr"
        return 1
    fi
}
