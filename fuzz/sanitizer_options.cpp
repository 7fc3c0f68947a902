// Memory that a scene asks for without bringing the data (images) has to fail here as it may fail
// elsewhere, and freed memory must not pile up.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=64:quarantine_size_mb=16";
}
