#pragma once

#include "compat/geom/geom.h"
#include "compat/geom/settings.h"
#include "tests/support/faults.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using Floats = std::vector<float>;
using Ints = std::vector<std::int32_t>;

// Destroys the object at the end of the test.
struct DestroyObject {
    void operator()(GEOMobj* obj) const { GEOMdestroy_obj(obj); }
};
using Object = std::unique_ptr<GEOMobj, DestroyObject>;

inline Object make(std::uint32_t type) { return Object(GEOMcreate_obj(type, nullptr)); }

// A std::malloc block for an object to take over. Not inline, since static checkers would report a
// leak.
void* rawBlock(std::size_t bytes);
template <class T>
T* block(const std::vector<T>& values) {
    T* copy = static_cast<T*>(rawBlock(values.size() * sizeof(T)));
    std::copy(values.begin(), values.end(), copy);
    return copy;
}

// A property record in the byte order of the machine: three words, then bytes.
inline unsigned char* property(std::uint32_t kind, std::uint32_t value,
                               std::vector<unsigned char> bytes) {
    const std::uint32_t words[] = {kind, static_cast<std::uint32_t>(bytes.size()), value};
    const auto* const first = reinterpret_cast<const unsigned char*>(words);
    bytes.insert(bytes.begin(), first, first + sizeof words);
    return block(bytes);
}

template <class T, int N>
std::vector<T> valuesOf(const GEOMlist<T, N>& list) {
    return {list.data, list.data + list.used * N};
}

// Settings whose messages are appended to a text, each after "error: " or "finding: ".
GEOMsettings noting(std::string& messages);

// The messages of `code`.
std::string messagesOf(const std::function<void()>& code);

// The bytes that `code` writes to the descriptor that it gets.
std::string written(const std::function<void(int fd)>& code);
