#include "vrml/scene.h"

#include "vrml/diagnostics.h"

#include <cstdint>

namespace meshcast {

void Scene::setName(QvNode& node, InternedName name, Diagnostics& diagnostics) {
    removeName(node, diagnostics);
    node.name_ =
        name.empty() || isLegalNodeName(name.view()) ? name : intern(madeLegal(name.view()));
    if (!node.name_.empty()) {
        dictionary_.add(node.name_, &node);
    }
}

void Scene::removeName(const QvNode& node, Diagnostics& diagnostics) {
    if (!node.name_.empty() && !dictionary_.remove(node.name_, &node)) {
        report(diagnostics, DiagnosticKind::kSceneError, 0,
               "QvNode::removeName(): Name \"%s\" (node %x) is not in dictionary",
               node.name_.c_str(), static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(&node)));
    }
}

} // namespace meshcast
