#include "app/program.h"

#include <QCoreApplication>

#include "platform/std/std_clock.h"
#include "platform/std/std_locale.h"
#include "shell/run.h"

namespace tabelion {

ProgramPlaces placesOf(const ProgramOptions& options) {
  ProgramPlaces places;
  places.files = {options.documents_folder, options.card_folder};
  places.samples_folder =
      options.samples_folder.empty()
          ? QCoreApplication::applicationDirPath().toStdString() + "/../share/tabelion/samples"
          : options.samples_folder;
  return places;
}

int runProgram(const ProgramOptions& options, const ProgramPlaces& places, QtDialogs& dialogs) {
  StdFiles files(places.files);
  StdClock clock;
  StdLocale locale;
  JsonSettings settings(places.settings);
  Platform platform{files, clock, locale, settings, dialogs, places.samples_folder};
  return RunTabelion(platform, {options.command_line, options.code_page});
}

}  // namespace tabelion
