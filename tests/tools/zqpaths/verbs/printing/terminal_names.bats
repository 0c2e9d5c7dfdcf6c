# Names on a terminal, whatever prints them: nothing in a name is obeyed or hidden. Pipes and files
# get the bytes.

load ../setup
load ../terminal

# A colour, a return, a byte that is no UTF-8, CSI as a character of C1, text from right to left, a
# separator of lines, a joiner, and a backslash that could pass for one of our own.
readonly sly=$'a\e[31m\r\x9b\xc2\x9b\xe2\x80\xae\xe2\x80\xa8\xe2\x80\x8d\\x0A\xc3\xa9'
readonly shown='a\x1B[31m\x0D\x9B\u009B\u202E\u2028\u200D\\x0Aé'

# Fails if one of these characters, or another control character than the ends of lines, was sent.
nothing_sly_was_sent() {
    if LC_ALL=C grep -aPn '[\x01-\x08\x0b\x0c\x0e-\x1f\x7f]|\r(?!\r*$)|\xc2[\x80-\x9f]|\xe2\x80[\x8b-\x8f\xa8-\xae]' \
        terminal.bytes; then
        return 1
    fi
    iconv -f UTF-8 -t UTF-8 terminal.bytes >/dev/null
}

@test "no verb sends a terminal what it would obey or hide" {
    zqpaths index -q s.zqp --list - -0 < <(printf '%s\0' "d/$sly" plain)
    zqpaths index -q t.zqp --list - -0 < <(printf '%s\0' plain)
    cp s.zqp "$sly.zqp"
    terminal_columns=250
    cat >all <<'END'
        zqpaths list s.zqp
        zqpaths list s.zqp --fields name,folder,number
        zqpaths list s.zqp --csv
        zqpaths list s.zqp -0
        zqpaths list s.zqp --json
        zqpaths get s.zqp 1
        zqpaths get s.zqp 1 --groups
        zqpaths find s.zqp -n a*
        zqpaths sample s.zqp -n 2 --seed 1
        zqpaths shuffle s.zqp --seed 1
        zqpaths split s.zqp --rank 0 --of 1
        zqpaths number s.zqp "$1"
        zqpaths diff s.zqp t.zqp
        zqpaths verify --disk s.zqp
        zqpaths verify "$1.zqp"
        NO_COLOR=1 zqpaths info "$1.zqp"
        zqpaths index "$1.zqp" "$1"
        zqpaths list "$1"
        zqpaths "$1"
        zqpaths list s.zqp "--$1"
        zqpaths list s.zqp --depth "$1"
        zqpaths list s.zqp --fields "$1"
        zqpaths list s.zqp --under "$1"
        zqpaths list s.zqp --glob "[b-a]$1"
        zqpaths get s.zqp "$1"
        zqpaths find s.zqp -r "($1"
        zqpaths document "$1"
        zqpaths export s.zqp --tree-string "$1/x" --path-tree "$1/y"
        zqpaths import u.zqp --tree-string "$1" --path-tree "$1"
        zqpaths merge u.zqp "$1"
        zqpaths compact "$1"
END
    on_terminal bash all "$sly"
    nothing_sly_was_sent
    [ "$(grep -c -F "$shown" terminal.bytes)" -ge 20 ]
    [[ $screen == *'zqpaths: '* ]]
}

@test "a name is shown so that a shell reads it back" {
    make_set s.zqp "$sly"
    on_terminal zqpaths list s.zqp
    [ "$status" -eq 0 ]
    [ "$screen" = "$shown" ]
    eval "back=\$'$screen'"
    LC_ALL=C.UTF-8 eval "back=\$'$screen'"
    [ "$back" = "$sly" ]
}

@test "where the locale is not UTF-8, all bytes that are not ASCII are written out" {
    make_set s.zqp $'caf\xc3\xa9'
    terminal_locale=C
    on_terminal zqpaths list s.zqp
    [ "$screen" = 'caf\xC3\xA9' ]
    on_terminal zqpaths list s.zqp --json
    [ "$screen" = '{"number":1,"path":"caf\u00E9"}' ]
}

@test "pipes and files get the bytes" {
    make_set s.zqp "$sly"
    # Standard error is a terminal, standard output is none.
    on_terminal bash -c 'zqpaths list s.zqp >file; zqpaths list s.zqp | cat >pipe'
    [ "$(<file)" = "$sly" ]
    cmp file pipe
    [ -z "$screen" ]
}
