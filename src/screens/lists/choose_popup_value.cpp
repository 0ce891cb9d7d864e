#include "screens/lists/choose_popup_value.h"

#include <algorithm>

#include "query/field_text.h"
#include "query/popup_tree.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kMenuLeft = 10;
constexpr CommandId kFirstItem = 1300;
constexpr CommandId kNoValueCommand = 3001;
constexpr CommandId kEditCommand = 3002;
constexpr CommandId kLevelUpCommand = 3003;
constexpr std::size_t kMostEntries = 60;

using Path = std::vector<std::size_t>;  // the item chosen at each level

// To the parent of the item that has the key; the top level where one of the levels is missing.
Path pathToParent(const FieldRecord& field, const PopupKey& key) {
  const PopupItems& items = field.items;
  const PopupItem* found = findItem(field, key);
  if (found == nullptr || found->level() >= kPopupLevels) return {};
  Path path(static_cast<std::size_t>(found->level()));
  auto item = static_cast<std::size_t>(found - items.data());
  for (std::size_t level = path.size(); level-- > 0;) {
    do {
      if (item-- == 0) return {};
    } while (items[item].level() != static_cast<int>(level));
    path[level] = item;
  }
  return path;
}

std::vector<std::size_t> itemsBelow(const PopupItems& items, const Path& path) {
  const int level = static_cast<int>(path.size());
  std::vector<std::size_t> below;
  if (level >= kPopupLevels) return below;
  for (std::size_t i = path.empty() ? 0 : path.back() + 1;
       i < items.size() && items[i].level() >= level; ++i) {
    if (items[i].level() == level && below.size() < kMostEntries) below.push_back(i);
  }
  return below;
}

class Chooser {
 public:
  Chooser(Application& app, const FieldRecord& field, const PopupMenu& menu)
      : app_(app), field_(field), menu_(menu) {}

  int Choose(PopupValue& value) {
    const PopupItem* const now = findItem(field_, value.key);
    Path path = pathToParent(field_, value.key);
    while (true) {
      const std::vector<std::size_t> shown = itemsBelow(field_.items, path);
      if (shown.empty() && !path.empty()) {
        value = ValueOf(field_.items[path.back()]);
        return kPopupChosen;
      }
      if (field_.items.empty() && !menu_.allow_edit) {
        value = {};
        return kPopupChosen;
      }
      const CommandId chosen = Show(shown, !path.empty(), now);
      switch (chosen) {
        case 0:
          return kPopupDismissed;
        case kNoValueCommand:
          value = {{}, FromUtf8(kNoValueText)};
          return kPopupNoValue;
        case kEditCommand:
          return kPopupEditList;
        case kLevelUpCommand:
          path.pop_back();
          break;
        default:
          path.push_back(static_cast<std::size_t>(chosen - kFirstItem));
      }
    }
  }

 private:
  PopupValue ValueOf(const PopupItem& item) const {
    return {popupKey(item.key), ScreenText(app_, item.text)};
  }
  CommandId Show(const std::vector<std::size_t>& shown, bool is_below, const PopupItem* now) {
    std::vector<MenuEntry> entries;
    if (is_below) entries.push_back({.command = kLevelUpCommand, .text = u"<- Back"});
    for (const std::size_t i : shown) {
      const PopupItem& item = field_.items[i];
      entries.push_back({.command = kFirstItem + static_cast<CommandId>(i),
                         .text = ScreenText(app_, item.text),
                         .checked = &item == now});
    }
    if (menu_.allow_no_value) {
      entries.push_back({.command = kNoValueCommand, .text = FromUtf8(kNoValueText)});
    }
    if (menu_.allow_edit) entries.push_back({.command = kEditCommand, .text = u"Edit Popup List"});
    if (entries.empty()) return 0;
    return app_.platform.dialogs.popupMenu({kMenuLeft, menu_.menu_top}, entries);
  }

  Application& app_;
  const FieldRecord& field_;
  const PopupMenu& menu_;
};

}  // namespace

int ChoosePopupValue(Application& app, const Database& database, const PopupMenu& menu,
                     PopupValue& value) {
  return Chooser(app, database.fields[static_cast<std::size_t>(menu.slot)], menu).Choose(value);
}

}  // namespace tabelion
