#pragma once

#include "evaluate/model.h"
#include "export/json_writer.h"
#include "tidy/tidy.h"
#include "tools/scene_file/scene_file.h"
#include "tools/vrmlexport/command_line.h"
#include "vrml/diagnostics.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vrmlexport {

/// The numbers of things in a model. A mesh counts once for each instance.
struct ModelCounts {
    std::uint64_t meshes = 0, instances = 0, materials = 0, images = 0, cameras = 0, lights = 0;
    std::uint64_t vertices = 0, triangles = 0, lines = 0, points = 0;
    /// The bounding box of all instances; none without instances.
    std::optional<std::array<meshcast::evaluate::Vec3, 2>> bounds;
};

ModelCounts countsOf(const meshcast::evaluate::Model& model);

/// Reports what happens to a scene on standard error, and collects it for a report as JSON.
class ExportReport {
public:
    explicit ExportReport(const CommandLine& line)
        : line_(line), lines_(line.isQuiet), messages_(*this) {}

    /// Adds a repair of the scene, or the number of all repairs.
    void add(const meshcast::tidy::Message& repair);
    void addRepairCount(std::size_t count);
    /// The receiver of messages of the reader and the walk.
    meshcast::Diagnostics& messages() { return messages_; }
    /// Adds notes about what the model or the format cannot show like the scene.
    void addNotes(const std::vector<meshcast::evaluate::Note>& notes);
    void addCounts(const ModelCounts& counts) { counts_ = counts; }
    /// Adds the reason why nothing is written, as FILE: WHAT. Printed even with --quiet.
    void fail(const std::string& reason);

    /// The repairs, messages and notes that a page shows, as a JSON object.
    std::string pageJson() const;
    /// Writes the JSON file if one was asked for. On failure, prints a message and returns false.
    bool write();

private:
    struct Repair {
        std::string file;
        std::size_t line;
        std::string what;
    };
    class Messages final : public meshcast::Diagnostics {
    public:
        explicit Messages(ExportReport& report) : report_(report) {}
        void report(const meshcast::Diagnostic& diagnostic) override;

    private:
        ExportReport& report_;
    };

    std::string json() const;
    void writeLists(meshcast::exporter::JsonWriter& json) const;
    bool keeps() const { return !line_.report.empty() || line_.format->extension == "html"; }

    const CommandLine& line_;
    meshcast::ReportLines lines_;
    Messages messages_;
    std::vector<Repair> repairs_;
    std::vector<std::string> texts_; ///< Of the messages.
    std::vector<meshcast::evaluate::Note> notes_;
    std::optional<ModelCounts> counts_;
    std::string failure_;
};

} // namespace vrmlexport
