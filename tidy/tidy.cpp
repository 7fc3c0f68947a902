#include "tidy/tidy.h"

#include "tidy/inflate.h"
#include "tidy/parse.h"
#include "tidy/preamble.h"
#include "vrml/characters.h"

#include <algorithm>
#include <utility>

namespace meshcast::tidy {

Source::Source(Job& sourceJob, std::string_view wholeFile, std::string_view scene,
               const std::string& filePath, Source* parentSource)
    : job(sourceJob), file(wholeFile), body(scene), path(filePath), parent(parentSource),
      lines(wholeFile), mayStillCompare(16 * std::uint64_t(scene.size())) {
    bracesMatch = [this, known = std::optional<bool>()]() mutable {
        known = known ? *known : tidy::bracesMatch(body);
        return *known;
    };
    onDropped = [this](const StringToken& name, const char* definition) {
        Definition& known = names[name.nodeName()];
        // A definition that was written elsewhere stays valid when this text is dropped.
        if (!known.isWritten || known.source != definition) {
            known = {};
            known.source = definition;
        }
    };
}

bool Source::isTaken(std::string_view name) const {
    return names.find(name) != names.end() || (parent != nullptr && parent->isTaken(name));
}

std::string Source::nameToWrite(const std::string& name) const {
    if (parent == nullptr || !parent->isTaken(name)) {
        return {};
    }
    if (const auto known = names.find(name); known != names.end() && known->second.isWritten) {
        return known->second.writtenName;
    }
    std::string written = name;
    std::replace_if(
        written.begin(), written.end(), [](char c) { return !isNameCharacter(c); }, '_');
    written.append("_").append(std::to_string(job.inlinedScenes));
    while (isTaken(written)) {
        written += '_';
    }
    return written;
}

Parse::Parse(Source& parsedSource, std::string_view text, std::string_view editedText)
    : source(parsedSource), job(parsedSource.job), edited(editedText), lexer(text),
      edits(editedText, parsedSource.job.store), at(text.data()) {
    static const NodeClass kNoClass;
    OpenNode node;
    node.kind = OpenNode::Kind::kTop;
    node.isInFields = false;
    node.info = &kNoClass;
    open.push_back(node);
}

std::vector<Edit> takeEditsFrom(Parse& parse, const char* at) {
    const auto offset = static_cast<std::size_t>(at - parse.edited.data());
    const auto& edits = parse.edits.edits();
    std::size_t count = edits.size();
    while (count != 0 && edits[count - 1].offset >= offset) {
        --count;
    }
    return parse.edits.takeSince(count);
}

namespace {

/// Reports the messages of the edits and counts the repairs.
std::size_t report(const std::vector<Edit>& edits, Source& source, const Options& options) {
    std::size_t repairs = 0;
    std::size_t untold = 0;
    for (const Edit& edit : edits) {
        repairs += edit.isRepair ? 1 : 0;
        untold += edit.isRepair && edit.message.empty() ? 1 : 0;
        if (!edit.message.empty()) {
            const std::size_t line = edit.line != 0 ? edit.line : source.lines.lineAt(edit.offset);
            options.report(
                {printable(edit.file == nullptr ? options.path : *edit.file), line, edit.message});
        }
    }
    if (untold != 0) {
        options.report({printable(options.path), source.lines.lineAt(source.file.size()),
                        counted(untold, "more repair") + " not listed"});
    }
    return repairs;
}

/// Maps offsets of the edited text to offsets of the original text.
class OriginalPlaces {
public:
    explicit OriginalPlaces(const std::vector<Edit>& edits) : edits_(edits) {}

    /// The offsets must be passed in increasing order.
    std::size_t of(std::size_t edited) {
        while (next_ < edits_.size() && edits_[next_].offset + grown_ < edited) {
            const Edit& edit = edits_[next_++];
            const std::size_t end = edit.offset + edit.replacement.size() + grown_;
            if (edited < end) {
                return edit.offset;
            }
            // All of this is computed modulo 2^64.
            grown_ += edit.replacement.size() - edit.length;
        }
        return edited - grown_;
    }

private:
    const std::vector<Edit>& edits_;
    std::size_t next_ = 0;
    std::size_t grown_ = 0;
};

/// Parses a repaired text once more, without inlining. In damaged text it is not always known which
/// coordinates a point set uses, for example when `whichChild` comes after the children of its
/// Switch. Reports with line numbers of the original text. False when nothing changed.
bool tidyAgain(std::string& text, const std::vector<Edit>& before, Source& source,
               const Options& options, std::size_t& repairs) {
    Options inPlace = options;
    inPlace.inlines = nullptr;
    Job job(inPlace);
    job.mayStillRepeat = kLargestGrowth * text.size();
    job.openScenes.push_back(options.identity);
    const Preamble preamble = prepare(text);
    const std::string_view whole = text;
    Source repaired(job, whole, whole.substr(preamble.headerSize), options.path, nullptr);
    Parse parse(repaired, repaired.body, whole);
    parseText(parse);
    std::vector<Edit> edits = parse.edits.finish();
    const bool isEdited = std::any_of(edits.begin(), edits.end(),
                                      [](const Edit& edit) { return edit.changesText(); });
    if (!isEdited || !job.refusal.empty()) {
        return false;
    }
    OriginalPlaces places(before);
    std::string result = applyEdits(whole, edits);
    for (Edit& edit : edits) {
        edit.offset = std::min(places.of(edit.offset), source.file.size());
        edit.line = 0;
    }
    repairs += report(edits, source, options);
    text = std::move(result);
    return true;
}

} // namespace

Result tidy(std::string bytes, const Options& options) {
    Job job(options);
    std::vector<std::string> repairs;
    if (isCompressed(bytes)) {
        repairs.emplace_back("inflated gzip-compressed data");
        job.refusal = inflate(bytes, mostInflated(bytes.size()));
    } else if (bytes.size() > kLargestScene) {
        job.refusal = "is longer than " + std::to_string(kLargestScene) + " bytes";
    }
    Preamble preamble;
    if (job.refusal.empty()) {
        preamble = prepare(bytes);
        job.refusal = preamble.refusal;
    }
    repairs.insert(repairs.end(), preamble.repairs.begin(), preamble.repairs.end());

    const std::string_view text = bytes;
    Source source(job, text, text.substr(preamble.headerSize), options.path, nullptr);
    Parse parse(source, source.body, text);
    const std::string header = preamble.hasHeader         ? ""
                               : preamble.headerSize == 0 ? std::string(kHeader).append("\n")
                                                          : std::string(kHeader);
    for (const std::string& repair : repairs) {
        parse.edits.insert(text.data(), "", repair);
    }
    if (!header.empty() && job.refusal.empty()) {
        parse.edits.replace(text.data(), source.body.data(), header);
    }
    if (job.refusal.empty()) {
        job.mayStillRepeat = kLargestGrowth * bytes.size();
        job.openScenes.push_back(options.identity);
        parseText(parse);
    }
    const std::vector<Edit> edits = parse.edits.finish();
    Result result;
    result.repairs = report(edits, source, options);
    result.refusal = job.refusal;
    if (result.refusal.empty()) {
        const bool isEdited = std::any_of(edits.begin(), edits.end(),
                                          [](const Edit& edit) { return edit.changesText(); });
        if (!isEdited) {
            result.text = std::move(bytes);
        } else {
            result.text = applyEdits(text, edits);
            if (job.hasOpenPoints) {
                tidyAgain(*result.text, edits, source, options, result.repairs);
            }
        }
    }
    return result;
}

} // namespace meshcast::tidy
