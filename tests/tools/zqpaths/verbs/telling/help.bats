# zqpaths help, and what is said of arguments that are wrong.

load ../setup

@test "help tells what --help tells" {
    zqpaths help >told
    zqpaths --help | cmp - told
    zqpaths -h | cmp - told
    zqpaths help find >told
    zqpaths find --help | cmp - told
    grep -q '^Usage: zqpaths find \[OPTIONS\] SET PATTERN$' told
    [ "$(zqpaths --version)" = "zqpaths $(zqpaths document man | sed -n '1s/.*zqpaths \([0-9.]*\)".*/\1/p')" ]
}

@test "the lines of help fit a terminal" {
    local verb
    for verb in $(zqpaths --help | sed -n '/^Verbs:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
        zqpaths help "$verb" | sed '/^Usage:/d; /^Examples:/,$d' >told
        [ "$(wc --max-line-length <told)" -le 80 ]
    done
}

@test "a verb that there is not is told with the nearest, or with all" {
    fails_with 2 "there is no verb 'idnex'; the nearest is 'index'" zqpaths idnex s.zqp .
    fails_with 2 "there is no verb 'frobnicate'; there are index, add, " zqpaths frobnicate
    fails_with 2 'no verb is given; there are index, add, ' zqpaths
    fails_with 2 "the nearest is 'index'" zqpaths help idnex
    fails_with 2 "there is no verb '\\x1B[2J'" zqpaths $'\e[2J'
}

@test "an option that there is not is told with the nearest" {
    fails_with 2 'find has no option --igore-case; the nearest is --ignore-case' \
        zqpaths find s.zqp x --igore-case
    fails_with 2 'zqpaths has no option --versoin; the nearest is --version' zqpaths --versoin
}

@test "arguments that are too many are told in the order given" {
    fails_with 2 'the following arguments were not expected: a b' zqpaths info s.zqp a b
}

@test "what is missing is told, with the usage" {
    fails_with 2 $'find: PATTERN is missing\nUsage: zqpaths find [OPTIONS] SET PATTERN' \
        zqpaths find s.zqp
    fails_with 2 'export: --tree-string FILE and --path-tree FILE are missing' zqpaths export s.zqp
}
