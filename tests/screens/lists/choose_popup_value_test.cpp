#include "screens/lists/choose_popup_value.h"

#include <gtest/gtest.h>

#include "support/phone_world.h"

namespace tabelion {
namespace {

class ChoosePopup : public testing::Test {
 protected:
  ChoosePopup() { database.fields.front() = {}; }

  // Items named by their level and a letter: "0a", "1b".
  void fill(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      PopupItem item{.text = name};
      item.key[0] = static_cast<std::uint8_t>(database.fields[0].items.size() + 1);
      item.key[kItemLevelOffset] = static_cast<std::uint8_t>(name[0] - '0');
      database.fields[0].items.push_back(item);
    }
  }
  PopupKey keyOf(const std::string& name) {
    for (const PopupItem& item : database.fields[0].items) {
      if (item.text == name) return popupKey(item.key);
    }
    return {{0xEE}};
  }
  // What is chosen in each menu, one after the other, then the result.
  void walk(const std::vector<const char16_t*>& chosen, int result, const std::string& text) {
    for (const char16_t* choice : chosen) world.phone.offers(choice);
    Application app(world.platform);
    world.phone.play([&] {
      EXPECT_EQ(ChoosePopupValue(app, database, menu, value), result);
      EXPECT_EQ(narrow(value.text), text);
    });
  }

  PhoneWorld world;
  Database database;
  PopupMenu menu{.allow_no_value = true, .allow_edit = true};
  PopupValue value;
};

TEST_F(ChoosePopup, WalksTheTreeToAnItemThatHasNoneBelow) {
  fill({"0a", "1b", "2c", "1d", "0e", "1f"});
  walk({u"0a", u"1b", u"<- Back", u"1d"}, kPopupChosen, "1d");  // and not those below 0e
  EXPECT_EQ(value.key, keyOf("1d"));

  value = {keyOf("2c"), u"2c"};  // opens where it stands
  walk({u"<- Back", u"<- Back", u"0e", u"No Value"}, kPopupNoValue, "No Value");
  EXPECT_EQ(value.key, PopupKey{});

  value = {keyOf("gone"), u"before"};
  walk({u"0a", u""}, kPopupDismissed, "before");  // from the top level
  EXPECT_EQ(value.key, keyOf("gone"));
}

TEST_F(ChoosePopup, GoesFiveLevelsDown) {
  fill({"0a", "1b", "2c", "3d", "4e", "5f"});
  walk({u"0a", u"1b", u"2c", u"3d", u"4e"}, kPopupChosen, "4e");
  value.key = keyOf("5f");  // from a program that knew more levels
  walk({u"0a", u""}, kPopupDismissed, "4e");
}

TEST_F(ChoosePopup, EmptyListIsAnEmptyValueOrAskedToBeFilled) {
  value = {keyOf("gone"), u"before"};
  walk({u"Edit Popup List"}, kPopupEditList, "before");
  menu.allow_edit = false;
  walk({}, kPopupChosen, "");
  EXPECT_EQ(value.key, PopupKey{});
}

}  // namespace
}  // namespace tabelion
