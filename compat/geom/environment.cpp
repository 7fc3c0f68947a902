#include "compat/geom/environment.h"

#include <cstdlib>
#include <optional>

namespace geom {
namespace {

std::optional<bool> verify_answer;
std::optional<bool> trace_answer;

bool is_set(std::optional<bool>& answer, const char* variable) {
    if (!answer)
        answer = std::getenv(variable) != nullptr;
    return *answer;
}

} // namespace

bool verify_wanted() {
    return is_set(verify_answer, "KRA_GEOM_VERIFY");
}

bool trace_wanted() {
    return is_set(trace_answer, "KRA_GEOM_DEBUG");
}

void forget_environment() {
    verify_answer.reset();
    trace_answer.reset();
}

} // namespace geom
