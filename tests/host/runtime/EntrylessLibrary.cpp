// A shared library that has nothing to do with the host.

extern "C" __attribute__((visibility("default"))) int answer() {
    return 42;
}
