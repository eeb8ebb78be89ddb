#pragma once

#include <cstdlib>
#include <ctime>

// The process's time zone for the rest of the test; every test has a process of its own.
inline void useZone(const char* name) {
    ::setenv("TZ", name, 1);
    ::tzset();
}
