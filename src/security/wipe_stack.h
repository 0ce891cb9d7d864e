#pragma once

namespace tabelion {

// Overwrites what functions that have returned left on the stack: short texts, keys, parts of
// records. To be called from where secrets are done with, no deeper than they were worked on.
void wipeStack();

}  // namespace tabelion
