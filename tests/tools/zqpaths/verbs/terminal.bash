# What the tests share that look at a terminal; such a file begins with `load ../terminal` after
# `load ../setup`. The terminal is a pane of a tmux server of the test's own.
#
#     on_terminal zqpaths list s.zqp     # runs it there and waits for its end
#     [ "$status" -eq 0 ]
#     [[ $screen == *a.txt* ]]           # what a person sees, without the blanks at the right
#     grep -c $'\e' terminal.bytes       # what the terminal was sent, to the byte
#
# What is seen in the midst of the work:
#
#     start_on_terminal zqpaths index s.zqp /usr
#     resize_terminal 40 10
#     screen=$(terminal_screen)
#     await_terminal                     # sets status and screen
#
# Of which kind it is say these variables.

terminal_columns=80
terminal_rows=24
terminal_locale=C.UTF-8
terminal_kind=tmux-256color # TERM; dumb for one that knows no sequences

# The longest a command may take there, in seconds.
readonly terminal_patience=60

# The socket has a short path: the system takes no more than 107 characters.
on_server() {
    tmux -u -S "$BATS_TEST_TMPDIR/tmux" -f /dev/null "$@"
}

# start_on_terminal COMMAND... - runs the command in a new terminal and does not wait for it
start_on_terminal() {
    stop_terminal
    rm -f terminal.bytes terminal.status
    {
        printf 'cd %q\n' "$PWD"
        printf 'export LC_ALL=%q TERM=%q PATH=%q:"$PATH"\n' \
            "$terminal_locale" "$terminal_kind" "$(dirname "$ZQPATHS")"
        printf 'script --quiet --return --flush --command %q terminal.log\n' "$(printf '%q ' "$@")"
        echo 'echo $? >terminal.status'
        # The first line and the last are what script says of its own work.
        printf 'perl -0777 -pe %q terminal.log >terminal.bytes\n' \
            's/\A[^\n]*\n//; s/\nScript done on [^\n]*\n\z//'
        printf 'tmux -S %q wait-for -S ended\n' "$BATS_TEST_TMPDIR/tmux"
        echo 'exec tail -f /dev/null' # the terminal stays to be looked at
    } >terminal.run
    on_server new-session -d -x "$terminal_columns" -y "$terminal_rows" 'bash terminal.run'
}

# terminal_screen - the lines that are seen now, up to the last that is not empty
terminal_screen() {
    on_server capture-pane -p | sed -e :a -e '/^\n*$/{$d;N;ba' -e '}'
}

# resize_terminal COLUMNS ROWS
resize_terminal() {
    on_server resize-window -x "$1" -y "$2"
}

# type_on_terminal KEY... - as tmux names them: C-c, Enter, or letters
type_on_terminal() {
    on_server send-keys "$@"
}

# await_terminal - waits until the command has ended; sets status and screen
await_terminal() {
    timeout "$terminal_patience" tmux -S "$BATS_TEST_TMPDIR/tmux" wait-for ended
    status=$(<terminal.status)
    screen=$(terminal_screen)
}

on_terminal() {
    start_on_terminal "$@"
    await_terminal
}

stop_terminal() {
    on_server kill-server 2>/dev/null || true
}

teardown() {
    stop_terminal
}
