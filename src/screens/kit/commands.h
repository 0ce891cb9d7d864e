// A screen's commands as one table. A row is a command: its number, its text in the menu, what it
// does, and whether it can be done now. Soft keys, menus and dispatch are made from the rows.
//
// A screen derives from CommandScreen and says its table as it is at this moment:
//
//   class NoteScreen : public CommandScreen<NoteScreen> {
//     CommandTable<NoteScreen> Commands(Dialog&) {
//       return {.left = {kDoneCommand, u"Done", &NoteScreen::Done},
//               .right = {kCancelCommand, u"Cancel", &NoteScreen::Cancel},
//               .keys = {{kActionCommand, {}, &NoteScreen::Done}}};
//     }
//
// The table is asked for anew whenever a menu opens and before a command is carried out, so its
// texts, its `enabled` and the rows themselves simply follow from the screen's state. A command
// whose row is disabled or missing does nothing, also when a key gives it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "screens/kit/screen_numbers.h"
#include "services/modal.h"

namespace tabelion {

template <class S>
struct Command {
  CommandId number = 0;   // 0: a menu of `rows`; a separator when there are none and no text
  std::u16string text{};  // none: only a key gives it
  std::function<void(S&, Dialog&)> run{};  // a member function of the screen, or a function over it
  bool enabled = true;
  bool checked = false;
  std::vector<Command> rows{};  // that the entry opens
};

template <class S>
struct CommandTable {
  int resource = 0;  // the menu bar's number
  Command<S> left{};
  Command<S> right{};
  std::vector<Command<S>> keys{};  // what no entry shows: mostly the action and the Back key
};

template <class S>
MenuEntry MenuEntryOf(const Command<S>& row) {
  MenuEntry entry{
      .command = row.number, .text = row.text, .enabled = row.enabled, .checked = row.checked};
  for (const Command<S>& child : row.rows) entry.children.push_back(MenuEntryOf(child));
  return entry;
}

template <class S>
MenuBar MenuBarOf(const CommandTable<S>& table) {
  return {table.resource, MenuEntryOf(table.left), MenuEntryOf(table.right)};
}

// The row of this number, also one within a menu; null when there is none.
template <class S>
const Command<S>* FindCommand(const Command<S>& row, CommandId number) {
  if (row.number == number && row.run) return &row;
  for (const Command<S>& child : row.rows) {
    if (const Command<S>* found = FindCommand(child, number)) return found;
  }
  return nullptr;
}
template <class S>
const Command<S>* FindCommand(const CommandTable<S>& table, CommandId number) {
  if (const Command<S>* found = FindCommand(table.left, number)) return found;
  if (const Command<S>* found = FindCommand(table.right, number)) return found;
  for (const Command<S>& key : table.keys) {
    if (const Command<S>* found = FindCommand(key, number)) return found;
  }
  return nullptr;
}

// The handler side of the table, over the class of handlers that `S` belongs to. `S` has
// `CommandTable<S> Commands(Dialog&)`, and calls ShowCommands in its onInit and whenever a soft
// key's own text has changed.
template <class S, class Handler = Screen>
class CommandScreen : public Handler {
 public:
  void onCommand(Dialog& dialog, CommandId number) final {
    const CommandTable<S> table = self().Commands(dialog);
    const Command<S>* row = FindCommand(table, number);
    if (row != nullptr && row->enabled) row->run(self(), dialog);
  }
  void onMenuOpening(Dialog& dialog, MenuEntry& soft_key) final {
    const MenuBar bar = MenuBarOf(self().Commands(dialog));
    const bool is_left = soft_key.text == bar.left.text;
    soft_key.children = is_left ? bar.left.children : bar.right.children;
  }

 protected:
  void ShowCommands(Dialog& dialog) { dialog.setMenuBar(MenuBarOf(self().Commands(dialog))); }

  // The keys for Undo and Redo give the commands of that name. True: it was one of them.
  bool StepKey(Dialog& dialog, const KeyPress& key) {
    if (key.key != Key::kUndo && key.key != Key::kRedo) return false;
    onCommand(dialog, key.key == Key::kUndo ? kUndoCommand : kRedoCommand);
    return true;
  }

 private:
  S& self() { return static_cast<S&>(*this); }
};

}  // namespace tabelion
