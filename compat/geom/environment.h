#pragma once

// The environment variables that are read once per process, on first use.

namespace geom {

// KRA_GEOM_VERIFY is set, to whatever value: check objects when they are written and destroyed.
bool verify_wanted();

// KRA_GEOM_DEBUG is set, to whatever value: trace the writing of objects.
bool trace_wanted();

// Makes the next question look at the environment again. For tests.
void forget_environment();

} // namespace geom
