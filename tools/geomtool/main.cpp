#include "tools/geomtool/info_command.h"

// Builds without scene evaluation have no exporters either.
#ifdef GEOMTOOL_EXPORTS
#include "tools/export_output/export_output.h"
#include "tools/geomtool/export_command.h"
#endif

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <string>
#include <variant>

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

#ifdef GEOMTOOL_EXPORTS
    geomtool::ExportOptions exporting;
    std::string format;
    CLI::App* exports = app.add_subcommand("export", "Write the objects in another format");
    exports->add_option("STREAM", exporting.stream, "The stream; standard input when -")
        ->required();
    exports
        ->add_option("OUTPUT", exporting.output,
                     "The file to write, replaced atomically; standard output when -")
        ->required();
    exports->add_option("--format", format,
                        "Write this format, regardless of the extension of OUTPUT");
    exports->footer("The extension of OUTPUT, or --format, selects the format:\n" +
                    meshcast::formatsHelp());
#endif

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Also reached for --help and --version, with status 0.
        return app.exit(error) == 0 ? geomtool::kStatusSound : geomtool::kStatusFailed;
    }
#ifdef GEOMTOOL_EXPORTS
    if (exports->parsed()) {
        const auto chosen = meshcast::chooseFormat(format, exporting.output);
        if (const auto* const problem = std::get_if<std::string>(&chosen)) {
            std::cerr << "geomtool: " << *problem << '\n';
            return geomtool::kStatusFailed;
        }
        exporting.format = std::get<0>(chosen);
        return geomtool::runExport(exporting);
    }
#endif
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
