#include "screens/lists/popup_list.h"

#include <algorithm>
#include <utility>

#include "query/field_text.h"
#include "screens/kit/screen_numbers.h"
#include "screens/kit/text_row.h"
#include "screens/records/undo.h"
#include "security/access_rights.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr CommandId kMoveUp = 40093;
constexpr CommandId kMoveDown = 40094;
constexpr CommandId kDemote = 40095;
constexpr CommandId kPromote = 40096;
constexpr CommandId kNew = 40097;
constexpr CommandId kRename = 40098;
constexpr CommandId kDelete = 40099;
constexpr CommandId kNextLevel = 40226;
constexpr char16_t kBelowMark[] = u">";

}  // namespace

bool MayEditPopups(const Application& app) {
  const DatabaseRecord& schema = app.level().session.database->schema;
  return CheckSecurity(schema, Operation::kEditPopups) == kAccessGranted;
}

int ShowPopupList(Application& app, int slot, PopupValue& value) {
  DialogTemplate dialog;
  dialog.resource = kPopupListScreen;
  dialog.controls = {{.id = kPopupItems, .kind = ControlKind::kList, .accessible_name = u"Items"}};
  PopupListScreen screen(app, slot, value);
  RunModalDialog(app, dialog, screen);
  return screen.result;
}

PopupListScreen::PopupListScreen(Application& app, int slot, PopupValue& value)
    : app_(app), slot_(slot), may_edit_(MayEditPopups(app)), value_(value) {}

CommandTable<PopupListScreen> PopupListScreen::Commands(Dialog& dialog) {
  using Self = PopupListScreen;
  const Command<Self> done{kActionCommand, u"Done", &Self::Done};
  const bool is_below = parent_ != kNoItem;
  if (!may_edit_) {
    const Command<Self> cancel{kCancelListCommand, u"Cancel", &Self::Cancel};
    const Command<Self> back{kBackLevelCommand, u"Back Level", &Self::BackLevel};
    return {.resource = 102,
            .left = done,
            .right = is_below ? back : cancel,
            .keys = {{kBackCommand, {}, &Self::Cancel}}};
  }
  const std::size_t item = Selected(dialog);
  const bool is_item = item != kNoItem;
  const auto move = [](Edit edit) {
    return [edit](Self& self, Dialog& on) { self.MoveBy(on, edit); };
  };
  return {
      .resource = 149,
      .left = done,
      .right = {.text = u"Menu",
                .rows = {{kBackLevelCommand, u"Back Level", &Self::BackLevel, is_item && is_below},
                         {kMoveUp, u"Move Up", move(moveBranchUp), is_item},
                         {kMoveDown, u"Move Down", move(moveBranchDown), is_item},
                         {kDemote, u"Demote", &Self::Demote, is_item},
                         {kPromote, u"Promote", &Self::Promote, is_item},
                         {kNew, u"New", &Self::New},
                         {kRename, u"Rename", &Self::Rename, is_item},
                         {kDelete, u"Delete", &Self::Delete, is_item},
                         {kNextLevel, u"Next Level", &Self::NextLevel,
                          is_item && HasItemsBelow(item)},
                         {kUndoCommand, done_ > 0 ? UndoEntry(app_).text : u"Undo", &Self::Undo,
                          done_ > 0},
                         {kRedoCommand, undone_ > 0 ? RedoEntry(app_).text : u"Redo", &Self::Redo,
                          undone_ > 0},
                         {kCancelListCommand, u"Cancel", &Self::Cancel}}},
      .keys = {{kBackCommand, {}, &Self::Cancel}}};
}

void PopupListScreen::onInit(Dialog& dialog) {
  onResize(dialog);
  ShowKey(dialog, value_.key);
}

void PopupListScreen::onResize(Dialog& dialog) {
  const Size size = dialog.screenSize();
  ListControl& list = dialog.list(kPopupItems);
  list.setPlace({0, 0, size.width, size.height});
  list.setColumns({{u"Items", size.width}});
}

const PopupItems& PopupListScreen::Items() const {
  return CurrentDatabase(app_).fields[static_cast<std::size_t>(slot_)].items;
}

std::u16string PopupListScreen::NameOf(std::size_t item) const {
  return ScreenText(app_, Items()[item].text);
}

bool PopupListScreen::HasItemsBelow(std::size_t item) const {
  return branchEnd(Items(), item) > item + 1;
}

std::u16string PopupListScreen::TextOfRow(int row) const {
  if (row <= 0) return FromUtf8(kNoValueText);
  return NameOf(shown_[static_cast<std::size_t>(row - 1)]);
}

std::size_t PopupListScreen::Selected(Dialog& dialog) const {
  const int row = dialog.list(kPopupItems).selectedRow();
  return row <= 0 ? kNoItem : shown_[static_cast<std::size_t>(row - 1)];
}

// A level without items is left for the one above it.
void PopupListScreen::ShowLevel(Dialog& dialog, std::size_t parent, std::size_t selected) {
  shown_ = childrenOf(Items(), parent);
  if (shown_.empty() && parent != kNoItem) return ShowItem(dialog, parent);
  parent_ = parent;
  const FieldDefinition& field =
      CurrentDatabase(app_).schema.fields[static_cast<std::size_t>(slot_)];
  std::u16string title = ScreenText(app_, fieldName(field));
  if (parent != kNoItem) title += u": " + NameOf(parent);
  find_.setTitle(dialog, title);
  ListControl& list = dialog.list(kPopupItems);
  list.setRowCount(static_cast<int>(shown_.size()) + 1);
  const auto found = std::find(shown_.begin(), shown_.end(), selected);
  list.selectRow(found == shown_.end() ? 0 : static_cast<int>(found - shown_.begin()) + 1);
  list.repaint();
  list.focus();
  ShowCommands(dialog);
}

void PopupListScreen::ShowItem(Dialog& dialog, std::size_t item) {
  ShowLevel(dialog, parentOf(Items(), item), item);
}

void PopupListScreen::ShowKey(Dialog& dialog, const PopupKey& key) {
  const FieldRecord& field = CurrentDatabase(app_).fields[static_cast<std::size_t>(slot_)];
  const PopupItem* item = findItem(field, key);
  if (item == nullptr) return ShowLevel(dialog, kNoItem, kNoItem);
  ShowItem(dialog, static_cast<std::size_t>(item - field.items.data()));
}

void PopupListScreen::BackLevel(Dialog& dialog) {
  if (parent_ != kNoItem) ShowItem(dialog, parent_);
}

void PopupListScreen::NextLevel(Dialog& dialog) {
  const std::size_t item = Selected(dialog);
  if (item == kNoItem || !HasItemsBelow(item)) return;
  ShowLevel(dialog, item, item + 1);
}

void PopupListScreen::onNotice(Dialog& dialog, ControlId, Notice notice) {
  if (notice == Notice::kSelectionChanged) find_.clear(dialog);
  if (notice != Notice::kActivated) return;
  const std::size_t item = Selected(dialog);
  item != kNoItem&& HasItemsBelow(item) ? NextLevel(dialog) : Done(dialog);
}

bool PopupListScreen::onKey(Dialog& dialog, const KeyPress& key) {
  if (StepKey(dialog, key)) return true;
  if (key.key == Key::kLeft || key.key == Key::kRight) {
    key.key == Key::kLeft ? BackLevel(dialog) : NextLevel(dialog);
    return true;
  }
  const TypeToFind::Taken found =
      find_.onKey(dialog, key, [this](const std::u16string& typed) -> std::optional<int> {
        for (int row = 0; row <= static_cast<int>(shown_.size()); ++row) {
          if (FoldedName(TextOfRow(row)).starts_with(FoldedName(typed))) return row;
        }
        return std::nullopt;
      });
  if (found.row) dialog.list(kPopupItems).selectRow(*found.row);
  return found.taken;
}

void PopupListScreen::onPaintRow(Dialog& dialog, ControlId, int row, ListPainter& painter,
                                 const Rect& area) {
  if (row < 0 || row > static_cast<int>(shown_.size())) return;
  const bool is_parent = row > 0 && HasItemsBelow(shown_[static_cast<std::size_t>(row - 1)]);
  PaintTextRow(painter, area,
               {.text = TextOfRow(row),
                .mark = is_parent ? kBelowMark : u"",
                .selected = dialog.list(kPopupItems).selectedRow() == row});
}

std::u16string PopupListScreen::rowText(Dialog&, ControlId, int row) {
  if (row < 0 || row > static_cast<int>(shown_.size())) return {};
  const bool is_parent = row > 0 && HasItemsBelow(shown_[static_cast<std::size_t>(row - 1)]);
  return TextOfRow(row) + (is_parent ? u", has items below it" : u"");
}

void PopupListScreen::Done(Dialog& dialog) {
  const std::size_t item = Selected(dialog);
  if (item == kNoItem) {
    value_ = {{}, FromUtf8(kNoValueText)};
    result = kPopupNoValue;
  } else {
    value_ = {popupKey(Items()[item].key), NameOf(item)};
    result = kPopupChosen;
  }
  dialog.end(kDialogDone);
}

void PopupListScreen::Cancel(Dialog& dialog) {
  dialog.end(kDialogClosed);
}

}  // namespace tabelion
