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
  // The texts that the menus of the walk offer, then the result.
  void walk(int result, const std::string& text) {
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
  world.phone.offers(u"0a");
  world.phone.offers(u"1b");
  world.phone.offers(u"<- Back");
  world.phone.offers(u"1d");  // and not those below 0e
  walk(kPopupChosen, "1d");
  EXPECT_EQ(value.key, keyOf("1d"));

  value = {keyOf("2c"), u"2c"};  // opens where it stands
  world.phone.offers(u"<- Back");
  world.phone.offers(u"<- Back");
  world.phone.offers(u"0e");
  world.phone.offers(u"No Value");
  walk(kPopupNoValue, "No Value");
  EXPECT_EQ(value.key, PopupKey{});

  value = {keyOf("gone"), u"before"};
  world.phone.offers(u"0a");  // at the top level
  world.phone.offers(u"");
  walk(kPopupDismissed, "before");
  EXPECT_EQ(value.key, keyOf("gone"));
  world.phone.offers(u"Edit Popup List");
  walk(kPopupEditList, "before");
}

TEST_F(ChoosePopup, GoesFiveLevelsDown) {
  fill({"0a", "1b", "2c", "3d", "4e", "5f"});
  for (const char16_t* name : {u"0a", u"1b", u"2c", u"3d", u"4e"}) world.phone.offers(name);
  walk(kPopupChosen, "4e");
  value.key = keyOf("5f");  // from a program that knew more levels
  world.phone.offers(u"0a");
  world.phone.offers(u"");
  walk(kPopupDismissed, "4e");
}

TEST_F(ChoosePopup, EmptyListIsAnEmptyValueOrAskedToBeFilled) {
  value = {keyOf("gone"), u"before"};
  world.phone.offers(u"Edit Popup List");
  walk(kPopupEditList, "before");
  menu.allow_edit = false;
  walk(kPopupChosen, "");
  EXPECT_EQ(value.key, PopupKey{});
}

}  // namespace
}  // namespace tabelion
