#!/usr/bin/env bats
load ../setup

# The page itself is opened in a browser by tests/tools/zqpaths/report/page_test.py.

@test "a page is written whole, and told" {
    make_set few.zqp a/b a/c.txt d
    run -0 --separate-stderr zqpaths report few.zqp few.html
    [ -z "$output" ]
    [ "$stderr" = 'zqpaths: few.html shows few.zqp' ]
    [ "$(head -c 15 few.html)" = '<!DOCTYPE html>' ]
    [ "$(tail -n 1 few.html)" = '</html>' ]
    run -0 zqpaths report few.zqp quiet.html --quiet
    [ -z "$output" ]
    cmp few.html quiet.html
}

@test "a page needs nothing from elsewhere and names whose code is in it" {
    make_set few.zqp a/b
    zqpaths report few.zqp few.html
    run -1 grep -E '<(link|iframe|img)|<script [^>]*src|@import|url\(' few.html
    grep -q 'Copyright (C) 2013 Michael Bostock' few.html
    run -1 grep -E '\{\{[a-z]+\}\}' few.html # nothing is left to be filled in
}

@test "the same paths in the same file give the same page, wherever it is" {
    make_odd_set odd.zqp
    zqpaths report odd.zqp one.html
    mkdir elsewhere
    cp odd.zqp elsewhere
    touch elsewhere/odd.zqp
    zqpaths report elsewhere/odd.zqp other.html
    cmp one.html other.html
}

@test "a file that is there is replaced by force alone" {
    make_set few.zqp a/b
    echo mine >few.html
    fails_with 2 'few.html: is there already; --force replaces it' zqpaths report few.zqp few.html
    [ "$(<few.html)" = mine ]
    zqpaths report few.zqp few.html --force
    [ "$(head -c 15 few.html)" = '<!DOCTYPE html>' ]
    fails_with 2 'few.zqp: is there already' zqpaths report few.zqp few.zqp
}

@test "a pipe takes the page" {
    make_set few.zqp a/b
    run -0 bash -c "'$ZQPATHS' report --quiet few.zqp /dev/stdout | tail -n 1"
    [ "$output" = '</html>' ]
}

@test "the name of a set is a name in its page" {
    make_set $'<b>&\x01.zqp' a/b
    zqpaths report $'<b>&\x01.zqp' out.html
    grep -qF '<title>&lt;b>&amp;\x01.zqp</title>' out.html
    grep -qF '"set":"\u003Cb\u003E\u0026\\x01.zqp"' out.html
}

@test "what cannot be read or written is told by name" {
    make_set few.zqp a/b
    fails_with 2 'none.zqp' zqpaths report none.zqp out.html
    fails_with 2 'none/out.html' zqpaths report few.zqp none/out.html
    damage few.zqp 4096
    fails_with 3 'few.zqp' zqpaths report few.zqp out.html
    [ ! -e out.html ]
}
