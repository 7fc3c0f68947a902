#pragma once

#include "tools/vrmlexport/command_line.h"
#include "tools/vrmlexport/export_report.h"
#include "tools/vrmlexport/progress.h"
#include "vrml/scene.h"

#include <memory>

namespace vrmlexport {

/// The scene that the command line names, repaired and with the scenes that it names in their
/// places unless that is not wanted. Null if it cannot be read, which has been reported.
std::unique_ptr<meshcast::Scene> readInput(const CommandLine& line, ExportReport& report,
                                           Progress& progress);

} // namespace vrmlexport
