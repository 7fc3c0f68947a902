#pragma once

#include <deque>

// Injects faults between the unchanged code under test and the C library. In tests that link
// test_faults, every malloc, calloc, realloc, operator new, read and write of the project's code
// goes through here.

// The number of the allocation that fails, counted from when it is set; 0 for none.
extern int allocationToFail;
// Whether all later allocations fail too.
extern bool all_later_fail;

// The results of the next calls of write() or read(), in order. Later calls work as usual.
struct IoFault {
    long result; // below 0: fails with `error`; 0: returns 0; else: transfers at most this many
                 // bytes
    int error = 0;
};
extern std::deque<IoFault> writeFaults;
extern std::deque<IoFault> readFaults;
