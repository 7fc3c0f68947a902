#include "evaluate/utf8.h"
#include "export/base64_sink.h"
#include "export/json_writer.h"
#include "export/page_sources.h"
#include "export/writers.h"
#include "io/files.h"

#include <algorithm>
#include <array>
#include <memory>
#include <sodium/crypto_hash_sha256.h>
#include <system_error>
#include <utility>
#include <variant>

// A page is one file with a style sheet, three.js, the page's own script, the scene as GLB and the
// report. Its content security policy (W3C, Content Security Policy Level 3) names the scripts by
// their hashes, so that no text of a scene can run as a script.

namespace meshcast::exporter {

namespace {

// The files of Debian's libjs-three. The first defines the object THREE, the others add to it.
constexpr std::array kLibraryFiles = {"build/three.min.js", "examples/js/loaders/GLTFLoader.js",
                                      "examples/js/controls/OrbitControls.js"};
constexpr std::uint64_t kLargestLibraryFile = std::uint64_t(16) * 1024 * 1024;
constexpr std::string_view kLibraryLicence = R"(<!--
three.js, its GLTFLoader and its OrbitControls: the MIT License.
Copyright (c) 2010-2019 three.js authors

Permission is hereby granted, free of charge, to any person obtaining a copy of this software and
associated documentation files (the "Software"), to deal in the Software without restriction,
including without limitation the rights to use, copy, modify, merge, publish, distribute, sublicense,
and/or sell copies of the Software, and to permit persons to whom the Software is furnished to do so,
subject to the following conditions:

The above copyright notice and this permission notice shall be included in all copies or substantial
portions of the Software.

THE SOFTWARE IS PROVIDED "AS IS", WITHOUT WARRANTY OF ANY KIND, EXPRESS OR IMPLIED, INCLUDING BUT NOT
LIMITED TO THE WARRANTIES OF MERCHANTABILITY, FITNESS FOR A PARTICULAR PURPOSE AND NONINFRINGEMENT. IN
NO EVENT SHALL THE AUTHORS OR COPYRIGHT HOLDERS BE LIABLE FOR ANY CLAIM, DAMAGES OR OTHER LIABILITY,
WHETHER IN AN ACTION OF CONTRACT, TORT OR OTHERWISE, ARISING FROM, OUT OF OR IN CONNECTION WITH THE
SOFTWARE OR THE USE OR OTHER DEALINGS IN THE SOFTWARE.
-->
)";
// Browsers limit the length of a text, so a large scene is split into several.
constexpr std::size_t kPieceSize = std::size_t(3) * 1024 * 1024;

struct Page {
    std::string name;
    std::vector<std::string> scripts;
    std::function<void(ByteSink&)> writeGlb;
    std::function<std::string()> report;
};

/// The installed three.js, or why it cannot be used, as the end of a sentence.
std::variant<std::vector<std::string>, std::string> readLibrary() {
    std::vector<std::string> scripts;
    for (const char* const name : kLibraryFiles) {
        const std::string path = std::string(MESHCAST_THREE_JS_DIR "/") + name;
        auto read = io::readFile(path, kLargestLibraryFile);
        if (const auto* const error = std::get_if<std::error_code>(&read)) {
            return path + ", a part of it, cannot be read (" + error->message() +
                   "); install Debian's package libjs-three";
        }
        std::string& script = std::get<std::string>(read);
        // Browsers remove these before they compute the hash of a script.
        script.erase(std::remove(script.begin(), script.end(), '\r'), script.end());
        if (script.find("</script") != std::string::npos ||
            script.find("<!--") != std::string::npos) {
            return path + ", a part of it, would end its script element";
        }
        scripts.push_back(std::move(script));
    }
    return scripts;
}

std::string escaped(const std::string& text) {
    std::string html;
    for (const char c : text) {
        html += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    }
    return html;
}

/// The source expression for a script or a style in the policy.
std::string hashSource(std::string_view text) {
    std::string hash(crypto_hash_sha256_BYTES, '\0');
    crypto_hash_sha256(reinterpret_cast<unsigned char*>(hash.data()),
                       reinterpret_cast<const unsigned char*>(text.data()), text.size());
    return " 'sha256-" + base64(hash) + "'";
}

std::string policyOf(const Page& page) {
    std::string policy = "default-src 'none'; img-src blob: data:; connect-src blob:; style-src";
    policy += hashSource(kPageStyle);
    policy += "; script-src";
    for (const std::string& script : page.scripts) {
        policy += hashSource(script);
    }
    return policy + hashSource(kPageScript);
}

/// The data for the page's script, as JSON that cannot close a script element.
std::string dataOf(const Page& page) {
    std::string data;
    JsonWriter json(data);
    json.beginObject().member("name", std::string_view(page.name)).key("report");
    return data + (page.report ? page.report() : "{}") + "}";
}

void writePage(ByteSink& sink, Page& page) {
    sink.write("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
               "<meta http-equiv=\"Content-Security-Policy\" content=\"");
    sink.write(policyOf(page));
    sink.write("\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
               "<link rel=\"icon\" href=\"data:,\">\n<title>");
    sink.write(escaped(page.name));
    sink.write("</title>\n<style>");
    sink.write(kPageStyle);
    sink.write("</style>\n</head>\n<body>\n");
    sink.write(kPageBody);
    sink.write("<script type=\"application/json\" id=\"page\">");
    sink.write(dataOf(page));
    sink.write("</script>\n");
    Base64Sink glb(sink, kPieceSize, "<script type=\"text/plain\" class=\"glb\">", "</script>\n");
    page.writeGlb(glb);
    glb.finish();
    sink.write(kLibraryLicence);
    for (const std::string_view script : page.scripts) {
        sink.write("<script>");
        sink.write(script);
        sink.write("</script>\n");
    }
    sink.write("<script>");
    sink.write(kPageScript);
    sink.write("</script>\n</body>\n</html>\n");
}

} // namespace

Exported writePage(evaluate::Model&& model, const Options& options) {
    auto library = readLibrary();
    Exported exported;
    if (auto* const problem = std::get_if<std::string>(&library)) {
        exported.failure = "pages need three.js; " + *problem;
        return exported;
    }
    exported = writeGltf(std::move(model), true, options);
    if (exported.failure.empty()) {
        const auto page = std::make_shared<Page>(
            Page{evaluate::toUtf8(options.name), std::move(std::get<0>(library)),
                 std::move(exported.files.at(0).write), options.report});
        exported.files[0].write = [page](ByteSink& sink) { writePage(sink, *page); };
    }
    return exported;
}

} // namespace meshcast::exporter
