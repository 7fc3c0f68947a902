#pragma once

#include "compat/geom/format.h"

// What the library's functions do beyond their arguments: the version that they write, whether they
// verify, and where their messages go. No function has an argument for it, so each thread that
// wants something else than the environment says so with a GEOMscope.
//
// This is the only place where the project's libraries keep state of the process that changes: for
// each thread a pointer to the settings of its innermost scope, and for the process what the
// environment said about KRA_GEOM_VERIFY and KRA_GEOM_DEBUG when that was first asked.

// What a message is: that of GEOMerror(), or a finding of GEOMcheck_obj() without a reporter.
enum class GEOMmessage { error, finding };

// Receives the text of one message, without prefix and newline and valid during the call; must not
// throw. `context` is that of the settings.
using GEOMreceiver = void (*)(void* context, GEOMmessage kind, const char* text);

struct GEOMsettings {
    int version = GEOM_VERSION_XDR;  // of the records that GEOMwrite_obj() writes
    bool verify = false;             // check objects when they are written and destroyed
    GEOMreceiver receiver = nullptr; // null: messages go to standard error
    void* context = nullptr;         // handed to the receiver
};

// Puts a copy of the settings in force on the calling thread, until the scope ends there. Scopes
// nest: the innermost one decides. Without any, the environment does, asked anew for the version of
// every record. The trace, and what ends the process, do not depend on scopes.
class GEOMscope {
public:
    explicit GEOMscope(const GEOMsettings& settings);
    ~GEOMscope();
    GEOMscope(const GEOMscope&) = delete;
    GEOMscope& operator=(const GEOMscope&) = delete;

private:
    GEOMsettings m_settings;
    const GEOMsettings* m_outer; // null for the outermost scope
};

// What the environment asks for: version 7 if KRA_GEOM_WRITE_V2 is set, to whatever value, and
// verification if KRA_GEOM_VERIFY is. No receiver.
GEOMsettings GEOMenvironment_settings();

// The library's own questions, answered for the calling thread.
namespace geom {

int record_version();
bool verify_wanted();

// KRA_GEOM_DEBUG is set, to whatever value: the writing of objects is traced on standard output.
bool trace_wanted();

// Hands a message to the receiver in force, or prints it with its prefix to standard error.
void report(GEOMmessage kind, const char* text);

} // namespace geom
