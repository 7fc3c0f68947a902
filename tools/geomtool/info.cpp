#include "tools/geomtool/info.h"

#include "geom_stream/decoder.h"
#include "tools/geomtool/listing.h"
#include "tools/geomtool/summary.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace geomtool {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};

/// A file, or standard input; null when it cannot be opened.
std::unique_ptr<std::FILE, FileCloser> open_input(const std::string& name) {
    return std::unique_ptr<std::FILE, FileCloser>(name == "-" ? stdin
                                                              : std::fopen(name.c_str(), "rb"));
}

/// The size of a regular file that is read from its beginning, if it is one.
std::optional<std::uint64_t> size_of(std::FILE* file) {
    struct stat status {};
    if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode) || ftello(file) != 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(status.st_size);
}

Totals list_objects(geom_stream::RecordReader& stream, Listing& listing) {
    Totals totals;
    while (const auto object = stream.next()) {
        listing.add(++totals.objects, *object);
        for (const Count& count : counts(*object)) {
            if (count.name == "vertices")
                totals.vertices += count.value;
            else if (count.name == "polygons")
                totals.polygons += count.value;
        }
        totals.bytes += object->size;
    }
    totals.error = stream.error();
    totals.stream_bytes = stream.skipRest();
    return totals;
}

} // namespace

ExitStatus run_info(const InfoOptions& options) {
    const std::string name = options.file == "-" ? "standard input" : options.file;
    const auto cannot_read = [&name] {
        std::cerr << "geomtool: cannot read " << name << ": " << std::strerror(errno) << '\n';
        return status_failed;
    };
    const auto input = open_input(options.file);
    if (!input)
        return cannot_read();

    const Coverage coverage = options.totals   ? Coverage::none
                              : options.values ? Coverage::values
                                               : Coverage::objects;
    const auto listing = options.json ? make_json_listing(std::cout, coverage)
                                      : make_text_listing(std::cout, coverage);
    geom_stream::RecordReader stream(
        [&input](std::byte* into, std::size_t capacity) {
            return std::fread(into, 1, capacity, input.get());
        },
        size_of(input.get()));
    const Totals totals = list_objects(stream, *listing);
    if (std::ferror(input.get()) != 0)
        return cannot_read();
    listing->finish(totals);
    if (!std::cout.flush()) {
        std::cerr << "geomtool: cannot write the listing\n";
        return status_failed;
    }
    if (totals.error) {
        std::cerr << "geomtool: " << name << ": offset " << totals.error->offset << ": "
                  << totals.error->message << '\n';
        return status_broken;
    }
    return status_sound;
}

} // namespace geomtool
