#include "shell/main_window.h"

#include <algorithm>
#include <utility>

#include "screens/record_list.h"
#include "screens/screen_numbers.h"
#include "services/message.h"
#include "services/modal.h"
#include "services/open_database.h"
#include "services/screen_text.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

constexpr int kStartMessage = 1025;
constexpr CommandId kOpenCommand = kActionCommand;
constexpr CommandId kExitCommand = 40006;
constexpr CommandId kRefreshCommand = 40027;
constexpr int kColumnMargin = 10;
constexpr Color kSelectedRow{64, 188, 255};
constexpr Color kPlainRow{255, 255, 255};
constexpr Color kInk{0, 0, 0};

}  // namespace

DialogTemplate MainWindowTemplate() {
  DialogTemplate dialog;
  dialog.resource = kChooserScreen;
  dialog.title = u"Tabelion";
  dialog.controls = {
      {.id = kDatabaseList, .kind = ControlKind::kList, .accessible_name = u"Databases"}};
  dialog.menu_bar.resource = 104;
  dialog.menu_bar.right = {.text = u"Menu",
                           .children = {{.command = kOpenCommand, .text = u"Open"},
                                        {.command = kRefreshCommand, .text = u"Refresh"},
                                        {.command = kExitCommand, .text = u"Exit"}}};
  return dialog;
}

void MainWindow::onInit(Dialog& dialog) {
  Layout(dialog);
  ShowMenuBar(dialog);
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
}

// What needs the window on the screen already: the list, its questions, the preferences.
void MainWindow::Start(Dialog& dialog) {
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
  app_.record_screen_active = false;
  app_.platform.instance.listen(
      [this, &dialog](const StartRequest& request) { OnRequest(dialog, request); });
  CarryOut(dialog, start_.request);
}

// False when a folder holds no database file at all.
bool MainWindow::RefreshDatabaseList(Dialog& dialog) {
  {
    WaitCursor waiting(app_);
    list_ = ListDatabases(app_, app_.category);
  }
  categories_ = {kAllCategories};
  for (const std::u16string& category : list_.categories) {
    if (category != kAllCategories && category != kUnfiled) categories_.push_back(category);
  }
  categories_.push_back(kUnfiled);
  ListControl& list = dialog.list(kDatabaseList);
  const int selected = list.selectedRow();
  const int count = static_cast<int>(list_.files.size());
  list.setRowCount(count);
  list.selectRow(std::clamp(selected, std::min(0, count - 1), count - 1));
  list.repaint();
  if (list_.found_files) left_key_text_ = app_.category;
  ShowMenuBar(dialog);
  if (!list_.found_files && list_.files.empty() && OfferSamples()) {
    return RefreshDatabaseList(dialog);
  }
  return list_.found_files;
}

// True when samples were installed.
// Compat: Yes leaves the question armed for the next time that the list is empty, only No stops
// it for good (Chooser.OffersSamplesUntilNo).
bool MainWindow::OfferSamples() {
  Settings& settings = app_.platform.settings;
  if (ReadNumberSetting(settings, Setting::kSampleDatabases).value_or(0) != 0) return false;
  const bool install = Ask(app_, u"Install Sample Database? (Y/N)", u"QUESTION");
  WriteNumberSetting(settings, Setting::kSampleDatabases, install ? 0 : 1);
  return install && InstallSampleDatabases(app_) > 0;
}

// The left soft key carries the category that is shown, its menu all of them.
void MainWindow::ShowMenuBar(Dialog& dialog) {
  MenuBar bar = MainWindowTemplate().menu_bar;
  bar.left.text = left_key_text_;
  if (categories_.empty()) categories_ = {kAllCategories, kUnfiled};
  CommandId command = kFirstListedCommand;
  for (const std::u16string& category : categories_) {
    bar.left.children.push_back(
        {.command = command++, .text = category, .checked = category == app_.category});
  }
  dialog.setMenuBar(bar);
}

void MainWindow::onCommand(Dialog& dialog, CommandId command) {
  switch (command) {
    case kOpenCommand:
      return OpenSelected(dialog);
    case kRefreshCommand:
      RefreshDatabaseList(dialog);
      return;
    case kExitCommand:
    case kBackCommand:
      return dialog.end(0);
    default:
      if (command >= kFirstListedCommand) ChooseCategory(dialog, command);
  }
}

void MainWindow::ChooseCategory(Dialog& dialog, CommandId command) {
  const auto index = static_cast<std::size_t>(command - kFirstListedCommand);
  if (index >= categories_.size()) return;
  app_.category = categories_[index];
  RefreshDatabaseList(dialog);
}

void MainWindow::onNotice(Dialog& dialog, ControlId control, Notice notice) {
  if (control == kDatabaseList && notice == Notice::kActivated) OpenSelected(dialog);
}

void MainWindow::OpenSelected(Dialog& dialog) {
  const int row = dialog.list(kDatabaseList).selectedRow();
  if (row < 0 || static_cast<std::size_t>(row) >= list_.files.size()) return;
  OpenDatabase(dialog, list_.files[static_cast<std::size_t>(row)].path);
}

void MainWindow::onTimer(Dialog&, int timer) {
  if (timer == kAutoSaveTimer) AutoSave();
}

void MainWindow::AutoSave() {
  if (app_.preferences.auto_save_period_ms < 1 || !app_.record_screen_active ||
      !IsDatabaseOpen(app_) || saving_) {
    return;
  }
  saving_ = true;  // the timer goes on while the message below is up
  if (!SaveCurrentDatabase(app_)) {
    ShowMessage(app_, u"ERROR:File could not be saved", u"Update", MessageIcon::kError);
  }
  saving_ = false;
}

void MainWindow::onPaintRow(Dialog& dialog, ControlId control, int row, ListPainter& painter,
                            const Rect& area) {
  const bool selected = dialog.list(control).selectedRow() == row;
  painter.fill(area, selected ? kSelectedRow : kPlainRow);
  Rect cell = area;
  cell.x += 2;
  cell.width -= 4;
  painter.text(cell, rowText(dialog, control, row), kInk, TextWeight::kSemiBold);
}

std::u16string MainWindow::rowText(Dialog&, ControlId, int row) {
  if (row < 0 || static_cast<std::size_t>(row) >= list_.files.size()) return {};
  return list_.files[static_cast<std::size_t>(row)].name;
}

}  // namespace tabelion
