#pragma once

#include "compat/geom/geom.h"

namespace geom {

// Frees what only labels have: the texts, and the lists that are not in their geom::Part.
void clear_labels(GEOMlabels& labels);

} // namespace geom
