#include "fuzz/finding.h"

#include <cstdint>
#include <sanitizer/common_interface_defs.h>

// Start-up of all fuzz targets.

// Allocations of the size that a scene declares without having the data (images) must fail as in
// other builds, and the quarantine for freed memory must stay small.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the sanitizer's name
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=64:quarantine_size_mb=16";
}

// Keeps a copy of standard error for reports, before it is redirected.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    const std::intptr_t descriptor = meshcast::fuzz::originalStandardError();
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the sanitizers require this type.
    __sanitizer_set_report_fd(reinterpret_cast<void*>(descriptor));
    return 0;
}
