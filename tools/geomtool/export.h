#pragma once

#include "export/export.h"
#include "tools/geomtool/info.h"

#include <string>

namespace geomtool {

struct ExportOptions {
    std::string stream; ///< A file, or "-" for standard input.
    std::string output; ///< A file, or "-" for standard output.
    const meshcast::exporter::Format* format = nullptr;
};

/// Writes the objects of a stream, each in its own space, in another format; what is wrong goes to
/// standard error. Of a broken stream, the objects before the record that breaks it are written.
ExitStatus runExport(const ExportOptions& options);

} // namespace geomtool
