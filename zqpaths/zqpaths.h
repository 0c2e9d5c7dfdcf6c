#pragma once
// Sets of file paths in files, for programs in C and for all languages that call C:
//
//     zqp_set* set;
//     if (zqp_open("usr.zqp", &set) != ZQP_OK) {
//         fprintf(stderr, "%s\n", zqp_last_error());  // "usr.zqp: No such file or directory"
//         return 2;
//     }
//     char path[4096];
//     size_t length;
//     if (zqp_get(set, 7, path, sizeof path, &length) == ZQP_OK) puts(path);
//     zqp_close(set);
//
// Paths have numbers from 1 on, in the order in which they were added. A path is any bytes but NUL,
// at least one; it is given with its length in bytes, wherever it comes from and goes to. The name
// of a file is a text that ends with NUL.
//
// Errors: what can fail returns a status, and keeps a text for zqp_last_error. No argument may be
// NULL unless its function says so: it is refused with ZQP_WRONG_USE. Bytes of length 0 may be at
// NULL. What a function gives by a pointer is meaningless after an error, unless something else is
// said.
//
// Threads: an opened set never changes, and any number of threads may read it. A writer belongs to
// one thread at a time. The library starts threads of its own for long work. Those of a set have
// ended when the call returns, those of a writer when it is committed or closed: fork then.
//
// A set that others change while it is open gives an error or the right path. One that is cut short
// in the midst of a call can end the process with SIGBUS, which the library leaves to the program.
//
// The interface grows and does not change: a program that was built with an older version of the
// library works with a newer one of the same name, libzqpaths.so.0.

#include <stddef.h>
#include <stdint.h>

#define ZQP_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

typedef enum zqp_status {
    ZQP_OK = 0,
    ZQP_NOT_FOUND = 1,   // there is no such file
    ZQP_EXISTS = 2,      // there is a file, and it may not be replaced
    ZQP_NOT_A_SET = 3,   // a file that is none of ours, or of a version that is not known here
    ZQP_DAMAGED = 4,     // a set whose bytes are not those that were saved
    ZQP_HELD = 5,        // another process writes to the set
    ZQP_NO_SPACE = 6,    // the device or a quota is full
    ZQP_SYSTEM = 7,      // the system refuses something else
    ZQP_WRONG_USE = 8,   // an argument that cannot be meant: NULL, a number beyond the set
    ZQP_NO_MEMORY = 9,   // there is not enough memory
    ZQP_TOO_SMALL = 10,  // the buffer; how large it has to be is told
    ZQP_UNEXPECTED = 11  // anything else, such as a C++ exception that a callback throws
} zqp_status;

/// The version of the library, as "0.1.0".
ZQP_API const char* zqp_version(void);

/// What the last call that failed on this thread had to say, for people: "usr.zqp: is no saved
/// set". It stays until the next call that fails on the thread, and is empty before the first. The
/// name of a file stands in it as it was given. Never NULL.
ZQP_API const char* zqp_last_error(void);

// --- Sets.

/// A set that is opened to be read.
typedef struct zqp_set zqp_set;

/// Opens the set in a file, which is mapped, not loaded: microseconds, and all processes share its
/// bytes. What others add to the file later is not seen. `*set` is NULL after an error:
/// ZQP_NOT_FOUND, ZQP_SYSTEM, ZQP_NOT_A_SET, ZQP_DAMAGED. O(segments of the file).
ZQP_API zqp_status zqp_open(const char* file, zqp_set** set);

/// Closes a set that nobody uses any more. Does nothing if `set` is NULL.
ZQP_API void zqp_close(zqp_set* set);

/// How many paths the set has; 0 if `set` is NULL.
ZQP_API uint64_t zqp_size(const zqp_set* set);

/// The name under which the set was opened, until it is closed; NULL if `set` is NULL.
ZQP_API const char* zqp_file(const zqp_set* set);

// All functions below give ZQP_DAMAGED for bytes that cannot be what was saved. A number that the
// set does not have is ZQP_WRONG_USE, before anything is visited.

/// Puts path `number` and a NUL into `buffer`, which has room for `capacity` bytes, and its length
/// without the NUL into `*length`. If it does not fit, the status is ZQP_TOO_SMALL, the buffer is
/// as it was, and `*length` is told all the same: `*length` + 1 bytes are needed. `buffer` may be
/// NULL if `capacity` is 0. O(log paths + bytes).
ZQP_API zqp_status zqp_get(const zqp_set* set, uint64_t number, char* buffer, size_t capacity,
                           size_t* length);

/// Puts the paths with these `count` numbers, in the order of the numbers given, one after the
/// other into `bytes`, which has room for `capacity` bytes, without anything between them. The
/// array `offsets` has room for `count` + 1: path i has the bytes from offsets[i] to before
/// offsets[i + 1], and offsets[count] is how many there are in all. If they do not fit, the status
/// is ZQP_TOO_SMALL; the offsets are told all the same, and what is in `bytes` is meaningless.
/// `bytes` may be NULL if `capacity` is 0, `numbers` if `count` is 0. O(log paths + bytes) each,
/// less where the numbers ascend by one.
ZQP_API zqp_status zqp_get_many(const zqp_set* set, const uint64_t* numbers, size_t count,
                                char* bytes, size_t capacity, size_t* offsets);

/// Paths that were marked as gone, since what they led to is there no more. They keep their
/// numbers, and all functions give them as they give the others. How many there are, 0 if `set` is
/// NULL; and whether path `number` is one, 1 or 0 into `*is_gone`. O(log runs of neighbours that
/// are).
ZQP_API uint64_t zqp_gone_count(const zqp_set* set);
ZQP_API zqp_status zqp_is_gone(const zqp_set* set, uint64_t number, int* is_gone);

/// The lowest number of a path into `*number`, or 0 if the set does not have it. Looks it up, does
/// not scan the set: O(components * log folders + names in the folder) for each segment.
ZQP_API zqp_status zqp_number_of(const zqp_set* set, const char* path, size_t length,
                                 uint64_t* number);

// --- Visits.

/// What a callback returns: to go on, or to end the visit, as any other value does. A visit that is
/// ended has not failed: ZQP_OK.
enum { ZQP_GO_ON = 0, ZQP_STOP = 1 };

/// Is called for each path of a visit, in order, on the thread that asked. `context` is what was
/// given to the visit. The `length` bytes at `path` do not end with NUL, and are gone after the
/// call. It may call all functions but zqp_close of this set. It has to return: what comes of
/// leaving it by longjmp, or of ending the thread in it, is undefined.
typedef int (*zqp_visitor)(void* context, uint64_t number, const char* path, size_t length);

/// Visits all paths, or those from `first` to `last`, both included, downwards if `last` is below
/// `first`. O(bytes), on all cores where there is much to do. `context` may be NULL, here and
/// below.
ZQP_API zqp_status zqp_for_each(const zqp_set* set, zqp_visitor visit, void* context);
ZQP_API zqp_status zqp_for_range(const zqp_set* set, uint64_t first, uint64_t last,
                                 zqp_visitor visit, void* context);

/// Visits the paths in a folder and below it, and that of the folder itself, in the order of their
/// numbers. How many separators stand together in `folder`, or at its end, does not matter; a
/// folder of length 0 holds all paths, "/" those that begin with a separator. Does not scan the
/// set: O(what it gives + folders on the way and what they hold).
ZQP_API zqp_status zqp_under(const zqp_set* set, const char* folder, size_t length,
                             zqp_visitor visit, void* context);

/// What a pattern is: one of the first three, and with | whether A and a are one.
enum zqp_pattern {
    ZQP_TEXT = 0,   // a text anywhere in the path
    ZQP_GLOB = 1,   // matched against the file name if it has no /, otherwise the whole path:
                    // * any text, ? one character, [a-c] [!a-c] one of those, all but /;
                    // ** any text; a backslash takes the meaning from what follows it
    ZQP_REGEX = 2,  // a regular expression as RE2 has them, anywhere in the path
    ZQP_IGNORE_CASE = 16
};

/// Visits the paths that match, in the order of their numbers. `kind` is of enum zqp_pattern. A
/// pattern that is not well formed or too large is ZQP_WRONG_USE, and the text of the error says
/// where. Characters are those of UTF-8; a path or a pattern that is not UTF-8 is matched byte by
/// byte. On all cores.
ZQP_API zqp_status zqp_find(const zqp_set* set, const char* pattern, size_t length, unsigned kind,
                            zqp_visitor visit, void* context);

/// How many paths match, into `*count`.
ZQP_API zqp_status zqp_count(const zqp_set* set, const char* pattern, size_t length, unsigned kind,
                             uint64_t* count);

/// Visits all paths in the order of the folders, folder by folder, segment after segment; a path
/// that is the folder of others is not among them. The number given to `visit` counts the steps.
ZQP_API zqp_status zqp_walk(const zqp_set* set, zqp_visitor visit, void* context);

/// Is told what is damaged and where, as a text that is gone after the call. As zqp_visitor, it has
/// to return.
typedef void (*zqp_reporter)(void* context, const char* damage);

/// Looks at all sums and offsets, and then reports each damage: ZQP_DAMAGED if there is one, ZQP_OK
/// if the set is whole. The first one is also the text of the error. `report` may be NULL. O(size
/// of the file), on all cores.
ZQP_API zqp_status zqp_verify(const zqp_set* set, zqp_reporter report, void* context);

// --- Writers.

/// Makes a set in a file, or adds to one, in one pass over the paths. Until zqp_writer_commit has
/// returned, whoever opens the file sees what was there before; so it is after a crash at any
/// moment. Memory stays below 512 MB and eight times the longest path, however many paths there
/// are; and a hundred bytes for each folder of a path that is in millions of them.
typedef struct zqp_writer zqp_writer;

/// What a writer does: one of the first three, and with | how the paths are kept.
enum zqp_writing {
    ZQP_CREATE = 0,   // a new file; refuses one that is there
    ZQP_REPLACE = 1,  // a new file, in the place of one that may be there
    ZQP_APPEND = 2,   // after the paths of a set that is there
    ZQP_PACKED = 16   // as small as can be, to be inflated by whoever reads them first; without it,
                      // to be opened at once
};

/// Begins to write; `how` is of enum zqp_writing. One writer at a time has a set; another that
/// comes waits up to five seconds. `*writer` is NULL after an error: ZQP_EXISTS, ZQP_NOT_FOUND,
/// ZQP_NOT_A_SET, ZQP_DAMAGED, ZQP_HELD, ZQP_NO_SPACE, ZQP_SYSTEM.
ZQP_API zqp_status zqp_writer_open(const char* file, unsigned how, zqp_writer** writer);

/// Gives the path the next number. ZQP_WRONG_USE for an empty path, one with NUL, and after a
/// commit; the writer is then as it was. ZQP_NO_SPACE, ZQP_SYSTEM and ZQP_NO_MEMORY tell what went
/// wrong with the paths before, and the writer then takes no more: every call says so. Amortised
/// O(bytes).
ZQP_API zqp_status zqp_writer_add(zqp_writer* writer, const char* path, size_t length);

/// How many paths the set will have: those that were there and those added. 0 if `writer` is NULL.
ZQP_API uint64_t zqp_writer_size(const zqp_writer* writer);

/// Makes the file as it is to be; it is on the disk then. Without any path a new set is empty, and
/// one that is appended to is not touched. ZQP_EXISTS if another has made the file meanwhile,
/// ZQP_NO_SPACE, ZQP_SYSTEM, ZQP_NO_MEMORY, ZQP_DAMAGED if small segments that were there cannot be
/// joined, ZQP_WRONG_USE after a commit; the file is then as it was, and the writer takes no more.
/// It has to be closed all the same. O(bytes), and now and then those of small segments that were
/// there.
ZQP_API zqp_status zqp_writer_commit(zqp_writer* writer);

/// Ends a writer, and discards its paths if they were not committed: the file is then as it was
/// before zqp_writer_open. Does nothing if `writer` is NULL.
ZQP_API void zqp_writer_close(zqp_writer* writer);

#ifdef __cplusplus
}
#endif
