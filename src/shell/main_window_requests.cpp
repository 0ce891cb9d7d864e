// What reaches the running program from outside: another start, the desktop, the end of the
// session.
#include <algorithm>
#include <utility>

#include "screens/records/record_list.h"
#include "services/message.h"
#include "services/modal.h"
#include "services/not_stored.h"
#include "services/screen_text.h"
#include "shell/main_window.h"

namespace tabelion {
namespace {

constexpr char kNotificationWord[] = "AppRunToHandleNotification";

}  // namespace

void MainWindow::OnRequest(Dialog& dialog, const StartRequest& request) {
  if (request.kind != RequestKind::kQuit) {
    app_.platform.dialogs.bringToFront(request.activation_token);
  }
  CarryOut(dialog, request);
}

void MainWindow::CarryOut(Dialog& dialog, const StartRequest& request) {
  switch (request.kind) {
    case RequestKind::kCommandLine:
      return HandleCommandLine(dialog, request.text);
    case RequestKind::kOpenFile:
      return HandleOpenFile(dialog, request.text);
    case RequestKind::kActivate:
      return;
    case RequestKind::kQuit:
      session_ends_ = true;
      if (!app_.open_dialogs.empty()) return CloseOpenDialogs(app_, Closing::kSessionEnds);
      app_.closing = Closing::kSessionEnds;
      app_.platform.dialogs.dismissBoxes();
      dialog.end(0);
  }
}

// The window was closed: every screen does what it does for its Back key, from the top down, and
// may ask; whoever stays in one stays in the program. A box in the way is dismissed unanswered.
void MainWindow::Leave(Dialog& dialog) {
  if (!app_.open_dialogs.empty()) return CloseOpenDialogs(app_, Closing::kLeaving);
  app_.closing = Closing::kLeaving;
  app_.platform.dialogs.dismissBoxes();
  dialog.end(0);
}

// A command line that names no notification opens nothing, also when it names a database.
void MainWindow::HandleCommandLine(Dialog& dialog, const std::string& command_line) {
  if (command_line.empty()) return;
  if (command_line.find(kNotificationWord) == std::string::npos) {
    if (app_.open_dialogs.empty()) return;
    const OpenDialog& top = app_.open_dialogs.back();
    return top.screen->OnForeignMessage(*top.dialog);
  }
  if (!start_.alarm) return;
  const auto wanted = start_.alarm(command_line);
  if (!wanted) return;
  if (!app_.open_dialogs.empty()) {
    return ShowMessage(app_,
                       u"Cannot Open this record because you are in the midst of edit record. "
                       u"Please Open this record manually.",
                       u"Message", MessageIcon::kInformation);
  }
  const auto named =
      std::find_if(list_.files.begin(), list_.files.end(),
                   [&](const DatabaseFile& file) { return file.path == wanted->database_path; });
  if (named != list_.files.end()) OpenDatabase(dialog, named->path, wanted->record);
}

// A database that is open gives way to the one asked for only when the user says so.
void MainWindow::HandleOpenFile(Dialog& dialog, const std::string& path) {
  if (IsOpen(path)) return;
  if (!app_.platform.files.info(path).ok()) {
    return ShowMessage(app_, u"There is no file \"" + FromUtf8(path) + u"\".", u"Open Database",
                       MessageIcon::kError);
  }
  if (app_.open_dialogs.empty()) {
    open_next_ = path;
    app_.closing = Closing::kForAnother;  // what asks just now has not been answered No
    if (app_.platform.dialogs.dismissBoxes()) return dialog.post(kAfterDialogMessage);
    return AfterDialog(dialog);
  }
  if (IsDatabaseOpen(app_) &&
      Ask(app_,
          u"Save and close \"" + ScreenText(app_, areaText(CurrentDatabase(app_).header.name)) +
              u"\", and open \"" + FromUtf8(path.substr(path.rfind('/') + 1)) + u"\"?",
          u"QUESTION") != Answer::kYes) {
    return;
  }
  open_next_ = path;
  CloseOpenDialogs(app_, Closing::kForAnother);
}

bool MainWindow::IsOpen(const std::string& path) const {
  return std::any_of(app_.stack.levels.begin(), app_.stack.levels.end(), [&](const Level& level) {
    return level.session.open && level.session.database->path == path;
  });
}

void MainWindow::OpenDatabase(Dialog& dialog, const std::string& path,
                              std::optional<std::uint32_t> record) {
  app_.record_screen_active = true;
  ShowRecordList(app_, path, record);
  app_.record_screen_active = false;
  // It may have got another name, or left a second file beside the one that somebody else changed.
  if (!session_ends_) ShowDatabases(dialog);
  AfterDialog(dialog);
}

// What was asked for from outside while a dialog was open.
void MainWindow::AfterDialog(Dialog& dialog) {
  const Closing why = std::exchange(app_.closing, Closing::kNo);
  const std::string next = std::exchange(open_next_, {});
  if (session_ends_ || why == Closing::kLeaving) return dialog.end(0);
  if (!app_.not_stored.empty()) TellNotStored(app_);
  if (why == Closing::kForAnother && !next.empty()) OpenDatabase(dialog, next);
}

}  // namespace tabelion
