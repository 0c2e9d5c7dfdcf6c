// Holds the paths that are its arguments in a set file, reads them back and looks for a text in
// them:  c_session SET TEXT PATH...

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <zqpaths.h>

// What the functions below give: NULL if nothing has failed, otherwise what to say of it.
typedef const char* Failure;

static Failure failureOf(zqp_status status) {
    return status == ZQP_OK ? NULL : zqp_last_error();
}

static Failure writeSet(const char* file, char** paths, int count) {
    zqp_writer* writer = NULL;
    zqp_status status = zqp_writer_open(file, ZQP_CREATE, &writer);  // refuses a file that is there
    for (int i = 0; i < count && status == ZQP_OK; ++i)
        status = zqp_writer_add(writer, paths[i], strlen(paths[i]));
    if (status == ZQP_OK) status = zqp_writer_commit(writer);  // now the file is there, whole
    zqp_writer_close(writer);
    return failureOf(status);
}

// A path may be of any length, so the set is asked twice: how long it is, and then for its bytes.
static Failure printLast(const zqp_set* set) {
    const uint64_t last = zqp_size(set);
    size_t length = 0;
    if (zqp_get(set, last, NULL, 0, &length) != ZQP_TOO_SMALL) return zqp_last_error();
    char* const path = malloc(length + 1);
    if (path == NULL) return "there is not enough memory for the path";
    Failure failure = failureOf(zqp_get(set, last, path, length + 1, &length));
    if (failure == NULL && printf("%" PRIu64 " paths, the last one is %s\n", last, path) < 0)
        failure = "cannot print";
    free(path);
    return failure;
}

static int print(void* context, uint64_t number, const char* path, size_t length) {
    const int printed = fprintf(context, "%" PRIu64 "\t%.*s\n", number, (int)length, path);
    return printed < 0 ? ZQP_STOP : ZQP_GO_ON;
}

static Failure readSet(const char* file, const char* text) {
    zqp_set* set = NULL;
    if (zqp_open(file, &set) != ZQP_OK) return zqp_last_error();
    Failure failure = printLast(set);
    if (failure == NULL)
        failure = failureOf(zqp_find(set, text, strlen(text), ZQP_TEXT, print, stdout));
    zqp_close(set);
    return failure != NULL || fflush(stdout) == 0 ? failure : "cannot print";
}

int main(int argumentCount, char** arguments) {
    enum { kFirstPath = 3 };
    Failure failure = "usage: c_session SET TEXT PATH...";
    if (argumentCount > kFirstPath)
        failure = writeSet(arguments[1], arguments + kFirstPath, argumentCount - kFirstPath);
    if (failure == NULL) failure = readSet(arguments[1], arguments[2]);
    if (failure == NULL) return 0;
    (void)fprintf(stderr, "%s\n", failure);
    return 2;
}
