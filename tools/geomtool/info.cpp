#include "tools/geomtool/info.h"

#include "geom_stream/record_reader.h"
#include "tools/geomtool/listing.h"
#include "tools/geomtool/summary.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <system_error>

namespace geomtool {

using geom_stream::RecordReader;

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};

/// The input of the command: a file or standard input.
class InputFile {
public:
    explicit InputFile(const std::string& name) {
        if (name != "-") {
            opened_.reset(std::fopen(name.c_str(), "rb"));
            file_ = opened_.get();
        }
        if (file_ == nullptr)
            keepError();
    }

    /// Stores up to `capacity` bytes and returns how many; 0 at the end and after an error.
    std::size_t read(std::byte* into, std::size_t capacity) {
        const std::size_t size = file_ == nullptr ? 0 : std::fread(into, 1, capacity, file_);
        if (size == 0 && file_ != nullptr && std::ferror(file_) != 0)
            keepError();
        return size;
    }

    /// The error of opening or reading the file, if there was one.
    const std::error_code& error() const { return error_; }

private:
    void keepError() { error_ = std::error_code(errno, std::generic_category()); }

    std::unique_ptr<std::FILE, FileCloser> opened_;
    std::FILE* file_ = stdin;
    std::error_code error_;
};

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
