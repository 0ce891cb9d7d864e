#include "app/program.h"

#include <QCoreApplication>
#include <QTimer>

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

int runProgram(const ProgramOptions& options, const ProgramPlaces& places, QtDialogs& dialogs,
               Instance& instance) {
  StdFiles files(places.files);
  StdClock clock;
  StdLocale locale;
  JsonSettingsOptions settings_options = places.settings;
  settings_options.warn = [&dialogs](const std::string& text) {
    // Read in the middle of anything, it is said when that is over.
    QTimer::singleShot(0, qApp, [&dialogs, text] {
      dialogs.message({QString::fromStdString(text).toStdU16String(), u"Preferences",
                       MessageButtons::kOk, MessageIcon::kExclamation});
    });
  };
  JsonSettings settings(settings_options);
  Platform platform{files, clock, locale, settings, dialogs, instance, places.samples_folder};
  return RunTabelion(platform, {.command_line = options.command_line,
                                .code_page = options.code_page,
                                .open_file = options.open_file,
                                .activation_token = options.activation_token});
}

}  // namespace tabelion
