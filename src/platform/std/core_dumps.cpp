#include "platform/std/core_dumps.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace tabelion {

void forbidCoreDumps() {
  const rlimit none{0, 0};
  (void)setrlimit(RLIMIT_CORE, &none);
  // A limit is not asked where the system hands dumps to a program.
  (void)prctl(PR_SET_DUMPABLE, 0);
}

}  // namespace tabelion
