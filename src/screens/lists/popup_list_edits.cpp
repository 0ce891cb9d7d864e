// What the screen of a pop-up list does to its items.
#include <fmt/format.h>

#include <span>
#include <utility>

#include "screens/lists/popup_list.h"
#include "screens/lists/popup_text.h"
#include "screens/records/undo.h"
#include "services/changes/popup_steps.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

std::u16string count(std::size_t number, const std::u16string& one, const std::u16string& more) {
  return number == 1 ? u"1 " + one : FromUtf8(std::to_string(number)) + u" " + more;
}

// What is asked before items are deleted; nothing when nobody would miss them.
std::u16string deleteQuestion(const std::u16string& name, std::size_t items,
                              const PopupUses& uses) {
  const bool is_one = items == 1;
  std::u16string what = u"\"" + name + u"\"";
  if (!is_one) what += u" and the " + count(items - 1, u"item", u"items") + u" below it";
  const std::u16string end = is_one ? u" Delete it?" : u" Delete them?";
  const std::u16string hidden = count(uses.hidden, u"enciphered record", u"enciphered records");
  if (uses.records > 0) {
    std::u16string question = what + (is_one ? u" is" : u" are") + u" used by " +
                              count(uses.records, u"record", u"records") +
                              u", which will show \"No Value\".";
    if (uses.hidden > 0)
      question += u" " + hidden + u" may use " + (is_one ? u"it" : u"them") + u" too.";
    return question + end;
  }
  if (uses.hidden > 0) {
    return what + u" may be used by " + hidden + u", which would show \"No Value\"." + end;
  }
  return is_one ? u"" : u"Delete " + what + u"?";
}

}  // namespace

void PopupListScreen::Replace(std::string step, PopupItems items) {
  WaitCursor waiting(app_);
  Database& database = CurrentDatabase(app_);
  ReplacePopupItems(app_.level().history, CurrentTarget(app_), std::move(step), slot_,
                    std::move(items), QuerySettingsOf(app_, database));
  app_.engine.steps.refresh(database);
  ++done_;
  undone_ = 0;
}

// At the end of its level an item stays where it is.
void PopupListScreen::MoveBy(Dialog& dialog, Edit edit) {
  PopupItems items = Items();
  const auto place = edit(items, Selected(dialog));
  if (!place) return;
  Replace("Move of popup item", std::move(items));
  ShowItem(dialog, *place);
}

void PopupListScreen::Demote(Dialog& dialog) {
  PopupItems items = Items();
  const std::size_t item = Selected(dialog);
  if (item == shown_.front()) {
    return ShowMessage(app_, u"There is no item before it on this level to go below.", u"Demote",
                       MessageIcon::kExclamation);
  }
  const auto place = demoteBranch(items, item);
  if (!place) {
    return ShowMessage(app_, u"A popup list has five levels at most.", u"Sorry!",
                       MessageIcon::kExclamation);
  }
  Replace("Demotion of popup item", std::move(items));
  ShowItem(dialog, *place);
}

void PopupListScreen::Promote(Dialog& dialog) {
  PopupItems items = Items();
  const auto place = promoteBranch(items, Selected(dialog));
  if (!place) {
    return ShowMessage(app_, u"The item is on the top level already.", u"Promote",
                       MessageIcon::kExclamation);
  }
  Replace("Promotion of popup item", std::move(items));
  ShowItem(dialog, *place);
}

// The text of an item, or of a new one for kNoItem, that no other on the level shown has.
std::optional<std::string> PopupListScreen::AskText(std::size_t item) {
  const auto is_taken = [&](const std::string& text) {
    if (text == kNoValueText) return true;
    for (const std::size_t other : shown_) {
      if (other != item && Items()[other].text == text) return true;
    }
    return false;
  };
  if (item == kNoItem) return AskPopupText(app_, {u"New", {}, is_taken});
  return AskPopupText(app_, {u"Rename", NameOf(item), is_taken});
}

void PopupListScreen::New(Dialog& dialog) {
  PopupItems items = Items();
  if (items.size() >= kMaxItems) {
    return ShowMessage(app_, u"You have reached the maximum number of popups allowed!", u"Sorry!",
                       MessageIcon::kExclamation);
  }
  const auto text = AskText(kNoItem);
  if (!text) return;
  PopupItem item{.key = freshItemKey(items, app_.platform.clock.local(), app_.engine.random),
                 .text = *text};
  const std::size_t place = insertItem(items, Selected(dialog), parent_, std::move(item));
  Replace("New popup item", std::move(items));
  ShowItem(dialog, place);
}

void PopupListScreen::Rename(Dialog& dialog) {
  PopupItems items = Items();
  const std::size_t item = Selected(dialog);
  const auto text = AskText(item);
  if (!text || *text == items[item].text) return;
  items[item].text = *text;
  Replace("Rename of popup item", std::move(items));
  ShowItem(dialog, item);
}

void PopupListScreen::Delete(Dialog& dialog) {
  PopupItems items = Items();
  const std::size_t item = Selected(dialog);
  const auto branch = std::span(items).subspan(item, branchEnd(items, item) - item);
  const std::size_t gone = branch.size();
  const PopupUses uses = countUses(CurrentDatabase(app_), slot_, branch);
  const std::u16string question = deleteQuestion(NameOf(item), gone, uses);
  if (!question.empty() && Ask(app_, question, u"Confirm Delete") != Answer::kYes) return;
  // The next on its level, else the one before it, is selected then.
  const std::size_t next = item;
  const bool is_last = shown_.back() == item;
  const std::size_t before = shown_.size() > 1 ? shown_[shown_.size() - 2] : kNoItem;
  eraseBranch(items, item);
  Replace(gone == 1 ? "Delete of popup item" : fmt::format("Delete of {} popup items", gone),
          std::move(items));
  ShowLevel(dialog, parent_, is_last ? before : next);
}

// The form or list below keeps its record: only what was done on this screen is taken back, and a
// new record stays the new one.
void PopupListScreen::Undo(Dialog& dialog) {
  if (done_ == 0 || !Step(dialog, &UndoStep)) return;
  --done_;
  ++undone_;
}

void PopupListScreen::Redo(Dialog& dialog) {
  if (undone_ == 0 || !Step(dialog, &RedoStep)) return;
  ++done_;
  --undone_;
}

bool PopupListScreen::Step(Dialog& dialog, bool (*step)(Application&)) {
  const std::size_t item = Selected(dialog) == kNoItem ? parent_ : Selected(dialog);
  const PopupKey key = item == kNoItem ? PopupKey{} : popupKey(Items()[item].key);
  Level& level = app_.level();
  const std::uint32_t current = level.current_record;
  if (!step(app_)) return false;
  if (level.new_record) level.current_record = current;
  ShowKey(dialog, key);
  return true;
}

}  // namespace tabelion
