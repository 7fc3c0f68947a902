#pragma once

#include "evaluate/model.h"
#include "render/picture.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default)

// Writes models in the formats that other programs open.

namespace meshcast::exporter {

/// A format, known by the extension of its files.
struct Format {
    std::string_view extension;   ///< Without a dot, in lower case: "glb".
    std::string_view description; ///< For the help of a program.
};

/// All formats that can be written, the most useful ones first.
const std::vector<Format>& formats();

/// The format whose files have that extension, in upper or lower case; null if there is none.
const Format* findFormat(std::string_view extension);

struct Options {
    /// The name of the main file without its folder and extension. Other files are named after it,
    /// and so is the scene in formats that have names for scenes.
    std::string name = "scene";
    /// The size, view and background of a "png" file.
    render::PictureOptions picture = {};
    /// Returns the report that an "html" page shows (repairs, and what was left out), in the JSON
    /// of vrmlexport's --report. Called when the page is written. Without it the page has no
    /// report.
    std::function<std::string()> report = {};
};

/// Receives the bytes of a file.
class ByteSink {
public:
    ByteSink() = default;
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;
    virtual ~ByteSink() = default;

    /// Takes the next bytes, any number of them. Writers make many calls with few bytes, so a sink
    /// should buffer. A sink must remember its errors, since writers do not check for any.
    virtual void write(std::string_view bytes) = 0;
};

/// A file that is to be written.
struct File {
    std::string name; ///< Without a folder. Empty for the main file: the caller chooses its name.
    /// Writes its bytes. May be called only once, since it frees what has been written.
    std::function<void(ByteSink& sink)> write;
};

/// The result of an export.
struct Exported {
    std::vector<File> files; ///< The main file, then those that it refers to.
    /// What the format cannot hold: lights and cameras, lines, textures and the like.
    std::vector<evaluate::Note> notes;
    std::string
        failure; ///< Why there are no files, as the end of a sentence; empty when there are.
};

/// Makes the files of a model. A model without instances gives a valid empty file if the format
/// allows that. Neither this nor writing the files throws anything but std::bad_alloc.
Exported exportModel(evaluate::Model&& model, const Format& format, const Options& options);

} // namespace meshcast::exporter

#pragma GCC visibility pop
