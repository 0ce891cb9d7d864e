// The main window: the list of databases to choose from.
#pragma once

#include <string>
#include <vector>

#include "services/application.h"
#include "services/folders.h"
#include "shell/run.h"

namespace tabelion {

inline constexpr ControlId kDatabaseList = 103;

DialogTemplate MainWindowTemplate();

class MainWindow : public DialogHandler {
 public:
  MainWindow(Application& app, const StartOptions& options) : app_(app), options_(options) {}

  void onInit(Dialog& dialog) override;
  void onMessage(Dialog& dialog, int message) override;
  void onCommand(Dialog& dialog, CommandId command) override;
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
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
  bool OfferSamples();
  void ShowMenuBar(Dialog& dialog);
  void ChooseCategory(Dialog& dialog, CommandId command);
  void OpenSelected(Dialog& dialog);
  void AutoSave();

  Application& app_;
  const StartOptions& options_;
  DatabaseList list_;
  std::vector<std::u16string> categories_;  // as the soft key's menu shows them
  std::u16string left_key_text_ = u"Categories";
  bool saving_ = false;
};

}  // namespace tabelion
