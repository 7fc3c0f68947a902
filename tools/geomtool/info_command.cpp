#include "tools/geomtool/info_command.h"

#include "geom_stream/record_reader.h"
#include "tools/geomtool/input_file.h"
#include "tools/geomtool/listing.h"
#include "tools/geomtool/summary.h"

#include <cstddef>
#include <iostream>
#include <optional>

namespace geomtool {

using geom_stream::RecordReader;

namespace {

/// Lists objects until the end of the stream, its first error, or a failed write to `out`. Memory
/// grows with the largest object only.
Totals listObjects(RecordReader& reader, Listing& listing, const std::ostream& out) {
    Totals totals;
    while (const std::optional<geom_stream::Object> object = reader.next()) {
        listing.add(++totals.objects, *object);
        for (const Count& count : counts(*object)) {
            if (count.name == "vertices")
                totals.vertices += count.value;
            else if (count.name == "polygons")
                totals.polygons += count.value;
        }
        totals.bytes += object->size;
        if (!out)
            return totals;
    }
    totals.error = reader.error();
    totals.streamBytes = reader.skipToEnd();
    return totals;
}

} // namespace

ExitStatus runInfo(const InfoOptions& options) {
    const std::string name = options.file == "-" ? "standard input" : options.file;
    InputFile input(options.file);
    RecordReader reader(
        [&input](std::byte* into, std::size_t capacity) { return input.read(into, capacity); });
    const Coverage coverage = options.totals   ? Coverage::kNone
                              : options.values ? Coverage::kValues
                                               : Coverage::kObjects;
    const auto listing =
        options.json ? makeJsonListing(std::cout, coverage) : makeTextListing(std::cout, coverage);
    const Totals totals = listObjects(reader, *listing, std::cout);
    if (input.error()) {
        std::cerr << "geomtool: cannot read " << name << ": " << input.error().message() << '\n';
        return kStatusFailed;
    }
    listing->finish(totals);
    if (!std::cout.flush()) {
        std::cerr << "geomtool: cannot write the listing\n";
        return kStatusFailed;
    }
    if (totals.error) {
        std::cerr << "geomtool: " << name << ": offset " << totals.error->offset << ": "
                  << totals.error->message << '\n';
        return kStatusBroken;
    }
    return kStatusSound;
}

} // namespace geomtool
