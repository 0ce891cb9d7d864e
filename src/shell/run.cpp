#include "shell/run.h"

#include <new>

#include "screens/files/changed_file.h"
#include "screens/files/closing_questions.h"
#include "services/application.h"
#include "services/not_stored.h"
#include "services/open_database.h"
#include "shell/main_window.h"

namespace tabelion {

int RunTabelion(Platform& platform, const StartOptions& options, const AlarmStep& alarm) {
  StartRequest request{RequestKind::kCommandLine, options.command_line, options.activation_token};
  if (!options.open_file.empty()) {
    request.kind = RequestKind::kOpenFile;
    request.text = options.open_file;
  }
  if (platform.instance.start(request) != Instance::Outcome::kFirst) return 0;
  Application app(platform);
  app.ask_changed_file = [&app](const std::string& path) { return AskChangedFile(app, path); };
  MainWindow window(app, {.code_page = options.code_page, .request = request, .alarm = alarm});
  // Not through the function that runs every other dialog: the main window never closes by itself.
  bool ran_short = false;
  try {
    platform.dialogs.runModal(MainWindowTemplate(), window);
  } catch (const std::bad_alloc&) {
    ran_short = true;
  }
  platform.instance.listen({});
  platform.dialogs.whenWindowCloses({});
  if (ran_short) {
    EndWithoutMemory(app);
    return kExitNoMemory;
  }
  if (window.SessionEnds()) app.closing = Closing::kSessionEnds;
  CloseAllDatabases(app, AskWhenClosing(app));
  KeepNotStored(app);
  return 0;
}

}  // namespace tabelion
