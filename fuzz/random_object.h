#pragma once

#include "compat/geom/geom.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <memory>

namespace meshcast::fuzz {

struct DestroyObject {
    void operator()(GEOMobj* object) const { GEOMdestroy_obj(object); }
};
using OwnedObject = std::unique_ptr<GEOMobj, DestroyObject>;

struct RandomObject {
    OwnedObject object;
    /// All arrays match, and no number is out of its range: verification has nothing to find.
    bool isSound;
};

/// An object of any kind, made of the fuzzer's bytes by the library's own functions. What they add
/// is checked on the way, and so are the normals that they generate.
RandomObject randomObject(FuzzedDataProvider& choices);

} // namespace meshcast::fuzz
