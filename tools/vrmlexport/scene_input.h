#pragma once

#include "tools/vrmlexport/command_line.h"
#include "tools/vrmlexport/export_report.h"
#include "tools/vrmlexport/progress.h"
#include "vrml/scene.h"

#include <memory>

namespace vrmlexport {

/// Reads the scene of the command line, repairs it, and replaces WWWInline nodes by the scenes that
/// they name, as the options say. Null, with a report, if it cannot be read.
std::unique_ptr<meshcast::Scene> readInput(const CommandLine& line, ExportReport& report,
                                           Progress& progress);

} // namespace vrmlexport
