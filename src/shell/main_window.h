// The main window: the list of databases to choose from.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "screens/kit/commands.h"
#include "screens/kit/type_to_find.h"
#include "services/application.h"
#include "services/folders.h"
#include "shell/run.h"

namespace tabelion {

inline constexpr ControlId kDatabaseList = 103;
inline constexpr int kAfterDialogMessage = 1026;  // posted by what had to wait for a box to go

DialogTemplate MainWindowTemplate();

struct MainWindowStart {
  std::string code_page;  // of databases that carry none, for this run; empty: the user's
  StartRequest request;   // what the program was started for
  AlarmStep alarm;
};

class MainWindow : public CommandScreen<MainWindow, DialogHandler> {
 public:
  MainWindow(Application& app, MainWindowStart start) : app_(app), start_(std::move(start)) {}

  // Why the window was left.
  bool SessionEnds() const { return session_ends_; }

  CommandTable<MainWindow> Commands(Dialog& dialog);
  void onInit(Dialog& dialog) override;
  void onMessage(Dialog& dialog, int message) override;
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
  bool onKey(Dialog& dialog, const KeyPress& key) override;
  void onTimer(Dialog& dialog, int timer) override;
  void onActivate(Dialog& dialog) override { dialog.list(kDatabaseList).focus(); }
  void onResize(Dialog& dialog) override { Layout(dialog); }
  void onPaintRow(Dialog& dialog, ControlId list, int row, ListPainter& painter,
                  const Rect& area) override;
  std::u16string rowText(Dialog& dialog, ControlId list, int row) override;

 private:
  void Layout(Dialog& dialog);
  void Start(Dialog& dialog);
  bool RefreshDatabaseList(Dialog& dialog);
  void ShowDatabases(Dialog& dialog);
  bool OfferSamples();
  std::vector<Command<MainWindow>> CategoryRows() const;
  void ChooseCategory(Dialog& dialog, const std::u16string& category);
  std::optional<DatabaseFile> Selected(Dialog& dialog) const;
  void OpenSelected(Dialog& dialog);
  void ShowInfo(Dialog& dialog);
  void About(Dialog& dialog);
  void Refresh(Dialog& dialog) { RefreshDatabaseList(dialog); }
  void Back(Dialog& dialog);
  void Exit(Dialog& dialog) { dialog.end(0); }
  void DeleteSelectedDatabase(Dialog& dialog);
  void TransferSelected(Dialog& dialog, bool move);
  void AutoSave();

  // What comes from outside: another start, the desktop, the end of the session.
  void OnRequest(Dialog& dialog, const StartRequest& request);
  void CarryOut(Dialog& dialog, const StartRequest& request);
  void Leave(Dialog& dialog);
  void HandleCommandLine(Dialog& dialog, const std::string& command_line);
  void HandleOpenFile(Dialog& dialog, const std::string& path);
  void OpenDatabase(Dialog& dialog, const std::string& path,
                    std::optional<std::uint32_t> record = std::nullopt);
  void AfterDialog(Dialog& dialog);
  bool IsOpen(const std::string& path) const;

  Application& app_;
  const MainWindowStart start_;
  DatabaseList list_;
  std::vector<std::u16string> categories_{kAllCategories, kUnfiled};  // that the menu shows
  std::u16string left_key_text_ = u"Categories";
  TypeToFind find_{u"Tabelion"};
  bool saving_ = false;
  std::string open_next_;  // asked for from outside, while others are being closed
  bool session_ends_ = false;
};

}  // namespace tabelion
