#pragma once

#include "export/export.h"
#include "export/json_writer.h"

#include <string>
#include <variant>
#include <vector>

// What programs that export have in common: the choice of a format, and the files.

namespace meshcast {

/// A list of all formats for the help of a program, a line each.
std::string formatsHelp();

/// The format called `name` or, without a name, of the extension of the output's file; or why there
/// is none, as a sentence.
std::variant<const exporter::Format*, std::string> chooseFormat(const std::string& name,
                                                                const std::string& output);

/// The name of the output's file without its folder and extension.
std::string stemOf(const std::string& output);

/// Appends a member "notes" to an object: the kind, text and place of each note.
void writeNotes(exporter::JsonWriter& json, const std::vector<evaluate::Note>& notes);

/// Writes the files of an export: the main one under the name `output`, or to standard output for
/// "-", and the others in the same folder. Each is replaced atomically, the main one last, so that
/// the files that it refers to are complete. Returns an error as FILE: WHAT, or an empty text.
std::string writeExported(const exporter::Exported& exported, const std::string& output);

} // namespace meshcast
