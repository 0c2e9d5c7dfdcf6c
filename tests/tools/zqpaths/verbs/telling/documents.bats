#!/usr/bin/env bats
load ../setup

# The tests share one installation of the program and its documents.
setup_file() {
    export PREFIX=$BATS_FILE_TMPDIR/prefix
    cmake --install "$(dirname "$ZQPATHS")/.." --prefix "$PREFIX" --component program >/dev/null
}

verbs() {
    "$ZQPATHS" --help | sed -n '/^Verbs:/,/^$/s/^  \([a-z]*\) .*/\1/p'
}

# complete_words WORD... - what bash offers for the last word
complete_words() {
    # shellcheck source=/dev/null
    source "$PREFIX/share/bash-completion/completions/zqpaths"
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    _zqpaths 2>/dev/null
    printf '%s\n' "${COMPREPLY[@]}"
}

@test "the installed documents are what the program prints" {
    zqpaths document man | cmp - "$PREFIX/share/man/man1/zqpaths.1"
    zqpaths document bash | cmp - "$PREFIX/share/bash-completion/completions/zqpaths"
    zqpaths document zsh | cmp - "$PREFIX/share/zsh/site-functions/_zqpaths"
    zqpaths document fish | cmp - "$PREFIX/share/fish/vendor_completions.d/zqpaths.fish"
}

@test "the manual page is shown without warnings" {
    run -0 --separate-stderr env MANPAGER=cat MANWIDTH=80 LC_ALL=C.UTF-8 \
        man -l --warnings=w "$PREFIX/share/man/man1/zqpaths.1"
    [ -z "$stderr" ]
    local verb
    for verb in $(verbs); do
        [[ $output == *"zqpaths $verb "* ]]
    done
    [[ $output == *"zqpaths list usr.zqp --under /usr/lib --glob '*.so'"* ]]
}

@test "every verb shows two examples of itself" {
    local verb
    for verb in $(verbs); do
        zqpaths "$verb" --help >help
        [ "$(sed '1,/^Examples:$/d' help | grep -c "zqpaths $verb")" -eq 2 ]
    done
}

@test "bash knows the completion" {
    # shellcheck source=/dev/null
    source "$PREFIX/share/bash-completion/completions/zqpaths"
    run -0 complete -p zqpaths
    [ "$output" = "complete -o default -F _zqpaths zqpaths" ]
}

@test "bash completes all verbs" {
    run -0 complete_words zqpaths ''
    [ "$(verbs | wc -l)" -ge 16 ]
    local verb
    for verb in $(verbs); do
        [[ " ${lines[*]} " == *" $verb "* ]]
    done
    run -0 complete_words zqpaths sh
    [ "$output" = shuffle ]
}

@test "bash completes the options of a verb and no others" {
    run -0 complete_words zqpaths split s.zqp --
    [[ " ${lines[*]} " == *" --rank "* ]]
    [[ " ${lines[*]} " != *" --glob "* ]]
    run -0 complete_words zqpaths index s.zqp --one
    [ "$output" = --one-file-system ]
}

@test "bash completes words of an argument, and leaves files to the shell" {
    run -0 complete_words zqpaths document z
    [ "$output" = zsh ]
    run -0 complete_words zqpaths index s.zqp --from js
    [ "$output" = jsonl ]
    run -0 complete_words zqpaths info s
    [ -z "$output" ]
}

@test "bash completes the values of an option" {
    run -0 complete_words zqpaths verify s.zqp --progress j
    [ "$output" = json ]
    run -0 complete_words zqpaths verify s.zqp --progress = n
    [ "$output" = none ]
    run -0 complete_words zqpaths verify s.zqp --progress =
    [ "${lines[*]}" = 'auto line json none' ]
    run -0 complete_words zqpaths help fin
    [ "$output" = find ]
}

@test "zsh reads its completion" {
    zsh -n "$PREFIX/share/zsh/site-functions/_zqpaths"
}

# fish_completes LINE - what fish offers after a line, without what it says of it
fish_completes() {
    fish --command 'source $argv[1]; complete --do-complete $argv[2]' \
        "$PREFIX/share/fish/vendor_completions.d/zqpaths.fish" "$1" | cut -f 1
}

@test "fish completes verbs, options and words" {
    [ "$(fish_completes 'zqpaths sh')" = shuffle ]
    [ "$(fish_completes 'zqpaths split s.zqp --r')" = --rank ]
    [ "$(fish_completes 'zqpaths document z')" = zsh ]
    [ "$(fish_completes 'zqpaths verify s.zqp --progress j')" = json ]
    [ "$(fish_completes 'zqpaths index s.zqp --from js')" = jsonl ]
}

@test "a kind that there is not is refused" {
    fails_with 2 "man" zqpaths document html
}
