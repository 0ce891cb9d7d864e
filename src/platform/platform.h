// Everything that the program is handed at its start, as one bundle of references.
//
// main() builds the implementations and owns them; they outlive everything that is handed the
// bundle. A test hands over its own, most of them in memory. All calls come from one thread.
#pragma once

#include <string>

#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "platform/instance.h"
#include "platform/locale.h"
#include "platform/settings.h"

namespace tabelion {

struct Platform {
  Files& files;
  Clock& clock;
  Locale& locale;
  Settings& settings;
  Dialogs& dialogs;
  Instance& instance;
  // UTF-8; the sample databases to offer lie in it. Empty, or of a folder that does not exist,
  // where there are none.
  std::string samples_folder;
};

}  // namespace tabelion
