#include "tools/geomtool/listing.h"
#include "tools/geomtool/summary.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace geomtool {

using geom_stream::Object;

namespace {

// Keeps the order of keys. Real numbers are floats, so that they are written in the shortest form
// for a float, not in the longer one for a double.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

// The functions below convert one element of an array.
Json json(std::int64_t number) { return number; }
Json json(std::int32_t number) { return number; }
Json json(std::byte byte) { return std::to_integer<unsigned>(byte); }
Json json(const std::string& text) { return text; }

Json json(float number) {
    if (std::isnan(number))
        return "nan";
    if (std::isinf(number))
        return number > 0 ? "inf" : "-inf";
    return number;
}

template <class Sequence>
requires requires(const Sequence& sequence) { sequence[0]; }
Json json(const Sequence& elements) {
    Json list = Json::array();
    for (const auto& element : elements)
        list.push_back(json(element));
    return list;
}

Json json(PolygonsOf polygons) { return json(polygons.polyhedron->polygons()); }

Json propertiesOf(const Object& object) {
    Json list = Json::array();
    for (const geom_stream::Property& property : object.properties)
        list.push_back({{"kind", property.kind},
                        {"value", property.value},
                        {"length", property.bytes.size()}});
    return list;
}

Json valuesOf(const Object& object) {
    Json all = Json::object();
    for (const ValueGroup& group : valueGroups(object)) {
        Json arrays = Json::object();
        for (const auto& [name, values] : group.arrays)
            arrays[std::string(name)] =
                std::visit([](const auto& elements) { return json(elements); }, values);
        if (!group.plural.empty())
            all[std::string(group.plural)].push_back(std::move(arrays));
        else if (!group.singular.empty())
            all[std::string(group.singular)] = std::move(arrays);
        else
            all.update(arrays);
    }
    return all;
}

Json jsonOf(std::uint64_t number, const Object& object, bool withValues) {
    Json entry{{"number", number},          {"kind", std::string(kindName(object.kind()))},
               {"version", object.version}, {"offset", object.offset},
               {"size", object.size},       {"data", object.flags}};
    entry["flags"] = Json::array();
    for (const std::string_view name : namesOfFlags(object.flags))
        entry["flags"].push_back(std::string(name));
    for (const Count& count : counts(object))
        entry["counts"][std::string(count.name)] = count.value;
    if (object.kind() == geom_stream::Kind::kLabel) {
        const std::uint32_t labelFlags = object.label().labelFlags;
        entry["label"] = {{"flags", labelFlags}, {"style", describeLabelFlags(labelFlags)}};
    }
    entry["name"] = object.name;
    entry["text"] = object.secondText;
    entry["properties"] = propertiesOf(object);
    entry["hdrsize"] = object.headerSize;
    entry["extent"] = object.hasExtent ? json(object.extent) : Json();
    entry["bytecount"] = object.byteCount;
    if (const std::optional<Bounds> around = bounds(object))
        entry["bounds"] = {{"minimum", json(around->minimum)}, {"maximum", json(around->maximum)}};
    else
        entry["bounds"] = nullptr;
    entry["notes"] = notes(object);
    if (withValues)
        entry["values"] = valuesOf(object);
    return entry;
}

class JsonListing final : public Listing {
public:
    JsonListing(std::ostream& out, Coverage coverage) : out_(out), coverage_(coverage) {}

    void add(std::uint64_t number, const Object& object) override {
        if (coverage_ != Coverage::kNone)
            out_ << (number == 1 ? "{\"objects\":[\n" : ",\n")
                 << line(jsonOf(number, object, coverage_ == Coverage::kValues));
    }

    void finish(const Totals& totals) override {
        Json error;
        if (totals.error)
            error = {{"offset", totals.error->offset}, {"message", totals.error->message}};
        const Json total{{"objects", totals.objects},
                         {"vertices", totals.vertices},
                         {"polygons", totals.polygons},
                         {"bytes", totals.bytes},
                         {"stream_bytes", totals.streamBytes}};
        if (coverage_ == Coverage::kNone)
            out_ << '{';
        else
            out_ << (totals.objects == 0 ? "{\"objects\":[" : "") << "\n],\n";
        out_ << "\"total\":" << line(total) << ",\n\"error\":" << line(error) << "}\n";
    }

private:
    /// Texts of a stream may be invalid UTF-8; U+FFFD replaces invalid bytes in JSON.
    static std::string line(const Json& json) {
        return json.dump(-1, ' ', false, Json::error_handler_t::replace);
    }

    std::ostream& out_;
    Coverage coverage_;
};

} // namespace

std::unique_ptr<Listing> makeJsonListing(std::ostream& out, Coverage coverage) {
    return std::make_unique<JsonListing>(out, coverage);
}

} // namespace geomtool
