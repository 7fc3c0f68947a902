#include "tools/vrmltidy/tidy.h"

#include "tools/vrmltidy/preamble.h"
#include "tools/vrmltidy/reporter.h"
#include "tools/vrmltidy/scene.h"

#include <utility>

namespace meshcast::tidy {

Result tidy(std::string bytes, const Options& options) {
    Job job(options);
    const Preamble preamble = prepare(bytes);
    Reporter reporter(bytes, options.path, options.report, job.repairs);
    for (const std::string& repair : preamble.repairs) {
        reporter.repaired(bytes.data(), repair);
    }
    if (!preamble.refusal.empty()) {
        return {std::nullopt, preamble.refusal, job.repairs};
    }
    const std::string_view text = bytes;
    job.text.setSource(text.data(), text.data() + text.size());
    if (preamble.headerSize == 0) {
        job.text.insert(text.data(), std::string(kHeader).append("\n"));
    } else if (!preamble.hasHeader) {
        job.text.replace(text.substr(0, preamble.headerSize), kHeader);
    }
    job.mayStillRepeat = kLargestGrowth * bytes.size();
    job.openScenes.push_back(options.identity);
    SceneTidier(job, text.substr(preamble.headerSize), options.path, reporter, nullptr).run();
    if (!job.refusal.empty()) {
        return {std::nullopt, job.refusal, job.repairs};
    }
    return {job.text.isEdited() ? job.text.take() : std::move(bytes), {}, job.repairs};
}

} // namespace meshcast::tidy
