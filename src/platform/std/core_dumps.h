#pragma once

namespace tabelion {

// From now on the system writes no image of this process to a disk when it dies, and lets no other
// program of the user look into its memory.
void forbidCoreDumps();

}  // namespace tabelion
