#!/usr/bin/env bats
# What `cmake --install` puts below a prefix, after it has been moved elsewhere. BUILD is the build
# tree, CONFIGURATION its build type.

bats_require_minimum_version 1.5.0

# The tests share one installation, which is not where it was installed.
setup_file() {
    export PREFIX=$BATS_FILE_TMPDIR/moved
    cmake --install "$BUILD" --prefix "$BATS_FILE_TMPDIR/installed" >/dev/null
    mv "$BATS_FILE_TMPDIR/installed" "$PREFIX"
}

# Every test starts in an empty folder that is gone afterwards.
setup() {
    cd "$BATS_TEST_TMPDIR"
}

# programs_and_libraries - all of them below the prefix
programs_and_libraries() {
    find "$PREFIX/bin" "$PREFIX/lib" -type f \( -perm -u=x -o -name '*.so*' \)
}

@test "there is what is on the list, and nothing else" {
    cd "$PREFIX"
    local version
    version=$(bin/zqpaths --version)
    # The modules of Python have a list of their own, in their sources.
    diff <(find . ! -type d ! -path './lib/python3*' -printf '%P\n' | LC_ALL=C sort) \
        <(sed "s/CONFIGURATION/${CONFIGURATION,,}/; s/VERSION/${version#* }/" \
            "$BATS_TEST_DIRNAME/files" | LC_ALL=C sort)
}

@test "programs and libraries find each other by where they are" {
    local file folders
    for file in $(programs_and_libraries); do
        run -0 ldd "$file"
        [[ $output != *"not found"* ]]
        [[ $output != *"$BUILD"* ]]
        folders=$(readelf -d "$file" | sed -n 's/.*R\(UN\)\?PATH.*\[\(.*\)\]/\2/p')
        [[ -z $folders || $folders =~ ^\$ORIGIN[^:]*(:\$ORIGIN[^:]*)*$ ]]
    done
    run -0 ldd "$PREFIX/bin/zqpaths"
    [[ $output == *"$PREFIX/bin/../lib/libzqpaths.so"* ]]
}

@test "the program makes and reads a set" {
    printf '%s\n' /a/b /a/c | "$PREFIX/bin/zqpaths" index s.zqp --list -
    run -0 "$PREFIX/bin/zqpaths" get s.zqp 2
    [ "$output" = /a/c ]
}

@test "the program does not run without the library beside it" {
    cp -r "$PREFIX" .
    rm -r moved/lib
    run -127 moved/bin/zqpaths --version
}

@test "manual page and completions are where their readers look" {
    run -0 env MANPATH="$PREFIX/share/man" man -w zqpaths
    [ "$output" = "$PREFIX/share/man/man1/zqpaths.1" ]
    grep -q 'complete .* zqpaths' "$PREFIX/share/bash-completion/completions/zqpaths"
    grep -q '^#compdef zqpaths' "$PREFIX/share/zsh/site-functions/_zqpaths"
    grep -q 'complete .* zqpaths' "$PREFIX/share/fish/vendor_completions.d/zqpaths.fish"
}

@test "programs are built by find_package and by pkg-config" {
    export CMAKE_PREFIX_PATH=$PREFIX PKG_CONFIG_PATH=$PREFIX/lib/pkgconfig
    "$BATS_TEST_DIRNAME/try-library" .
}

@test "Python imports the module from where it is" {
    local folders=("$PREFIX"/lib/python3*/dist-packages)
    [ -d "${folders[0]}" ] || skip "the module is not built"
    printf '%s\n' /a/b /a/c | "$PREFIX/bin/zqpaths" index s.zqp --list -
    PYTHONPATH=${folders[0]} run -0 /usr/bin/python3 -c 'import zqpaths; print(zqpaths.open("s.zqp")[1])'
    [ "$output" = /a/c ]
}

@test "a tree that is installed for /usr leaves the search for libraries to the system" {
    DESTDIR=$PWD cmake --install "$BUILD" --prefix /usr >/dev/null
    readelf -d usr/bin/zqpaths | grep -q 'NEEDED.*libzqpaths'
    run ! grep -q 'RUNPATH\|RPATH' <(readelf -d usr/bin/zqpaths)
}

# configure OPTION... - a build of the library alone, in the folder build
configure() {
    cmake -S "$BATS_TEST_DIRNAME/../.." -B build -G Ninja -DBUILD_TESTING=OFF -DZQ_PROGRAM=OFF \
        -DZQ_HOST=OFF -DZQ_PYTHON=OFF "$@"
}

@test "what is not built is told before anything is installed" {
    configure >/dev/null
    run -1 cmake --install build --prefix "$PWD/prefix"
    [[ $output == *"is not built yet"*"--target shipped"* ]]
    [ ! -e prefix ]
}

@test "the library alone wants no packages of the tests, the program, the host and Python" {
    local package options=()
    for package in GTest rapidcheck benchmark OpenSSL CLI11 MPI Python pybind11; do
        options+=("-DCMAKE_DISABLE_FIND_PACKAGE_$package=ON")
    done
    configure "${options[@]}" >/dev/null
}

@test "folders that are not below the prefix are refused" {
    run -1 configure -DCMAKE_INSTALL_LIBDIR=/elsewhere/lib
    [[ $output == *"CMAKE_INSTALL_LIBDIR is /elsewhere/lib: give it relative to the prefix"* ]]
}
