#include "tools/vrmltidy/preamble.h"
#include "tools/vrmltidy/scene.h"

#include <algorithm>

namespace meshcast::tidy {

/// Puts the scene that an inline node names in its place, or leaves the node as it is and says why.
void SceneTidier::replaceInline(const Frame& frame) {
    const std::string shown = "WWWInline " + quoted(inlineName_);
    const auto leave = [&](const std::string& why) {
        reporter_.note(cursor_.at, "left " + shown + " as it is: " + why);
    };
    if (inlineName_.empty()) {
        return;
    }
    auto opened = job_.options.inlines->open(inlineName_, path_);
    if (const auto* const why = std::get_if<std::string>(&opened)) {
        leave(*why);
        return;
    }
    auto& scene = std::get<InlineSource::Scene>(opened);
    auto& outer = job_.openScenes;
    if (std::find(outer.begin(), outer.end(), scene.identity) != outer.end()) {
        leave("the scene contains itself");
        return;
    }
    if (outer.size() >= kDeepestInline) {
        leave("scenes name one another to more than " + std::to_string(kDeepestInline) + " levels");
        return;
    }
    job_.inlinedBytes += scene.bytes.size();
    const Preamble preamble = prepare(scene.bytes);
    if (!preamble.refusal.empty()) {
        leave("it " + preamble.refusal);
        return;
    }
    if (job_.inlinedBytes > kMostInlinedBytes) {
        job_.refusal = "names scenes of more than " + std::to_string(kMostInlinedBytes) + " bytes";
        return;
    }
    reporter_.note(cursor_.at, "put " + scene.path + " in the place of " + shown);
    Reporter inner(scene.bytes, scene.path, job_.options.report, job_.repairs);
    for (const std::string& repair : preamble.repairs) {
        inner.repaired(scene.bytes.data(), repair);
    }
    const std::string_view body = std::string_view(scene.bytes).substr(preamble.headerSize);
    job_.mayStillRepeat += kLargestGrowth * body.size();
    ++job_.inlinedScenes;
    outer.push_back(scene.identity);
    text_.copyTo(cursor_.at);
    text_.cutTo(frame.classOffset);
    // What is in force behind an inline is what was in force before it.
    text_.setSource(body.data(), body.data() + body.size());
    text_.insert(body.data(), "Separator { ");
    ++job_.depth;
    SceneTidier(job_, body, scene.path, inner, this).run();
    --job_.depth;
    text_.setSource(cursor_.at, cursor_.end);
    text_.insert(cursor_.at, " }");
    outer.pop_back();
}

} // namespace meshcast::tidy
