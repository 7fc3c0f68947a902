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
    /// Whether the lengths of all arrays match and all numbers are in range, so that verification
    /// finds no error.
    bool isSound;
};

/// An object of any kind, built from the fuzzer's bytes by the functions of the library. The
/// elements that they add and the normals that they generate are checked.
RandomObject randomObject(FuzzedDataProvider& choices);

} // namespace meshcast::fuzz
