#include "tidy/parse.h"
#include "tidy/preamble.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace meshcast::tidy {

namespace {

/// Why an inline node is kept regardless of the file it names; empty when there is no such reason.
std::string reasonToStay(const Job& job, const std::string& name) {
    if (job.inlinesTried >= kMostInlines) {
        return "the scene has more than " + std::to_string(kMostInlines) + " inlined scenes";
    }
    if (name.find('\0') != std::string::npos) {
        return "its name holds a zero byte";
    }
    if (job.openScenes.size() >= kDeepestInline) {
        return "inlined scenes are nested deeper than " + std::to_string(kDeepestInline) +
               " levels";
    }
    return {};
}

/// Makes the messages of an inlined scene's edits point to its file.
void locate(Source& source, std::vector<Edit>& edits) {
    const std::string* const file = &*source.job.files.emplace(source.path).first;
    for (Edit& edit : edits) {
        if (edit.file == nullptr) {
            edit.file = file;
            edit.line =
                edit.line != 0 ? edit.line : source.lineOf(source.body.data() + edit.offset);
        }
    }
}

/// The folder of an inlined scene, relative to that of the outermost scene; empty when it is the
/// same.
std::filesystem::path folderFromOutside(const Source& source) {
    const auto folderOf = [](const std::string& file) {
        const std::filesystem::path folder = std::filesystem::path(file).parent_path();
        return (folder.empty() ? "." : folder).lexically_normal();
    };
    const std::filesystem::path folder =
        folderOf(source.path).lexically_relative(folderOf(source.job.options.path));
    return folder == "." ? std::filesystem::path() : folder;
}

} // namespace

std::string imageNameFromOutside(const Source& source, std::string_view value) {
    const std::string name = StringToken{value, value.starts_with('"'), true}.value();
    // Absolute names and addresses mean the same everywhere. A name that ends in a backslash cannot
    // be quoted.
    if (source.parent == nullptr || name.empty() || name.front() == '/' || name.front() == '\\' ||
        name.back() == '\\' || name.find_first_of(":\"") != std::string::npos) {
        return {};
    }
    const std::filesystem::path folder = folderFromOutside(source);
    return folder.empty() ? "" : '"' + (folder / name).string() + '"';
}

void replaceInline(Parse& parse, const OpenNode& node) {
    Job& job = parse.job;
    const std::string name = parse.leaf.inlineName;
    const std::uint32_t line = parse.source.lineOf(node.classBegin);
    const std::string shown = "WWWInline " + tidy::quoted(name);
    const auto leave = [&](const std::string& why) {
        const std::string message = "left " + shown + " as it is: " + why;
        parse.edits.quote(parse.at, {remark(job.store.keepMessage(message), line)});
    };
    if (name.empty()) {
        return;
    }
    if (const std::string why = reasonToStay(job, name); !why.empty()) {
        leave(why);
        return;
    }
    ++job.inlinesTried;
    const auto scene = job.options.inlines->open(name, parse.source.path);
    auto& outer = job.openScenes;
    if (!scene->failure.empty()) {
        leave(scene->failure);
        return;
    }
    if (std::find(outer.begin(), outer.end(), scene->identity) != outer.end()) {
        leave("the scene contains itself");
        return;
    }
    const std::string tooMuch =
        "the inlined scenes exceed " + std::to_string(kMostInlinedBytes) + " bytes";
    if (scene->bytes.size() > kMostInlinedBytes - job.bytesPut) {
        leave(tooMuch);
        return;
    }
    job.bytesPut += scene->bytes.size();
    std::string bytes = scene->bytes;
    const Preamble preamble = prepare(bytes);
    if (!preamble.refusal.empty()) {
        leave("it " + preamble.refusal);
        return;
    }
    const std::string_view body = std::string_view(bytes).substr(preamble.headerSize);
    Source inner(job, bytes, body, scene->path, &parse.source);
    ++job.inlinedScenes;
    ++job.depth; // For the Separator, which keeps the scene from changing the state after it.
    outer.push_back(scene->identity);
    const Coordinates inForce = job.coordinates;
    Parse child(inner, body, body);
    if (!scene->repair.empty()) {
        child.edits.insert(body.data(), "", scene->repair);
    }
    for (const std::string& repair : preamble.repairs) {
        child.edits.insert(body.data(), "", repair);
    }
    parseText(child);
    job.coordinates = inForce;
    outer.pop_back();
    --job.depth;
    if (!job.refusal.empty()) {
        return;
    }
    std::vector<Edit> edits = child.edits.finish();
    const std::size_t length = editedLength(body, edits);
    if (length > kMostInlinedBytes - job.bytesPut) {
        leave(tooMuch);
        return;
    }
    job.bytesPut += length;
    locate(inner, edits);
    std::vector<Edit> before = takeEditsFrom(parse, node.classBegin);
    parse.edits.replace(node.classBegin, parse.at,
                        job.store.take("Separator { " + applyEdits(body, edits) + " }"));
    parse.edits.quote(parse.at, before);
    const std::string put = "replaced " + shown + " by " + printable(scene->path);
    parse.edits.quote(parse.at, {remark(job.store.keepMessage(put), line)});
    parse.edits.quote(parse.at, edits);
}

} // namespace meshcast::tidy
