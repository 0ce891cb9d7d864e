// Everything that the program is handed at its start, as one bundle of references.
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
  std::string samples_folder;  // sample databases to offer; may not exist
};

}  // namespace tabelion
