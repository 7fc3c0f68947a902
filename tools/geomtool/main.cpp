#include "tools/geomtool/info.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

namespace {

int run(int argc, char** argv) {
    CLI::App app("Lists the contents of GEOM streams.", "geomtool");
    app.set_version_flag("--version", "geomtool " GEOMTOOL_VERSION);
    app.require_subcommand(1);
    app.footer(
        "Exit status: 0 valid stream, 1 damaged stream, 2 wrong usage or failed input or output.");

    geomtool::InfoOptions options;
    CLI::App* info = app.add_subcommand("info", "List the objects of a stream");
    info->add_option("FILE", options.file, "The stream; standard input when absent or -");
    info->add_flag("--json", options.json, "Print one JSON document instead of lines");
    info->add_flag("--totals", options.totals, "Print only sums over all objects");
    info->add_flag("--values", options.values, "Also print the elements of every array")
        ->excludes("--totals");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Also reached for --help and --version, with status 0.
        return app.exit(error) == 0 ? geomtool::kStatusSound : geomtool::kStatusFailed;
    }
    return geomtool::runInfo(options);
}

} // namespace

int main(int argc, char** argv) {
    try {
        std::ios::sync_with_stdio(false);
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "geomtool: " << error.what() << '\n';
        return geomtool::kStatusFailed;
    }
}
