#pragma once

#include "export/export.h"
#include "tools/geomtool/info_command.h"

#include <string>

namespace geomtool {

struct ExportOptions {
    std::string stream; ///< A file, or "-" for standard input.
    std::string output; ///< A file, or "-" for standard output.
    const meshcast::exporter::Format* format = nullptr;
};

/// Writes the objects of a stream in another format, each in its own coordinate system. Reports
/// errors on standard error. Of a damaged stream, writes the objects before the damaged record.
ExitStatus runExport(const ExportOptions& options);

} // namespace geomtool
