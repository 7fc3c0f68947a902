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

namespace {

/// Keeps any byte of the stream from being translated on its way out. POSIX makes no difference
/// between text and binary descriptors.
void setBinaryOutput() {}

void endOutOfMemory() {
    GEOMfatal_error("out of memory");
}

} // namespace

int main() {
    using namespace meshcast;

    std::set_new_handler(endOutOfMemory);
    // Never destroyed: the process ends with the walk, and what it holds goes with it.
    static NodePool& nodes = *new NodePool;

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
