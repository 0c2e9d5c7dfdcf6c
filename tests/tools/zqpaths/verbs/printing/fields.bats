# What holds for all verbs that print paths: fields, tables, and names that a reader could mistake.

load ../setup

@test "every verb prints the fields asked for, in their order" {
    make_set s.zqp usr/lib/a.so usr/.b c
    make_set t.zqp c
    local fields=(--fields extension,number,name)
    local all=$'so\t1\ta.so\n\t2\t.b\n\t3\tc'
    [ "$(zqpaths list s.zqp "${fields[@]}")" = "$all" ]
    [ "$(zqpaths get s.zqp 1:3 "${fields[@]}")" = "$all" ]
    [ "$(zqpaths find s.zqp '*' "${fields[@]}")" = "$all" ]
    [ "$(zqpaths number s.zqp usr/lib/a.so usr/.b c "${fields[@]}")" = "$all" ]
    [ "$(zqpaths split s.zqp --rank 0 --of 1 "${fields[@]}")" = "$all" ]
    [ "$(zqpaths sample s.zqp -n 3 --seed 1 "${fields[@]}" | sort)" = "$(sort <<<"$all")" ]
    [ "$(zqpaths shuffle s.zqp --seed 1 "${fields[@]}" | sort)" = "$(sort <<<"$all")" ]
    run -1 zqpaths diff s.zqp t.zqp "${fields[@]}"
    [ "$output" = $'<\tso\t1\ta.so\n<\t\t2\t.b' ]
    run -1 zqpaths verify --disk s.zqp -q "${fields[@]}"
    [ "$output" = "$all" ]
}

@test "a table is one that other programs read" {
    make_odd_set s.zqp
    zqpaths list s.zqp --csv --fields path,number,folder,name >table
    /usr/bin/python3 - <<'PY'
import csv
paths = open("s.zqp.paths", "rb").read().split(b"\0")[:-1]
with open("table", newline="", encoding="latin-1") as table:  # any byte is a character
    rows = list(csv.DictReader(table, strict=True))
assert [row["path"].encode("latin-1") for row in rows] == paths
assert [int(row["number"]) for row in rows] == list(range(1, len(paths) + 1))
assert [(row["folder"] + row["name"]).encode("latin-1") for row in rows] == paths
PY
    [ "$(zqpaths find s.zqp -F --csv --fields extension -- plain | sort -u)" = $'extension\r\ntxt\r' ]
}

@test "a table of no paths has its line of names, and counts are one" {
    make_set s.zqp a
    make_set t.zqp a b
    run -1 zqpaths find s.zqp --csv x
    [ "$output" = $'number,path\r' ]
    run -1 zqpaths diff s.zqp t.zqp --csv
    [ "$output" = $'in,number,path\r\nsecond,2,b\r' ]
    [ "$(zqpaths find t.zqp -c --csv '*')" = $'count\r\n2\r' ]
}

@test "fields that there are not, or twice, are refused" {
    make_set s.zqp a
    fails_with 2 "no field 'size'" zqpaths list s.zqp --fields path,size
    fails_with 2 "no field '\\x1B'" zqpaths list s.zqp --fields $'\e'
    fails_with 2 'excludes --groups' zqpaths get s.zqp 1 --groups --csv
    fails_with 2 'excludes --groups' zqpaths get s.zqp 1 --groups --fields name
    fails_with 2 'name is given twice' zqpaths get s.zqp 1 --fields name,path,name
}

@test "names that could be mistaken are told once, at the end" {
    make_set s.zqp a $'b\nc' $'d\n/e\n' $'f\tg/h'
    run -0 --separate-stderr zqpaths list s.zqp
    [ "$output" = $'a\nb\nc\nd\n/e\n\nf\tg/h' ]
    [ "$stderr" = 'zqpaths: 2 paths hold a newline, -0 ends paths with NUL' ]
    run -0 --separate-stderr bash -c 'seq 4 | "$ZQPATHS" get s.zqp - --groups'
    [ "$stderr" = 'zqpaths: 2 paths hold a newline, -0 ends paths with NUL' ]
    run -0 --separate-stderr zqpaths list s.zqp --under $'f\tg' --fields folder,name
    [ "$stderr" = 'zqpaths: 1 path holds a tab, --csv and --json tell where a field ends' ]
    local quiet
    for quiet in -q -0 --json --csv '--fields number' '--glob [a]' '--under a'; do
        # shellcheck disable=SC2086
        run -0 --separate-stderr zqpaths list s.zqp $quiet
        [ -z "$stderr" ]
    done
}

@test "strictly, a name that could be mistaken is an error, and what is before it is printed" {
    make_set s.zqp a $'b\nc' d
    run -2 --separate-stderr zqpaths list s.zqp --strict
    [ "$output" = a ]
    [ "$stderr" = 'zqpaths: b\x0Ac: holds a newline, -0 ends paths with NUL' ]
    run -2 --separate-stderr zqpaths get s.zqp 3 2 --groups --strict
    run -0 zqpaths list s.zqp --strict -0
    run -0 zqpaths get s.zqp 1 3 --strict
    [ "$output" = $'a\nd' ]
}
