#include "shell/run.h"

#include "screens/ask_password.h"
#include "services/application.h"
#include "services/open_database.h"
#include "shell/main_window.h"

namespace tabelion {

int RunTabelion(Platform& platform, const StartOptions& options) {
  Application app(platform);
  MainWindow window(app, options);
  // Not through the function that runs every other dialog: the main window never closes by itself.
  platform.dialogs.runModal(MainWindowTemplate(), window);
  CloseAllDatabases(app, AskEncryptionPassword(app, nullptr, true));
  return 0;
}

}  // namespace tabelion
