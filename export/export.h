#pragma once

#include "evaluate/model.h"

#include <string>
#include <string_view>
#include <vector>

// Writes models in the formats that other programs open.

namespace meshcast::exporter {

/// A format, known by the extension of its files.
struct Format {
    std::string_view extension;   ///< Without a dot, in lower case: "glb".
    std::string_view description; ///< For the help of a program.
};

/// All formats that can be written, the most useful ones first.
const std::vector<Format>& formats();

/// The format whose files have that extension, upper and lower case being the same; null when
/// there is none.
const Format* findFormat(std::string_view extension);

struct Options {
    /// The name of the main file without its folder and extension. Files beside it are named after
    /// it, and it is the name of the scene in formats that have one.
    std::string name = "scene";
};

/// A file that is to be written.
struct File {
    std::string name; ///< Without a folder; empty for the main file, whose name the user chooses.
    std::string bytes;
};

/// What an export has made.
struct Exported {
    std::vector<File> files; ///< The main file, then those that it names.
    /// What the format cannot hold: lights and cameras, lines, textures and the like.
    std::vector<evaluate::Note> notes;
    std::string
        failure; ///< Why there are no files, as the end of a sentence; empty when there are.
};

/// Writes a model into memory. A model without instances gives a valid file with nothing in it
/// where the format knows such files. The model is used up: its memory is given back as soon as
/// what it held is written. Throws nothing but std::bad_alloc.
Exported exportModel(evaluate::Model&& model, const Format& format, const Options& options);

} // namespace meshcast::exporter
