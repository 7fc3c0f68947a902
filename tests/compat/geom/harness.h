#pragma once

#include "compat/geom/geom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Destroys the object at the end of the test.
struct DestroyObject {
    void operator()(GEOMobj* obj) const { GEOMdestroy_obj(obj); }
};
using Object = std::unique_ptr<GEOMobj, DestroyObject>;

Object make(std::uint32_t type);

// A std::malloc block, to be handed over.
void* raw_block(std::size_t bytes);
template <class T>
T* block(const std::vector<T>& values) {
    T* copy = static_cast<T*>(raw_block(values.size() * sizeof(T)));
    std::copy(values.begin(), values.end(), copy);
    return copy;
}

template <class T, int N>
std::vector<T> values_of(const GEOMlist<T, N>& list) {
    return {list.data, list.data + list.used * N};
}

std::string captured_stderr(const std::function<void()>& code);

// The n-th allocation of the library from now on fails, and no other; 0 for none.
void fail_allocation(int n);

// What the next calls of write() do, in order; later ones do what they should.
struct WriteFault {
    long result; // below 0: fails with `error`; 0: returns 0; else: writes that many at most
    int error = 0;
};
void script_writes(std::deque<WriteFault> faults);

// The bytes that reach a descriptor which `code` writes to.
std::string written(const std::function<void(int fd)>& code);

// Sets an environment variable for one scope, with the cached answers forgotten.
class Environment {
public:
    explicit Environment(const char* variable);
    ~Environment();

private:
    const char* m_variable;
};

// Builds the bytes that a record should have, in either version.
class Bytes {
public:
    explicit Bytes(bool raw) : m_raw(raw) {}
    Bytes& ints(const std::vector<std::int64_t>& values);
    Bytes& counts(const std::vector<std::int64_t>& values);
    Bytes& floats(const std::vector<float>& values);
    Bytes& run(const std::string& bytes);
    Bytes& append(const std::string& bytes);
    // The header of an object without extent, properties and strings.
    Bytes& header(std::uint32_t data, std::uint32_t type, std::int64_t bytecount);
    const std::string& str() const { return m_bytes; }

private:
    void word(std::uint64_t value, int bytes);
    bool m_raw;
    std::string m_bytes;
};
