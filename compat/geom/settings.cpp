#include "compat/geom/settings.h"

#include "compat/geom/geom.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

constinit thread_local const GEOMsettings* in_force = nullptr;

bool is_set(const char* variable) { return std::getenv(variable) != nullptr; }

int environment_version() {
    return is_set("KRA_GEOM_WRITE_V2") ? GEOM_VERSION_RAW : GEOM_VERSION_XDR;
}

bool environment_verifies() {
    static const bool answer = is_set("KRA_GEOM_VERIFY");
    return answer;
}

bool has_receiver() { return in_force != nullptr && in_force->receiver != nullptr; }

// Prints piece by piece, without a buffer, so that a message of any length needs no memory. The
// lock keeps the pieces together when threads print at the same time.
[[gnu::format(printf, 2, 0)]] void print_message(const char* prefix, const char* format,
                                                 std::va_list arguments) {
    flockfile(stderr);
    static_cast<void>(std::fputs(prefix, stderr));
    static_cast<void>(std::vfprintf(stderr, format, arguments));
    static_cast<void>(std::fputs("\n", stderr));
    funlockfile(stderr);
}

} // namespace

GEOMscope::GEOMscope(const GEOMsettings& settings) : m_settings(settings), m_outer(in_force) {
    in_force = &m_settings;
}

GEOMscope::~GEOMscope() { in_force = m_outer; }

GEOMsettings GEOMenvironment_settings() {
    return {.version = environment_version(), .verify = environment_verifies()};
}

int geom::record_version() {
    return in_force != nullptr ? in_force->version : environment_version();
}

bool geom::verify_wanted() {
    return in_force != nullptr ? in_force->verify : environment_verifies();
}

bool geom::trace_wanted() {
    static const bool answer = is_set("KRA_GEOM_DEBUG");
    return answer;
}

void geom::report(GEOMmessage kind, const char* text) {
    const char* words = kind == GEOMmessage::error ? "GEOM error" : "GEOMcheck_obj error";
    if (has_receiver())
        in_force->receiver(in_force->context, kind, text);
    else
        static_cast<void>(std::fprintf(stderr, "%s: %s\n", words, text));
}

void GEOMerror(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    char* text = nullptr;
    if (!has_receiver())
        print_message("GEOM error: ", format, arguments);
    else if (vasprintf(&text, format, arguments) < 0)
        GEOMfatal_error("out of memory");
    else
        geom::report(GEOMmessage::error, text);
    std::free(text);
    va_end(arguments);
}

void GEOMfatal_error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    print_message("GEOM fatal error: ", format, arguments);
    va_end(arguments);
    std::exit(EXIT_FAILURE);
}
