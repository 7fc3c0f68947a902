#include "tools/export_output/export_output.h"

#include "evaluate/utf8.h"
#include "io/files.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace meshcast {

using evaluate::Note;

namespace {

/// Writes an exported file to a descriptor, in large pieces.
class DescriptorSink final : public exporter::ByteSink {
public:
    explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {
        pending_.reserve(kPieceSize);
    }

    void write(std::string_view bytes) override {
        if (pending_.size() + bytes.size() > kPieceSize) {
            flush();
        }
        if (bytes.size() > kPieceSize) {
            writeNow(bytes);
        } else {
            pending_.append(bytes);
        }
    }
    /// Writes what is still pending, and tells whether anything went wrong.
    std::error_code flush() {
        writeNow(pending_);
        pending_.clear();
        return error_;
    }

private:
    static constexpr std::size_t kPieceSize = std::size_t(256) * 1024;

    void writeNow(std::string_view bytes) {
        if (!error_) {
            error_ = io::writeAll(descriptor_, bytes);
        }
    }

    int descriptor_;
    std::string pending_;
    std::error_code error_;
};

std::string_view kindName(Note::Kind kind) {
    switch (kind) {
    case Note::Kind::kDropped:
        return "dropped";
    case Note::Kind::kMissing:
        return "missing";
    case Note::Kind::kApproximated:
        return "approximated";
    case Note::Kind::kUnsupported:
        return "unsupported";
    case Note::Kind::kLimit:
        return "limit";
    }
    return "";
}

} // namespace

std::string formatsHelp() {
    std::string text;
    for (const exporter::Format& format : exporter::formats()) {
        text.append("  ").append(format.extension);
        text.append(format.extension.size() < 6 ? 6 - format.extension.size() : 1, ' ');
        text.append(format.description).append("\n");
    }
    return text;
}

std::variant<const exporter::Format*, std::string> chooseFormat(const std::string& name,
                                                                const std::string& output) {
    std::string extension = name;
    if (name.empty() && output != "-") {
        extension = std::filesystem::path(output).extension().string();
        extension.erase(0, 1);
    }
    if (const exporter::Format* const format = exporter::findFormat(extension)) {
        return format;
    }
    return extension.empty()
               ? "OUTPUT does not say which format to write; use --format"
               : "\"" + extension + "\" is not a format that can be written; see --help";
}

std::string stemOf(const std::string& output) {
    const std::string stem = std::filesystem::path(output).stem().string();
    return output == "-" || stem.empty() ? "scene" : stem;
}

void writeNotes(exporter::JsonWriter& json, const std::vector<Note>& notes) {
    json.key("notes").beginArray();
    for (const Note& note : notes) {
        json.beginObject().member("kind", kindName(note.kind));
        json.member("text", evaluate::toUtf8(note.text));
        json.member("where", evaluate::toUtf8(note.where)).endObject();
    }
    json.endArray();
}

std::string writeExported(const exporter::Exported& exported, const std::string& output) {
    if (output == "-" && exported.files.size() > 1) {
        return "standard output: cannot take the several files of this format";
    }
    const std::filesystem::path folder = std::filesystem::path(output).parent_path();
    for (std::size_t i = exported.files.size(); i-- > 0;) {
        const exporter::File& file = exported.files[i];
        const auto write = [&file](int descriptor) {
            DescriptorSink sink(descriptor);
            file.write(sink);
            return sink.flush();
        };
        const std::string name = file.name.empty() ? output : (folder / file.name).string();
        const std::error_code error =
            name == "-" ? io::writeStandardOutput(write) : io::writeFile(name, write);
        if (error) {
            return (name == "-" ? "standard output" : name) +
                   ": cannot be written: " + error.message();
        }
    }
    return {};
}

} // namespace meshcast
