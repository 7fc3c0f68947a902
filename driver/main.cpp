#include "compat/geom/geom.h"
#include "convert/context.h"
#include "traverse/state.h"
#include "vrml/input.h"
#include "vrml/names.h"
#include "vrml/node.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <new>
#include <string_view>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace {

/// Keeps the platform from translating any byte of the stream.
void setBinaryOutput() {
#ifdef _WIN32
    _setmode(1, _O_BINARY);
#endif
}

void endOutOfMemory() {
    GEOMfatal_error("out of memory");
}

} // namespace

int main() {
    using namespace meshcast;

    std::set_new_handler(endOutOfMemory);
    // Never destroyed: the process ends with the walk, and what it holds goes with it.
    auto& nodes = *new NodePool;

    NameDictionary::global();
    {
        VrmlInput input(nodes, standardInput());
        QvState state;
        constexpr std::string_view kTag = "MESHCAST";
        static_assert(kTag.size() < programTag.size());
        std::copy(kTag.begin(), kTag.end(), programTag.begin());
        setBinaryOutput();
        initialiseConversion();
        input.attach(standardInput());

        // A scene that could not be read has been reported, and the exit status is 0 all the same.
        QvNode* root = nullptr;
        readScene(input, root);
        if (root != nullptr) {
            root->traverse(state);
        }
    }
    return 0;
}
