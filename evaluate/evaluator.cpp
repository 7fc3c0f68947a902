#include "evaluate/evaluator.h"

#include "evaluate/node_matrix.h"
#include "evaluate/utf8.h"
#include "evaluate/viewpoints.h"
#include "traverse/state.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"

#include <utility>

// The part of the visitor that handles everything but shapes.

namespace meshcast::evaluate {

Evaluator::Evaluator(Model& model, const EvaluateOptions& options)
    : model_(model), options_(options), notes_(model.notes, options.limits.notes),
      images_(model.images, options, notes_), fonts_(options), meshes_(model) {
    notes_.follow(&place_.path());
}

bool Evaluator::mayVisit() {
    if (nodes_ < options_.limits.nodes) {
        ++nodes_;
        return true;
    }
    return false;
}

bool Evaluator::enterGroup(const QvGroup& group, GroupScope scope) {
    // Each group is searched once, so the time is limited by the size of the scene.
    if (!mayVisit() || (seeksCameras_ && !groupsSearched_.insert(&group).second)) {
        return false;
    }
    place_.enter(group.nodeName().view(), scope);
    const auto* const anchor =
        scope == GroupScope::kAll ? dynamic_cast<const QvWWWAnchor*>(&group) : nullptr;
    if (anchor != nullptr && !anchor->name.value.empty() && !seeksCameras_) {
        addAnchor(*anchor);
    }
    return true;
}

void Evaluator::addAnchor(const QvWWWAnchor& anchor) {
    const auto [known, isNew] = urls_.try_emplace(&anchor);
    const std::string& name = anchor.name.value;
    if (isNew && name.size() > options_.limits.textBytes - textBytes_) {
        ++othersLeftOut_;
    } else if (isNew) {
        textBytes_ += name.size();
        model_.urls.push_back(toUtf8(name));
        known->second = static_cast<std::uint32_t>(model_.urls.size() - 1);
    }
    place_.setUrl(known->second);
}

void Evaluator::leaveGroup(const QvGroup& /*group*/) { place_.leave(); }

void Evaluator::addProperty(const QvNode& node, QvElementKind kind, QvElementType type) {
    if (!mayVisit()) {
        return;
    }
    switch (type) {
    case QvElementType::MatrixTransform:
        place_.transform(matrixOf(static_cast<const QvMatrixTransform&>(node)));
        break;
    case QvElementType::Rotation:
        place_.transform(matrixOf(static_cast<const QvRotation&>(node)));
        break;
    case QvElementType::Scale:
        place_.transform(matrixOf(static_cast<const QvScale&>(node)));
        break;
    case QvElementType::Transform:
        place_.transform(matrixOf(static_cast<const QvTransform&>(node)));
        break;
    case QvElementType::Translation:
        place_.transform(matrixOf(static_cast<const QvTranslation&>(node)));
        break;
    default:
        if (kind == QvElementKind::Texture2Transformation) {
            place_.transformTexture(matrixOf(static_cast<const QvTexture2Transform&>(node)));
        } else if (kind == QvElementKind::Light) {
            addLight(node, type);
        } else if (kind == QvElementKind::Camera) {
            addCamera(node, type);
        }
    }
}

void Evaluator::addLight(const QvNode& node, QvElementType type) {
    if (seeksCameras_) {
        return;
    }
    const glm::dmat4& matrix = place_.matrix();
    std::optional<Light> light = type == QvElementType::DirectionalLight
                                     ? lightOf(static_cast<const QvDirectionalLight&>(node), matrix)
                                 : type == QvElementType::PointLight
                                     ? lightOf(static_cast<const QvPointLight&>(node), matrix)
                                     : lightOf(static_cast<const QvSpotLight&>(node), matrix);
    if (!light) {
        return;
    }
    if (model_.lights.size() >= options_.limits.others) {
        ++othersLeftOut_;
        return;
    }
    lightsInScopes_ += place_.scopes() > 0 ? 1 : 0;
    light->name = toUtf8(node.nodeName().view().substr(0, WalkPlace::kLongestPath));
    model_.lights.push_back(std::move(*light));
}

void Evaluator::addCamera(const QvNode& node, QvElementType type) {
    if (model_.cameras.size() >= options_.limits.others) {
        ++othersLeftOut_;
        return;
    }
    Camera camera = type == QvElementType::PerspectiveCamera
                        ? cameraOf(static_cast<const QvPerspectiveCamera&>(node), place_.matrix())
                        : cameraOf(static_cast<const QvOrthographicCamera&>(node), place_.matrix());
    camera.name = toUtf8(node.nodeName().view().substr(0, WalkPlace::kLongestPath));
    model_.cameras.push_back(std::move(camera));
}

// Scenes list their viewpoints as a Switch of cameras, of which one is active.
void Evaluator::leaveSwitch(const QvSwitch& group, QvState& state) {
    if (!switchesSearched_.insert(&group).second || group.whichChild.value == -3) {
        return;
    }
    const bool wasSeeking = std::exchange(seeksCameras_, true);
    for (std::int32_t i = 0; i < group.getNumChildren(); ++i) {
        if (i != group.whichChild.value) {
            place_.enter({}, GroupScope::kAll);
            state.push();
            group.getChild(i)->traverse(state);
            state.pop();
            place_.leave();
        }
    }
    seeksCameras_ = wasSeeking;
}

void Evaluator::passInfo(const QvInfo& info) {
    if (!mayVisit() || seeksCameras_ || info.string.isDefault() ||
        !othersMet_.insert(&info).second) {
        return;
    }
    const std::string& text = info.string.value;
    if (model_.infos.size() >= options_.limits.others ||
        text.size() > options_.limits.textBytes - textBytes_) {
        ++othersLeftOut_;
        return;
    }
    textBytes_ += text.size();
    model_.infos.push_back(toUtf8(text));
}

void Evaluator::passUnknown(const QvUnknownNode& node) {
    if (mayVisit() && !seeksCameras_ && othersMet_.insert(&node).second) {
        const std::string name = toUtf8(node.className().view());
        if (noted_.insert(name).second) {
            notes_.add(Note::Kind::kUnsupported,
                       "nodes of the unknown class " + name + " left out");
        }
    }
}

void Evaluator::visit(const QvWWWInline& shape, const QvState& /*state*/) {
    if (mayVisit() && !seeksCameras_ && othersMet_.insert(&shape).second) {
        const std::string name = '"' + toUtf8(shape.name.value) + '"';
        if (noted_.insert(name).second) {
            notes_.add(Note::Kind::kMissing, "inlined scene " + name + " not shown");
        }
    }
}

void Evaluator::finish() {
    setDistances(model_);
    notes_.follow(nullptr);
    notes_.addCount(Note::Kind::kApproximated, lightsInScopes_, "light",
                    "not limited: in the scene its effect ends with its Separator");
    notes_.addCount(Note::Kind::kDropped, shapesWithoutPlace_, "shape",
                    "dropped: its position is not finite");
    notes_.addCount(Note::Kind::kLimit, shapesTooLarge_, "shape",
                    "left out: repeated shapes have too many triangles, lines and points");
    notes_.addCount(Note::Kind::kLimit, instancesLeftOut_, "shape",
                    "left out: too many shapes are repeated");
    notes_.addCount(Note::Kind::kLimit, othersLeftOut_, "light, camera or text",
                    "left out: there are too many");
    if (nodes_ >= options_.limits.nodes) {
        notes_.add(Note::Kind::kLimit, "the rest of the scene left out: nodes are used "
                                       "too often");
    }
}

Model evaluateScene(const Scene& scene, const EvaluateOptions& options, Diagnostics& diagnostics) {
    Model model;
    Evaluator evaluator(model, options);
    if (scene.root != nullptr) {
        QvState state(evaluator, diagnostics);
        scene.root->traverse(state);
    }
    evaluator.finish();
    return model;
}

} // namespace meshcast::evaluate
