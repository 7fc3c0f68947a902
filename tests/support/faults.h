#pragma once

#include <deque>

// Faults between the code under test, which is what ships, and the C library. Tests that link
// test_faults have every malloc, calloc, realloc and operator new, read and write of the project's
// code pass through here.

// The number of the allocation that fails, counted from now on; 0 for none.
extern int allocation_to_fail;
// Whether every one after it fails too.
extern bool all_later_fail;

// What the next calls of write() or read() do, in order; later ones do what they should.
struct IoFault {
    long result; // below 0: fails with `error`; 0: returns 0; else: moves that many bytes at most
    int error = 0;
};
extern std::deque<IoFault> write_faults;
extern std::deque<IoFault> read_faults;
