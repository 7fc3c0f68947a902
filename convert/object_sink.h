#pragma once

#include "compat/geom/geom.h"

#include <string_view>

namespace meshcast {

/// Receives the objects of a conversion, one by one.
class ObjectSink {
public:
    ObjectSink() = default;
    ObjectSink(const ObjectSink&) = delete;
    ObjectSink& operator=(const ObjectSink&) = delete;
    virtual ~ObjectSink() = default;

    /// Takes an object, which is destroyed after the call. While it runs, GEOMwrite_obj() writes
    /// records as the conversion's options ask for.
    virtual void write(const GEOMobj& object) = 0;

    /// Takes text that is meant for standard output: textures bring some along.
    virtual void print(std::string_view text) = 0;
};

/// Writes every object to a descriptor, as one record, and text to the buffered standard output of
/// the C library: it lands after the records that are being written. Kept, readers of such streams
/// know it there.
class DescriptorSink final : public ObjectSink {
public:
    explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {}
    void write(const GEOMobj& object) override;
    void print(std::string_view text) override;

private:
    int descriptor_;
};

} // namespace meshcast
