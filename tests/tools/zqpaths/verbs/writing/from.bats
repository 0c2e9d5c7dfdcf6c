# zqpaths index and add: archives and listings.

load ../setup

# make_archives - a tar of odd_names, which stand in odd.paths, and a zip of those that are UTF-8,
# which stand in utf8.paths
make_archives() {
    local name
    mkdir tree
    for name in "${odd_names[@]}"; do
        : >"tree/$name"
        printf 'tree/%s\0' "$name"
    done >odd.paths
    mkdir tree/folder
    tar -cf odd.tar --null -T odd.paths --no-recursion tree/folder
    python3 - <<'END'
import zipfile
with zipfile.ZipFile("odd.zip", "w") as odd, open("utf8.paths", "wb") as paths:
    for name in open("odd.paths", "rb").read().split(b"\0")[:-1]:
        info = zipfile.ZipInfo("x")
        try:
            info.filename = name.decode()
        except UnicodeDecodeError:
            continue
        paths.write(name + b"\0")
        odd.writestr(info, b"x" * 100, compress_type=zipfile.ZIP_DEFLATED)
    odd.writestr("tree/folder/", b"")
END
}

@test "names in tars come back as they are, however they are compressed" {
    make_archives
    zqpaths index s.zqp odd.tar
    zqpaths list s.zqp -0 | cmp - odd.paths
    local tool
    for tool in gzip bzip2 xz; do
        "$tool" -c odd.tar | zqpaths index t.zqp --force -q --from tar -
        zqpaths list t.zqp -0 | cmp - odd.paths
    done
    tar -cf pax.tar --format=pax --null -T odd.paths
    zqpaths index t.zqp --force pax.tar
    zqpaths list t.zqp -0 | cmp - odd.paths
}

@test "names in zips come back as they are" {
    make_archives
    zqpaths index s.zqp odd.zip
    zqpaths list s.zqp -0 | cmp - utf8.paths
    zqpaths index t.zqp --from zip - <odd.zip
    zqpaths list t.zqp -0 | cmp - utf8.paths
}

@test "archives and directories stand one after the other, and are filtered" {
    mkdir -p tree/sub
    touch tree/{a,b.o} tree/sub/{c,d.o}
    tar -cf one.tar tree
    zqpaths index s.zqp one.tar tree one.tar --exclude '*.o'
    [ "$(zqpaths list s.zqp | sort)" = $'tree/a\ntree/a\ntree/a\ntree/sub/c\ntree/sub/c\ntree/sub/c' ]
    zqpaths add s.zqp --max-depth 2 one.tar 2>told
    grep -q 'left out 2 names by --max-depth' told
    fails_with 2 'only directories tell types' zqpaths index t.zqp --type f one.tar
}

@test "an archive that is cut short leaves no set" {
    make_archives
    local archive
    for archive in odd.tar odd.zip; do
        head -c -11000 odd.tar >cut.tar
        head -c -60 odd.zip >cut.zip
        fails_with 2 "cut${archive#odd}: is " zqpaths index s.zqp "cut${archive#odd}"
        [ ! -e s.zqp ]
    done
    fails_with 2 'odd.zip: is no tar' zqpaths index s.zqp --from tar odd.zip
    fails_with 2 'odd.paths: Not a directory, nor a tar or zip' zqpaths index s.zqp odd.paths
}

@test "listings of object stores are read" {
    printf '2023-05-01 12:34:56 %10s %s\n' 12 'a b' 0 dir/ 7 ' dir/x ' >s3
    zqpaths index s.zqp --from s3 s3
    [ "$(zqpaths list s.zqp)" = $'a b\n dir/x ' ]
    printf '2023-05-01 12:34 %12s  s3://b/%s\n' 12 'a b' 0 dir/ | zqpaths add s.zqp --from s3cmd -
    printf '%9s %s\n' 12 'r' | zqpaths add s.zqp --from rclone -
    printf '%s\n' gs://b/: gs://b/a '' gs://b/d/: gs://b/d/ gs://b/d/x | zqpaths add s.zqp --from gsutil -
    [ "$(zqpaths list s.zqp | tail -n 4)" = $'s3://b/a b\nr\ngs://b/a\ngs://b/d/x' ]
    zqpaths index t.zqp --from s3 s3 --exclude '[ab] *' s3
    [ "$(zqpaths list t.zqp)" = $' dir/x \n dir/x ' ]
}

@test "a line that does not fit is told with its number, and what was expected" {
    printf '2023-05-01 12:34:56 %10s %s\n' 12 a | cat - <(echo '   PRE b/') >s3
    fails_with 2 "s3: line 2: expected DATE TIME SIZE KEY, as 'aws s3 ls --recursive' prints it" \
        zqpaths index s.zqp --from s3 s3
    fails_with 2 'standard input: line 1: expected SIZE PATH' zqpaths index s.zqp --from rclone - <s3
    fails_with 2 'standard input: line 2: expected an object with the member "p", a text' \
        zqpaths index s.zqp --from jsonl --field p - <<<$'{"p":"a"}\n{"q":"b"}'
    fails_with 2 'standard input: line 1 has a NUL in its path' \
        zqpaths index s.zqp --from jsonl --field p - <<<'{"p":"a\u0000b"}'
    fails_with 2 'standard input: line 1 has an empty path' \
        zqpaths index s.zqp --from jsonl --field p - <<<'{"p":""}'
    [ ! -e s.zqp ]
}

@test "what is listed as objects of JSON comes back" {
    make_set s.zqp a $'new\nline' $'caf\xc3\xa9 "quoted"\\'
    zqpaths list s.zqp --json | zqpaths index t.zqp --from jsonl --field path -
    zqpaths list t.zqp -0 | cmp - <(zqpaths list s.zqp -0)
    zqpaths index u.zqp --from jsonl --field file.name - <<<'{"file":{"name":"x"}}'
    [ "$(zqpaths list u.zqp)" = x ]
}

@test "formats that cannot be meant are refused" {
    fails_with 2 'tar' zqpaths index s.zqp --from rar x
    fails_with 2 'FILE is required' zqpaths index s.zqp --from tar
    fails_with 2 '--field is required' zqpaths index s.zqp --from jsonl x
    fails_with 2 '--field is for --from jsonl' zqpaths index s.zqp --from s3 --field x x
    fails_with 2 'none: No such file' zqpaths index s.zqp --from s3 none
    fails_with 2 'standard input: is no zip' zqpaths index s.zqp --from zip - </dev/null
}
