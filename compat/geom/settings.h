#pragma once

#include "compat/geom/format.h"

#pragma GCC visibility push(default)

// Settings of the library's functions: the version that they write, whether they verify objects,
// and where their messages go. The environment sets them. The functions have no arguments for them,
// so a thread that needs other settings opens a GEOMscope.
//
// This is the only mutable global state of the project's libraries: for each thread, a pointer to
// the settings of its innermost scope; for the process, whether KRA_GEOM_VERIFY and KRA_GEOM_DEBUG
// were set when they were first read.

/// The source of a message: GEOMerror(), or GEOMcheck_obj() without a reporter.
enum class GEOMmessage { error, finding };

/// Receives the text of one message, without prefix and newline and valid during the call; must not
/// throw. `context` is that of the settings.
using GEOMreceiver = void (*)(void* context, GEOMmessage kind, const char* text);

struct GEOMsettings {
    int version = GEOM_VERSION_XDR;  ///< of the records that GEOMwrite_obj() writes
    bool verify = false;             ///< check objects when they are written and destroyed
    GEOMreceiver receiver = nullptr; ///< null: messages go to standard error
    void* context = nullptr;         ///< handed to the receiver
};

/// Applies a copy of the settings to the calling thread until the end of the scope. In nested
/// scopes the innermost applies. Without a scope the environment applies, and the version is read
/// from it for every record. The trace and fatal errors do not depend on scopes.
class GEOMscope {
public:
    explicit GEOMscope(const GEOMsettings& settings);
    ~GEOMscope();
    GEOMscope(const GEOMscope&) = delete;
    GEOMscope& operator=(const GEOMscope&) = delete;

private:
    GEOMsettings settings_;
    const GEOMsettings* outer_; ///< null for the outermost scope
};

/// The settings of the environment: version 7 if KRA_GEOM_WRITE_V2 is set, to any value, and
/// verification if KRA_GEOM_VERIFY is. No receiver.
GEOMsettings GEOMenvironment_settings();

// The settings that apply to the calling thread.
namespace geom {

int recordVersion();
bool verifyWanted();

/// Whether KRA_GEOM_DEBUG is set, to any value, so that writing is traced on standard output.
bool traceWanted();

/// Passes a message to the receiver, or prints it with its prefix to standard error if there is
/// none.
void report(GEOMmessage kind, const char* text);

} // namespace geom

#pragma GCC visibility pop
