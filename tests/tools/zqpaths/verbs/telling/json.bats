# --json of all verbs: what they print is what docs/schemas says.

load ../setup

readonly schemas=$BATS_TEST_DIRNAME/../../../../../docs/schemas

# has_schema FILE... - each line of NAME.lines is valid by the schema NAME.json; fails without lines
has_schema() {
    /usr/bin/python3 - "$schemas" "$@" <<'PY'
import json, pathlib, sys
import jsonschema

folder = pathlib.Path(sys.argv[1]).resolve()
for file in map(pathlib.Path, sys.argv[2:]):
    schema = json.loads((folder / (file.stem + ".json")).read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    resolver = jsonschema.RefResolver(folder.as_uri() + "/", schema)
    validator = jsonschema.Draft7Validator(schema, resolver=resolver)
    lines = file.read_bytes().decode("utf-8").splitlines()
    assert lines, f"{file} is empty"
    for line in lines:
        validator.validate(json.loads(line))
PY
}

@test "what every verb prints is valid by its schema" {
    make_odd_set s.zqp
    make_set t.zqp plain.txt $'\xff'
    zqpaths compact s.zqp p.zqp --packed
    cp s.zqp $'odd\xff.zqp'
    {
        zqpaths get s.zqp 1:5 --json
        zqpaths list s.zqp --json
        zqpaths list s.zqp --walk --json
        zqpaths list s.zqp --json --fields number,path,folder,name,extension
        zqpaths find s.zqp '*' --json --fields extension
        zqpaths number s.zqp --json plain.txt
        zqpaths sample s.zqp -n 3 --seed 1 --json
        zqpaths shuffle s.zqp --seed 1 --json --fields folder
        zqpaths split s.zqp --rank 0 --of 2 --json --fields name
    } >path.lines
    zqpaths get s.zqp 1:65 --groups --json >group.lines
    zqpaths diff s.zqp t.zqp --json >difference.lines || [ $? -eq 1 ]
    zqpaths diff t.zqp s.zqp --json --fields name,number >>difference.lines || [ $? -eq 1 ]
    zqpaths find s.zqp -c '*' --json >count.lines
    {
        zqpaths info s.zqp --json
        zqpaths info p.zqp --json
        zqpaths info $'odd\xff.zqp' --json
    } >set.lines
    zqpaths verify $'odd\xff.zqp' --json >verification.lines
    zqpaths verify --disk t.zqp --json >disk || [ $? -eq 1 ]
    tail -n 1 disk >>verification.lines
    head -n -1 disk >>path.lines
    cp t.zqp $'bad\xff.zqp'
    damage $'bad\xff.zqp' 4200
    run -3 --separate-stderr zqpaths verify $'bad\xff.zqp' --json
    echo "$output" >>verification.lines
    jq -e '.whole == false and (.damages | length > 0)' <<<"$output"
    zqpaths tree s.zqp --files --json >tree.lines
    mkdir -p data/$'odd\xff'
    touch data/a data/$'odd\xff'/b
    zqpaths index d.zqp data
    rm data/a
    touch data/c
    zqpaths update d.zqp --json >change.lines
    zqpaths list d.zqp --gone --json >>path.lines
    zqpaths info d.zqp --json >>set.lines
    cp s.zqp $'gone\xff.zqp'
    zqpaths merge -q m.zqs $'odd\xff.zqp' d.zqp $'gone\xff.zqp'
    zqpaths merge -q n.zqs m.zqs m.zqs
    jq -c . [mn].zqs >manifest.lines
    rm $'gone\xff.zqp'
    zqpaths info m.zqs --json --partial 2>told >>set.lines
    zqpaths verify m.zqs --json --partial 2>told >>verification.lines
    zqpaths diff d.zqp data --json >>difference.lines
    touch data/d
    zqpaths diff d.zqp data --json >>difference.lines || [ $? -eq 1 ]
    run -0 --separate-stderr zqpaths list s.zqp --json --progress=json
    echo "$stderr" >progress.lines
    has_schema ./*.lines
    [ "$(ls ./*.lines | wc -l)" -eq "$(ls "$schemas" | wc -l)" ]
}

@test "every verb that prints on standard output has --json" {
    local verb withJson=0
    for verb in $("$ZQPATHS" --help | sed -n '/^Verbs:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
        case $verb in
            document | help) ;;                                          # texts for people, shells
            index | add | merge | compact | export | import | report) ;; # print nothing there
            *)
                zqpaths "$verb" --help | grep -q -e ' --json'
                withJson=$((withJson + 1))
                ;;
        esac
    done
    [ "$withJson" -ge 12 ]
}

@test "a line that is not what it should be is refused" {
    echo '{"number":0,"path":"a"}' >path.lines
    run -1 has_schema path.lines
    echo '{"in":"third","path":"a"}' >difference.lines
    run -1 has_schema difference.lines
    echo '{"set":"s","paths":1,"whole":true,"damages":["all"]}' >verification.lines
    run -1 has_schema verification.lines
    echo '{}' >path.lines
    run -1 has_schema path.lines
    : >path.lines
    run -1 has_schema path.lines
    make_set s.zqp a
    zqpaths merge -q m.zqs s.zqp
    jq -c . m.zqs >manifest.lines
    has_schema manifest.lines
    local broken
    for broken in '.zqs = 2' 'del(.rows)' 'del(.files[0].sum)' '.files[0].sum = "12"' \
        '.files[0].path = ""' '.rows[0] |= .[:4]' '.rows[0] += [0]' '.rows[0][1] = -1' \
        '.rows[0][2] = 0' '.rows[0][3] = "1"' '.rows[0][3] = 4611686018427387904' '.more = 1'; do
        jq -c "$broken" m.zqs >manifest.lines
        run -1 has_schema manifest.lines
    done
}

@test "names come back from JSON to the byte" {
    odd_paths >list
    printf '%s\0' $'\xe2\x80\xaeleft' $'\xf3\xa0\x81\x81' $'\x7f\xc2\x85' >>list
    zqpaths index s.zqp --list list -0
    zqpaths list s.zqp --json >lines
    # Nothing that a terminal would obey or hide.
    run -1 env LC_ALL=C grep -aP '[^\n\x20-\x7e\xc3-\xf3\x80-\xbf]|\xe2\x80|\xc2[\x80-\x9f]' lines
    /usr/bin/python3 - <<'PY'
import base64, json
lines = [json.loads(line) for line in open("lines", encoding="utf-8")]
paths = [base64.b64decode(o["bytes"]) if "bytes" in o else o["path"].encode() for o in lines]
assert b"".join(path + b"\0" for path in paths) == open("list", "rb").read()
PY
}
