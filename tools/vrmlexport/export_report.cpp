#include "tools/vrmlexport/export_report.h"

#include "evaluate/bounds.h"
#include "evaluate/utf8.h"
#include "io/files.h"
#include "tidy/report.h"
#include "tools/export_output/export_output.h"

#include <algorithm>
#include <iostream>
#include <string_view>
#include <system_error>

namespace vrmlexport {

using meshcast::evaluate::Instance;
using meshcast::evaluate::Model;
using meshcast::evaluate::Note;
using meshcast::evaluate::Primitive;
using meshcast::evaluate::Topology;
using meshcast::evaluate::toUtf8;
using meshcast::exporter::JsonWriter;

namespace {

void addPrimitive(ModelCounts& counts, const Model& model, const Primitive& primitive) {
    switch (model.geometries[primitive.geometry].topology) {
    case Topology::kTriangles:
        counts.triangles += primitive.indexCount / 3;
        break;
    case Topology::kLines:
        counts.lines += primitive.indexCount / 2;
        break;
    case Topology::kPoints:
        counts.points += primitive.indexCount;
        break;
    }
}

void writeCounts(JsonWriter& json, const ModelCounts& counts) {
    json.key("counts").beginObject();
    json.member("meshes", counts.meshes).member("instances", counts.instances);
    json.member("vertices", counts.vertices)
        .member("triangles", counts.triangles)
        .member("lines", counts.lines);
    json.member("points", counts.points).member("materials", counts.materials);
    json.member("images", counts.images).member("cameras", counts.cameras);
    json.member("lights", counts.lights).endObject();
    if (counts.bounds) {
        json.key("bounds").beginObject();
        json.list("min", (*counts.bounds)[0]).list("max", (*counts.bounds)[1]).endObject();
    }
}

} // namespace

ModelCounts countsOf(const Model& model) {
    ModelCounts counts;
    counts.meshes = model.meshes.size();
    counts.instances = model.instances.size();
    counts.materials = model.materials.size();
    counts.images = model.images.size();
    counts.cameras = model.cameras.size();
    counts.lights = model.lights.size();
    for (const Instance& instance : model.instances) {
        const Primitive* last = nullptr;
        for (const Primitive& primitive : model.meshes[instance.mesh].primitives) {
            addPrimitive(counts, model, primitive);
            // Primitives of one geometry follow each other and share its vertices.
            if (last == nullptr || last->geometry != primitive.geometry) {
                counts.vertices += model.geometries[primitive.geometry].positions.size();
            }
            last = &primitive;
        }
    }
    counts.bounds = meshcast::evaluate::boundsOf(model);
    return counts;
}

void ExportReport::add(const meshcast::tidy::Message& repair) {
    lines_.add(repair);
    if (keeps()) {
        repairs_.push_back({std::string(repair.file), repair.line, std::string(repair.what)});
    }
}

void ExportReport::addRepairCount(std::size_t count) {
    lines_.addCount(meshcast::shownName(line_.scene), count);
}

void ExportReport::Messages::report(const meshcast::Diagnostic& diagnostic) {
    std::string text = meshcast::messageText(diagnostic);
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    report_.lines_.add(meshcast::shownName(report_.line_.scene), text);
    if (report_.keeps()) {
        report_.texts_.push_back(std::move(text));
    }
}

void ExportReport::addNotes(const std::vector<Note>& notes) {
    for (const Note& note : notes) {
        const std::string where = note.where.empty() ? "" : note.where + ": ";
        lines_.add(meshcast::shownName(line_.scene), where + note.text);
    }
    lines_.flush();
    if (keeps()) {
        notes_.insert(notes_.end(), notes.begin(), notes.end());
    }
}

void ExportReport::fail(const std::string& reason) {
    lines_.flush();
    failure_ = meshcast::tidy::printable(reason);
    std::cerr << "vrmlexport: " << failure_ << '\n';
}

void ExportReport::writeLists(JsonWriter& json) const {
    json.key("repairs").beginArray();
    for (const Repair& repair : repairs_) {
        json.beginObject().member("file", toUtf8(repair.file)).member("line", repair.line);
        json.member("text", toUtf8(repair.what)).endObject();
    }
    json.endArray().key("messages").beginArray();
    for (const std::string& message : texts_) {
        json.value(toUtf8(message));
    }
    json.endArray();
    meshcast::writeNotes(json, notes_);
}

std::string ExportReport::pageJson() const {
    std::string text;
    JsonWriter json(text);
    json.beginObject();
    writeLists(json);
    json.endObject();
    return text;
}

std::string ExportReport::json() const {
    std::string text;
    JsonWriter json(text);
    json.breakLinesTo(2);
    json.beginObject();
    json.member("scene", toUtf8(line_.scene)).member("output", toUtf8(line_.output));
    json.member("format", line_.format->extension).member("written", failure_.empty());
    if (!failure_.empty()) {
        json.member("failure", toUtf8(failure_));
    }
    writeLists(json);
    if (counts_) {
        writeCounts(json, *counts_);
    }
    json.endObject();
    return text + "\n";
}

bool ExportReport::write() {
    if (line_.report.empty()) {
        return true;
    }
    const std::error_code error = meshcast::writeOutput(line_.report, [this](int descriptor) {
        return meshcast::io::writeAll(descriptor, json());
    });
    if (error) {
        fail(line_.report + ": cannot be written: " + error.message());
    }
    return !error;
}

} // namespace vrmlexport
