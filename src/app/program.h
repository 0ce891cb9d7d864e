// The program put together: the platform on this machine, with the window, handed to the shell.
#pragma once

#include <string>

#include "app/options.h"
#include "platform/instance.h"
#include "platform/qt/qt_dialogs.h"
#include "platform/std/json_settings.h"
#include "platform/std/std_files.h"

namespace tabelion {

struct ProgramPlaces {
  StdFilesOptions files;
  JsonSettingsOptions settings;
  std::string samples_folder;
};

// The user's own places, as far as the options name no others.
ProgramPlaces placesOf(const ProgramOptions& options);

// Runs the whole program in the window of `dialogs`; returns its exit code.
int runProgram(const ProgramOptions& options, const ProgramPlaces& places, QtDialogs& dialogs,
               Instance& instance);

}  // namespace tabelion
