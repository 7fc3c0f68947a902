#pragma once

#include "compat/geom/geom.h"

namespace geom {

// Frees the texts and every list of a label object.
void clear_labels(GEOMlabels& labels);

} // namespace geom
