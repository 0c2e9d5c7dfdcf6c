# zqpaths-mpi verify.

load ../setup

@test "a set that is whole is said to be so" {
    make_numbered_set s.zqp 3000
    equal_with_any_team verify s.zqp
    [ "$(cat got)" = 's.zqp: 3,000 paths, all whole' ]
    team 2 verify s.zqp --json | cmp - <(zqpaths verify s.zqp --json)
    [ -z "$(team 2 verify -q s.zqp)" ]
}

@test "damage is told, with status 3" {
    make_numbered_set s.zqp 3000
    damage s.zqp 5000
    run -3 --separate-stderr zqpaths verify s.zqp
    fails_with 3 "${stderr//zqpaths: /zqpaths-mpi: }" team 2 verify s.zqp
    run -3 --separate-stderr team 2 verify s.zqp --json
    [ "$output" = "$(zqpaths verify s.zqp --json 2>/dev/null)" ]
    [ "$(jq .whole <<<"$output")" = false ]
}
