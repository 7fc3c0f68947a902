// Names the shapes of the scene on standard input, in the order of the walk.

#include "vrml/scene.h"

#include "traverse/shape_visitor.h"
#include "traverse/state.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene_reader.h"

#include <iostream>

using namespace meshcast;

class ShapeNames final : public ShapeVisitor {
public:
    void visit(const QvAsciiText&, const QvState&) override { std::cout << "AsciiText\n"; }
    void visit(const QvCone&, const QvState&) override { std::cout << "Cone\n"; }
    void visit(const QvCube&, const QvState&) override { std::cout << "Cube\n"; }
    void visit(const QvCylinder&, const QvState&) override { std::cout << "Cylinder\n"; }
    void visit(const QvIndexedFaceSet&, const QvState&) override {
        std::cout << "IndexedFaceSet\n";
    }
    void visit(const QvIndexedLineSet&, const QvState&) override {
        std::cout << "IndexedLineSet\n";
    }
    void visit(const QvPointSet&, const QvState&) override { std::cout << "PointSet\n"; }
    void visit(const QvSphere&, const QvState&) override { std::cout << "Sphere\n"; }
    void visit(const QvWWWInline&, const QvState&) override { std::cout << "WWWInline\n"; }
    void prepareTexture(const QvTexture2&) override {}
};

int main() {
    DescriptorSource input(0);
    StandardErrorDiagnostics messages;
    Scene scene;
    if (!readScene(scene, input, messages) || scene.root == nullptr) {
        return 1;
    }
    ShapeNames names;
    QvState state(names, messages);
    scene.root->traverse(state);
}
