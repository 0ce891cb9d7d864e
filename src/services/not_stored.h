// What somebody typed and the program could not store by itself, because it closed while nobody was
// there to be asked: told when somebody is, in the same run or the next.
#pragma once

#include "services/application.h"

namespace tabelion {

// Shows the lines of this run, or else those that the last one kept, and forgets them.
void TellNotStored(Application& app);
// For the next start, when nobody can be told any more.
void KeepNotStored(Application& app);

}  // namespace tabelion
