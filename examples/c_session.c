// Holds the paths that are its arguments in a set file, reads them back and looks for a text in
// them:  c_session SET TEXT PATH...

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <zqpaths.h>

static zqp_status addAll(zqp_writer* writer, char** paths, int count) {
    zqp_status status = ZQP_OK;
    for (int i = 0; i < count && status == ZQP_OK; ++i)
        status = zqp_writer_add(writer, paths[i], strlen(paths[i]));
    return status;
}

static zqp_status writeSet(const char* file, char** paths, int count) {
    zqp_writer* writer = NULL;
    zqp_status status = zqp_writer_open(file, ZQP_CREATE, &writer);  // refuses a file that is there
    if (status == ZQP_OK) status = addAll(writer, paths, count);
    if (status == ZQP_OK) status = zqp_writer_commit(writer);  // now the file is there, whole
    zqp_writer_close(writer);
    return status;
}

// A path may be of any length, so the set is asked twice: how long it is, and then for its bytes.
static zqp_status printLast(const zqp_set* set) {
    size_t length = 0;
    zqp_status status = zqp_get(set, zqp_size(set), NULL, 0, &length);
    if (status != ZQP_TOO_SMALL) return status;
    char* const path = malloc(length + 1);
    if (path == NULL) {
        fputs("there is not enough memory for a path\n", stderr);
        exit(2);
    }
    status = zqp_get(set, zqp_size(set), path, length + 1, &length);
    if (status == ZQP_OK) printf("%" PRIu64 " paths, the last one is %s\n", zqp_size(set), path);
    free(path);
    return status;
}

static int print(void* context, uint64_t number, const char* path, size_t length) {
    FILE* const out = context;
    fprintf(out, "%" PRIu64 "\t", number);
    fwrite(path, 1, length, out);
    fputc('\n', out);
    return ZQP_GO_ON;
}

static zqp_status readSet(const char* file, const char* text) {
    zqp_set* set = NULL;
    zqp_status status = zqp_open(file, &set);
    if (status == ZQP_OK) status = printLast(set);
    if (status == ZQP_OK) status = zqp_find(set, text, strlen(text), ZQP_TEXT, print, stdout);
    zqp_close(set);
    return status;
}

int main(int argumentCount, char** arguments) {
    enum { kFirstPath = 3 };
    if (argumentCount <= kFirstPath) {
        fputs("usage: c_session SET TEXT PATH...\n", stderr);
        return 2;
    }
    zqp_status status = writeSet(arguments[1], arguments + kFirstPath, argumentCount - kFirstPath);
    if (status == ZQP_OK) status = readSet(arguments[1], arguments[2]);
    if (status == ZQP_OK) return 0;
    fprintf(stderr, "%s\n", zqp_last_error());
    return 2;
}
