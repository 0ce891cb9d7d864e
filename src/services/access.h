// Access rights with the words that a user reads.
#pragma once

#include "security/access_rights.h"
#include "services/application.h"

namespace tabelion {

// kAccessGranted, kAccessRefused or kAccessRestricted for the current database. An operation that
// asks for a password shows a notice and is granted; a refusal is shown when `show_message` is on.
int CheckSecurity(Application& app, Operation operation, bool show_message);

}  // namespace tabelion
