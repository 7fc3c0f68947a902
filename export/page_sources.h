#pragma once

#include <string_view>

// The files of export/page, which every page contains.

namespace meshcast::exporter {

extern const std::string_view kPageStyle;
extern const std::string_view kPageBody;
extern const std::string_view kPageScript;

} // namespace meshcast::exporter
