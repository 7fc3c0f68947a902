#include "tools/geomtool/export_command.h"

#include "geom_stream/record_reader.h"
#include "tools/export_output/export_output.h"
#include "tools/geomtool/input_file.h"
#include "tools/geomtool/stream_model.h"

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <optional>
#include <utility>
#include <vector>

namespace geomtool {

namespace {

using meshcast::evaluate::Note;

ExitStatus fail(const std::string& message) {
    std::cerr << "geomtool: " << message << '\n';
    return kStatusFailed;
}

} // namespace

ExitStatus runExport(const ExportOptions& options) {
    const std::string name = options.stream == "-" ? "standard input" : options.stream;
    InputFile input(options.stream);
    geom_stream::RecordReader reader(
        [&input](std::byte* into, std::size_t capacity) { return input.read(into, capacity); });
    StreamModel objects;
    std::uint64_t number = 0;
    while (const std::optional<geom_stream::Object> object = reader.next()) {
        objects.add(++number, *object);
    }
    if (input.error()) {
        return fail("cannot read " + name + ": " + input.error().message());
    }
    meshcast::evaluate::Model model = objects.finish();
    std::vector<Note> notes = std::move(model.notes);
    const auto report = [&notes] {
        std::string text;
        meshcast::exporter::JsonWriter json(text);
        json.beginObject();
        meshcast::writeNotes(json, notes);
        json.endObject();
        return text;
    };
    const meshcast::exporter::Exported exported = meshcast::exporter::exportModel(
        std::move(model), *options.format, {meshcast::stemOf(options.output), {}, report});
    notes.insert(notes.end(), exported.notes.begin(), exported.notes.end());
    for (const Note& note : notes) {
        std::cerr << name << ": " << note.text << '\n';
    }
    if (!exported.failure.empty()) {
        return fail(options.output + ": cannot be written: " + exported.failure);
    }
    if (const std::string failure = meshcast::writeExported(exported, options.output);
        !failure.empty()) {
        return fail(failure);
    }
    if (reader.error()) {
        std::cerr << "geomtool: " << name << ": offset " << reader.error()->offset << ": "
                  << reader.error()->message << '\n';
        return kStatusBroken;
    }
    return kStatusSound;
}

} // namespace geomtool
