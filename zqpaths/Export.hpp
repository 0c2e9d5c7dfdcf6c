#pragma once
// What the library shows to programs that are linked with it; all else is its own.

#define ZQPATHS_EXPORT __attribute__((visibility("default")))
