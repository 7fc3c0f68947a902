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

/// The format whose files have that extension, upper and lower case being the same; null when
/// there is none.
const Format* findFormat(std::string_view extension);

struct Options {
    /// The name of the main file without its folder and extension. Files beside it are named after
    /// it, and it is the name of the scene in formats that have one.
    std::string name = "scene";
    /// How large the picture of a "png" file is, and from where it is taken.
    render::PictureOptions picture = {};
    /// What an "html" page tells of how the scene was repaired and what was left out: JSON, as in
    /// the report of vrmlexport. Called when the page is written. The page tells nothing without
    /// it.
    std::function<std::string()> report = {};
};

/// Where the bytes of a file go.
class ByteSink {
public:
    ByteSink() = default;
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;
    virtual ~ByteSink() = default;

    /// Takes the next bytes, of any number; many calls with few bytes are cheap. What goes wrong
    /// is the sink's to remember and tell.
    virtual void write(std::string_view bytes) = 0;
};

/// A file that is to be written.
struct File {
    std::string name; ///< Without a folder; empty for the main file, whose name the user chooses.
    /// Writes its bytes: once only, since it gives back the memory of what has been written.
    std::function<void(ByteSink& sink)> write;
};

/// What an export has made.
struct Exported {
    std::vector<File> files; ///< The main file, then those that it names.
    /// What the format cannot hold: lights and cameras, lines, textures and the like.
    std::vector<evaluate::Note> notes;
    std::string
        failure; ///< Why there are no files, as the end of a sentence; empty when there are.
};

/// Makes the files of a model. A model without instances gives a valid file with nothing in it
/// where the format knows such files. Neither this nor writing the files throws anything but
/// std::bad_alloc.
Exported exportModel(evaluate::Model&& model, const Format& format, const Options& options);

} // namespace meshcast::exporter

#pragma GCC visibility pop
