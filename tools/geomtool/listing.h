#pragma once

#include "geom_stream/error.h"
#include "geom_stream/object.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>

namespace geomtool {

/// The end of a listing.
struct Totals {
    std::uint64_t objects = 0;
    std::int64_t vertices = 0; ///< of the objects listed, by their vertex counts
    std::int64_t polygons = 0;
    std::uint64_t bytes = 0;       ///< of the objects listed
    std::uint64_t streamBytes = 0; ///< of the whole stream; more than `bytes` if it is damaged
    std::optional<geom_stream::Error> error;
};

/// What a listing shows before its totals.
enum class Coverage {
    kNone,    ///< nothing
    kObjects, ///< every object
    kValues   ///< every object and the elements of its arrays
};

/// Writes a listing of a stream: one object at a time, then the totals.
class Listing {
public:
    Listing() = default;
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;
    virtual ~Listing() = default;

    /// Lists an object. `number` is its position in the stream, counted from 1.
    virtual void add(std::uint64_t number, const geom_stream::Object& object) = 0;
    virtual void finish(const Totals& totals) = 0;
};

/// Text: a heading per object and indented details. Floats have the shortest form that reads back
/// as the same value. Without objects, the totals are one line each, with name and number.
std::unique_ptr<Listing> makeTextListing(std::ostream& out, Coverage coverage);

/// One JSON document with one line per object; a float that is not finite is a string.
std::unique_ptr<Listing> makeJsonListing(std::ostream& out, Coverage coverage);

} // namespace geomtool
