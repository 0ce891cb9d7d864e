// The screen that lists the items of a pop-up field, level by level, for choosing one and, where
// the database allows it, for editing them. Every edit is written at once, as a step of its own;
// Undo takes back those that were made here.
//
// Keys: Right shows the items below the selected one, Left the level above; the action key is Done.
#pragma once

#include <vector>

#include "query/popup_tree.h"
#include "screens/kit/commands.h"
#include "screens/kit/type_to_find.h"
#include "screens/lists/choose_popup_value.h"

namespace tabelion {

inline constexpr ControlId kPopupItems = 1;  // "No Value" is row 0

inline constexpr CommandId kBackLevelCommand = 40092;
inline constexpr CommandId kCancelListCommand = 40100;

class PopupListScreen : public CommandScreen<PopupListScreen> {
 public:
  PopupListScreen(Application& app, int slot, PopupValue& value);

  CommandTable<PopupListScreen> Commands(Dialog& dialog);
  void onInit(Dialog& dialog) override;
  void onResize(Dialog& dialog) override;
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
  bool onKey(Dialog& dialog, const KeyPress& key) override;
  void onTimer(Dialog& dialog, int timer) override { find_.onTimer(dialog, timer); }
  void onPaintRow(Dialog& dialog, ControlId control, int row, ListPainter& painter,
                  const Rect& area) override;
  std::u16string rowText(Dialog& dialog, ControlId control, int row) override;

  int result = kPopupDismissed;

 private:
  using Edit = std::optional<std::size_t> (*)(PopupItems&, std::size_t);

  const PopupItems& Items() const;
  std::u16string NameOf(std::size_t item) const;
  std::u16string TextOfRow(int row) const;
  bool HasItemsBelow(std::size_t item) const;
  std::size_t Selected(Dialog& dialog) const;  // kNoItem for "No Value"
  void ShowLevel(Dialog& dialog, std::size_t parent, std::size_t selected);
  void ShowItem(Dialog& dialog, std::size_t item);
  void ShowKey(Dialog& dialog, const PopupKey& key);
  void BackLevel(Dialog& dialog);
  void NextLevel(Dialog& dialog);

  void Replace(std::string step, PopupItems items);
  void MoveBy(Dialog& dialog, Edit edit);
  void Demote(Dialog& dialog);
  void Promote(Dialog& dialog);
  std::optional<std::string> AskText(std::size_t item);
  void New(Dialog& dialog);
  void Rename(Dialog& dialog);
  void Delete(Dialog& dialog);
  void Undo(Dialog& dialog);
  void Redo(Dialog& dialog);
  bool Step(Dialog& dialog, bool (*step)(Application&));
  void Done(Dialog& dialog);
  void Cancel(Dialog& dialog);

  Application& app_;
  const int slot_;
  const bool may_edit_;
  PopupValue& value_;
  std::size_t parent_ = kNoItem;  // of the level shown
  std::vector<std::size_t> shown_;
  TypeToFind find_{{}};
  int done_ = 0;    // steps of this screen that Undo can take back
  int undone_ = 0;  // and that Redo can do again
};

// Whether the items of pop-up fields may be edited; asks without a message.
bool MayEditPopups(const Application& app);

// kPopupChosen or kPopupNoValue with the value, or kPopupDismissed. Opens at `value`.
int ShowPopupList(Application& app, int slot, PopupValue& value);

}  // namespace tabelion
