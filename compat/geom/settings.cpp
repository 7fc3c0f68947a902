#include "compat/geom/settings.h"

#include "compat/geom/geom.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

constinit thread_local const GEOMsettings* inForce = nullptr;

bool isSet(const char* variable) { return std::getenv(variable) != nullptr; }

int environmentVersion() {
    return isSet("KRA_GEOM_WRITE_V2") ? GEOM_VERSION_RAW : GEOM_VERSION_XDR;
}

bool environmentVerifies() {
    static const bool answer = isSet("KRA_GEOM_VERIFY");
    return answer;
}

bool hasReceiver() { return inForce != nullptr && inForce->receiver != nullptr; }

// Prints piece by piece, without a buffer, so that a message of any length needs no memory. The
// lock keeps the pieces together when threads print at the same time.
[[gnu::format(printf, 2, 0)]] void printMessage(const char* prefix, const char* format,
                                                std::va_list arguments) {
    flockfile(stderr);
    static_cast<void>(std::fputs(prefix, stderr));
    static_cast<void>(std::vfprintf(stderr, format, arguments));
    static_cast<void>(std::fputs("\n", stderr));
    funlockfile(stderr);
}

} // namespace

GEOMscope::GEOMscope(const GEOMsettings& settings) : settings_(settings), outer_(inForce) {
    inForce = &settings_;
}

GEOMscope::~GEOMscope() { inForce = outer_; }

GEOMsettings GEOMenvironment_settings() {
    return {.version = environmentVersion(), .verify = environmentVerifies()};
}

int geom::recordVersion() { return inForce != nullptr ? inForce->version : environmentVersion(); }

bool geom::verifyWanted() { return inForce != nullptr ? inForce->verify : environmentVerifies(); }

bool geom::traceWanted() {
    static const bool answer = isSet("KRA_GEOM_DEBUG");
    return answer;
}

void geom::report(GEOMmessage kind, const char* text) {
    const char* words = kind == GEOMmessage::error ? "GEOM error" : "GEOMcheck_obj error";
    if (hasReceiver())
        inForce->receiver(inForce->context, kind, text);
    else
        static_cast<void>(std::fprintf(stderr, "%s: %s\n", words, text));
}

void GEOMerror(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    char* text = nullptr;
    if (!hasReceiver())
        printMessage("GEOM error: ", format, arguments);
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
    printMessage("GEOM fatal error: ", format, arguments);
    va_end(arguments);
    std::exit(EXIT_FAILURE);
}
