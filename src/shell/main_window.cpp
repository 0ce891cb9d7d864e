#include "shell/main_window.h"

#include <algorithm>

#include "screens/files/copy_question.h"
#include "screens/files/database_info.h"
#include "screens/kit/row_colors.h"
#include "screens/kit/screen_numbers.h"
#include "screens/program/about.h"
#include "services/file_management.h"
#include "services/message.h"
#include "services/modal.h"
#include "services/not_stored.h"
#include "services/save_database.h"
#include "services/screen_text.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

constexpr int kStartMessage = 1025;
constexpr CommandId kOpenCommand = kActionCommand;
constexpr CommandId kAboutCommand = 40005;
constexpr CommandId kExitCommand = 40006;
constexpr CommandId kInfoCommand = 40007;
constexpr CommandId kRefreshCommand = 40027;
constexpr CommandId kBeamCommand = 40061;
constexpr CommandId kCopyCommand = 40071;
constexpr CommandId kMoveCommand = 40072;
constexpr CommandId kReceiveCommand = 40131;
constexpr int kColumnMargin = 10;
constexpr int kCardMarkWidth = 34;  // "Card" beside the names of databases that lie there

}  // namespace

DialogTemplate MainWindowTemplate() {
  DialogTemplate dialog;
  dialog.resource = kChooserScreen;
  dialog.title = u"Tabelion";
  dialog.controls = {
      {.id = kDatabaseList, .kind = ControlKind::kList, .accessible_name = u"Databases"}};
  return dialog;
}

void MainWindow::onInit(Dialog& dialog) {
  Layout(dialog);
  ShowCommands(dialog);
  dialog.post(kStartMessage);
}

void MainWindow::Layout(Dialog& dialog) {
  const Size size = dialog.screenSize();
  ListControl& list = dialog.list(kDatabaseList);
  list.setPlace({0, 0, size.width, size.height});
  list.setColumns({{u"Choose Database:", std::max(0, size.width - kColumnMargin)}});
}

void MainWindow::onMessage(Dialog& dialog, int message) {
  if (message == kStartMessage) Start(dialog);
  if (message == kAfterDialogMessage) AfterDialog(dialog);
}

// What needs the window on the screen already: the list, its questions, the preferences.
void MainWindow::Start(Dialog& dialog) {
  app_.platform.instance.listen(
      [this, &dialog](const StartRequest& request) { OnRequest(dialog, request); });
  app_.platform.dialogs.whenWindowCloses([this, &dialog] { Leave(dialog); });
  LoadPreferences(app_.platform, app_.preferences);
  if (!start_.code_page.empty()) app_.preferences.code_page = start_.code_page;
  PrepareFormats(app_);
  if (!RefreshDatabaseList(dialog)) RefreshDatabaseList(dialog);  // a folder was empty: look again
  ListControl& list = dialog.list(kDatabaseList);
  list.focus();
  list.selectRow(0);
  app_.restart_auto_save = [this, &dialog] {
    const int period_ms = app_.preferences.auto_save_period_ms;
    if (period_ms < 1) return dialog.stopTimer(kAutoSaveTimer);
    dialog.startTimer(kAutoSaveTimer, period_ms);
  };
  app_.restart_auto_save();
  NameRescuedDatabases(app_);
  app_.record_screen_active = false;
  if (session_ends_ || app_.closing == Closing::kLeaving) return;
  TellNotStored(app_);
  CarryOut(dialog, start_.request);
}

// False when a folder holds no database file at all.
bool MainWindow::RefreshDatabaseList(Dialog& dialog) {
  CollectReceivedFiles(app_);
  ShowDatabases(dialog);
  if (!list_.found_files && list_.files.empty() && OfferSamples()) {
    return RefreshDatabaseList(dialog);
  }
  return list_.found_files;
}

// What lies in the folders now. The selected database stays selected; when it is gone, its row.
void MainWindow::ShowDatabases(Dialog& dialog) {
  ListControl& list = dialog.list(kDatabaseList);
  const int row = list.selectedRow();
  const auto selected = Selected(dialog);
  {
    WaitCursor waiting(app_);
    list_ = ListDatabases(app_, app_.category);
  }
  categories_ = {kAllCategories};
  for (const std::u16string& category : list_.categories) {
    if (category != kAllCategories && category != kUnfiled) categories_.push_back(category);
  }
  categories_.push_back(kUnfiled);
  const int count = static_cast<int>(list_.files.size());
  const auto found = std::find_if(
      list_.files.begin(), list_.files.end(),
      [&](const DatabaseFile& file) { return selected && file.path == selected->path; });
  list.setRowCount(count);
  list.selectRow(found != list_.files.end() ? static_cast<int>(found - list_.files.begin())
                                            : std::clamp(row, std::min(0, count - 1), count - 1));
  list.repaint();
  if (list_.found_files) left_key_text_ = app_.category;
  ShowCommands(dialog);
}

// True when samples were installed.
// Compat: Yes leaves the question armed for the next time that the list is empty, only No stops
// it for good (Chooser.OffersSamplesUntilNo).
bool MainWindow::OfferSamples() {
  Settings& settings = app_.platform.settings;
  if (ReadNumberSetting(settings, Setting::kSampleDatabases).value_or(0) != 0) return false;
  const Answer install = Ask(app_, u"Install Sample Database? (Y/N)", u"QUESTION");
  if (install == Answer::kNobody) return false;
  WriteNumberSetting(settings, Setting::kSampleDatabases, install == Answer::kYes ? 0 : 1);
  return install == Answer::kYes && InstallSampleDatabases(app_) > 0;
}

// The left soft key carries the category that is shown, its menu all of them.
std::vector<Command<MainWindow>> MainWindow::CategoryRows() const {
  std::vector<Command<MainWindow>> rows;
  CommandId number = kFirstListedCommand;
  for (const std::u16string& category : categories_) {
    rows.push_back({.number = number++,
                    .text = category,
                    .run = [category](MainWindow& self,
                                      Dialog& dialog) { self.ChooseCategory(dialog, category); },
                    .checked = category == app_.category});
  }
  return rows;
}

// What there is to be done with the selected database, and where it can be copied to.
CommandTable<MainWindow> MainWindow::Commands(Dialog& dialog) {
  using Self = MainWindow;
  const auto file = Selected(dialog);
  const auto other = file ? OtherVolume(app_, *file) : std::nullopt;
  const std::u16string to = other == Volume::kMain ? u" to Main Folder" : u" to Card";
  const auto transfer = [](bool move) {
    return [move](Self& self, Dialog& on) { self.TransferSelected(on, move); };
  };
  return {.resource = 104,
          .left = {.text = left_key_text_, .rows = CategoryRows()},
          .right = {.text = u"Menu",
                    .rows = {{kOpenCommand, u"Open", &Self::OpenSelected, file.has_value()},
                             {kInfoCommand, u"Info", &Self::ShowInfo, file.has_value()},
                             {.text = u"Beam",
                              .rows = {{kBeamCommand, u"Infrared", {}, false},
                                       {kReceiveCommand, u"Receive Data", {}, false}}},
                             {kDeleteCommand, u"Delete", &Self::DeleteSelectedDatabase,
                              file.has_value()},
                             {kCopyCommand, u"Copy" + to, transfer(false), other.has_value()},
                             {kMoveCommand, u"Move" + to, transfer(true), other.has_value()},
                             {kRefreshCommand, u"Refresh", &Self::Refresh},
                             {kAboutCommand, u"About", &Self::About},
                             {kExitCommand, u"Exit", &Self::Exit}}},
          .keys = {{kBackCommand, {}, &Self::Back}}};
}

// One press too many on the way out of a database must not end the program.
void MainWindow::Back(Dialog& dialog) {
  if (Ask(app_, u"Do you want to leave Tabelion?", u"QUESTION") == Answer::kYes) dialog.end(0);
}

void MainWindow::ChooseCategory(Dialog& dialog, const std::u16string& category) {
  app_.category = category;
  RefreshDatabaseList(dialog);
}

void MainWindow::OpenSelected(Dialog& dialog) {
  if (const auto file = Selected(dialog)) OpenDatabase(dialog, file->path);
}

void MainWindow::ShowInfo(Dialog& dialog) {
  if (const auto file = Selected(dialog)) ShowDatabaseInfo(app_, file->path);
  AfterDialog(dialog);
}

void MainWindow::About(Dialog& dialog) {
  ShowAbout(app_);
  AfterDialog(dialog);
}

void MainWindow::onNotice(Dialog& dialog, ControlId control, Notice notice) {
  if (control == kDatabaseList && notice == Notice::kSelectionChanged) find_.clear(dialog);
  if (control == kDatabaseList && notice == Notice::kActivated) OpenSelected(dialog);
}

std::optional<DatabaseFile> MainWindow::Selected(Dialog& dialog) const {
  const int row = dialog.list(kDatabaseList).selectedRow();
  if (row < 0 || static_cast<std::size_t>(row) >= list_.files.size()) return std::nullopt;
  return list_.files[static_cast<std::size_t>(row)];
}

void MainWindow::DeleteSelectedDatabase(Dialog& dialog) {
  const auto file = Selected(dialog);
  if (file && DeleteDatabase(app_, *file)) RefreshDatabaseList(dialog);
}

// To the other of the two volumes.
void MainWindow::TransferSelected(Dialog& dialog, bool move) {
  const auto file = Selected(dialog);
  const auto other = file ? OtherVolume(app_, *file) : std::nullopt;
  if (!other) return;
  const auto transfer = move ? MoveDatabase : CopyDatabase;
  if (transfer(app_, *file, *other, CopyQuestionDialog(app_)) && !session_ends_) {
    RefreshDatabaseList(dialog);
  }
  AfterDialog(dialog);
}

bool MainWindow::onKey(Dialog& dialog, const KeyPress& key) {
  const TypeToFind::Taken found =
      find_.onKey(dialog, key, [this](const std::u16string& typed) -> std::optional<int> {
        const auto named =
            std::find_if(list_.files.begin(), list_.files.end(), [&](const DatabaseFile& file) {
              return FoldedName(file.name).starts_with(FoldedName(typed));
            });
        if (named == list_.files.end()) return std::nullopt;
        return static_cast<int>(named - list_.files.begin());
      });
  if (found.row) dialog.list(kDatabaseList).selectRow(*found.row);
  return found.taken;
}

void MainWindow::onTimer(Dialog& dialog, int timer) {
  find_.onTimer(dialog, timer);
  if (timer == kAutoSaveTimer) AutoSave();
}

void MainWindow::AutoSave() {
  if (app_.preferences.auto_save_period_ms < 1 || !app_.record_screen_active ||
      !IsDatabaseOpen(app_) || saving_) {
    return;
  }
  saving_ = true;  // the timer goes on while the message below is up
  if (SaveDatabase(app_, SaveOccasion::kTimer) == SaveResult::kFailed) {
    ShowMessage(app_, SaveFailureText(app_), u"Update", MessageIcon::kError);
  }
  saving_ = false;
}

void MainWindow::onPaintRow(Dialog& dialog, ControlId control, int row, ListPainter& painter,
                            const Rect& area) {
  if (row < 0 || static_cast<std::size_t>(row) >= list_.files.size()) return;
  const RowColors& colors = RowColorsOf(painter.scheme());
  const bool selected = dialog.list(control).selectedRow() == row;
  const Color paper = selected ? colors.selected : colors.odd;
  painter.fill(area, paper);
  Rect cell = area;
  cell.x += 2;
  cell.width -= 4;
  const DatabaseFile& file = list_.files[static_cast<std::size_t>(row)];
  painter.text(cell, file.label, selected ? colors.selected_ink : colors.ink,
               TextWeight::kSemiBold);
  if (file.volume != Volume::kCard) return;
  cell.x += std::max(0, cell.width - kCardMarkWidth);
  painter.fill({cell.x, cell.y, kCardMarkWidth, cell.height}, paper);
  painter.text(cell, u"Card", selected ? colors.selected_ink : colors.muted, TextWeight::kNormal);
}

std::u16string MainWindow::rowText(Dialog&, ControlId, int row) {
  if (row < 0 || static_cast<std::size_t>(row) >= list_.files.size()) return {};
  const DatabaseFile& file = list_.files[static_cast<std::size_t>(row)];
  return file.volume == Volume::kCard ? file.label + u", Card" : file.label;
}

}  // namespace tabelion
