#pragma once
// What libkorvexhost.so shows to others; everything else in it is hidden.

#define KORVEX_API __attribute__((visibility("default")))
