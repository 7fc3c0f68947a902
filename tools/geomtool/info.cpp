#include "tools/geomtool/info.h"

#include "tools/geomtool/decoder.h"
#include "tools/geomtool/listing.h"
#include "tools/geomtool/summary.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <memory>
#include <span>
#include <system_error>
#include <variant>
#include <vector>

namespace geomtool {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};

/// Every byte of the file until its end, or the reason why they cannot be had.
std::variant<std::vector<std::byte>, std::error_code> read_all(std::FILE* file) {
    std::vector<std::byte> bytes;
    std::array<std::byte, 65536> block{};
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), file))
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(size));
    if (std::ferror(file) != 0)
        return std::error_code(errno, std::generic_category());
    return bytes;
}

std::variant<std::vector<std::byte>, std::error_code> read_input(const std::string& name) {
    if (name == "-")
        return read_all(stdin);
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(name.c_str(), "rb"));
    if (!file)
        return std::error_code(errno, std::generic_category());
    return read_all(file.get());
}

Totals list_objects(std::span<const std::byte> stream, Listing& listing) {
    Totals totals;
    totals.stream_bytes = stream.size();
    while (totals.bytes < stream.size()) {
        const auto record = geom_stream::decode_record(stream, totals.bytes);
        if (const auto* error = std::get_if<geom_stream::Error>(&record)) {
            totals.error = *error;
            break;
        }
        const auto& object = std::get<geom_stream::Object>(record);
        listing.add(++totals.objects, object);
        for (const Count& count : counts(object)) {
            if (count.name == "vertices")
                totals.vertices += count.value;
            else if (count.name == "polygons")
                totals.polygons += count.value;
        }
        totals.bytes += object.size;
    }
    return totals;
}

} // namespace

ExitStatus run_info(const InfoOptions& options) {
    const std::string name = options.file == "-" ? "standard input" : options.file;
    const auto input = read_input(options.file);
    if (const auto* error = std::get_if<std::error_code>(&input)) {
        std::cerr << "geomtool: cannot read " << name << ": " << error->message() << '\n';
        return status_failed;
    }

    const Coverage coverage = options.totals   ? Coverage::none
                              : options.values ? Coverage::values
                                               : Coverage::objects;
    const auto listing = options.json ? make_json_listing(std::cout, coverage)
                                      : make_text_listing(std::cout, coverage);
    const Totals totals = list_objects(std::get<std::vector<std::byte>>(input), *listing);
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
