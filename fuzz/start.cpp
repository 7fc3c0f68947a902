#include "fuzz/finding.h"

#include <cstdint>
#include <sanitizer/common_interface_defs.h>

// What every fuzz target does when it starts.

// Memory that a scene asks for without bringing the data (images) has to fail here as it may fail
// elsewhere, and freed memory must not pile up.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the sanitizer's name
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=64:quarantine_size_mb=16";
}

// Keeps standard error for reports, before the fuzzer or a run turns it elsewhere.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    const std::intptr_t descriptor = meshcast::fuzz::originalStandardError();
    // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how the sanitizers take it.
    __sanitizer_set_report_fd(reinterpret_cast<void*>(descriptor));
    return 0;
}
