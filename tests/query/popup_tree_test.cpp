#include "query/popup_tree.h"

#include <gtest/gtest.h>

namespace tabelion {
namespace {

// A tree in one line: the items' names, each behind a dot per level.
PopupItems tree(const std::string& line) {
  PopupItems items;
  for (std::size_t i = 0; i < line.size(); ++i) {
    PopupItem item;
    while (line[i] == '.') ++i, ++item.key[kItemLevelOffset];
    item.text = std::string(1, line[i]);
    item.key[0] = static_cast<std::uint8_t>(line[i]);
    items.push_back(item);
  }
  return items;
}
std::string lineOf(const PopupItems& items) {
  std::string line;
  for (const PopupItem& item : items) {
    EXPECT_EQ(item.key[0], static_cast<std::uint8_t>(item.text[0]));
    line += std::string(static_cast<std::size_t>(item.level()), '.') + item.text;
  }
  return line;
}

using Edit = std::optional<std::size_t> (*)(PopupItems&, std::size_t);
// The tree after an edit of the item named, which the result must point at; "-" when refused.
std::string after(Edit edit, const std::string& line, char name) {
  PopupItems items = tree(line);
  std::size_t item = 0;
  while (items[item].text[0] != name) ++item;
  const auto place = edit(items, item);
  if (!place) {
    EXPECT_EQ(lineOf(items), line);
    return "-";
  }
  EXPECT_EQ(items[*place].text[0], name);
  return lineOf(items);
}

TEST(PopupTree, BranchesMoveWhole) {
  const std::string line = "a.b..c.dAe";
  EXPECT_EQ(after(moveBranchUp, line, 'A'), "Aa.b..c.de");
  EXPECT_EQ(after(moveBranchUp, line, 'd'), "a.d.b..cAe");
  EXPECT_EQ(after(moveBranchUp, line, 'b'), "-");
  EXPECT_EQ(after(moveBranchUp, line, 'a'), "-");
  EXPECT_EQ(after(moveBranchDown, line, 'a'), "Aa.b..c.de");
  EXPECT_EQ(after(moveBranchDown, line, 'b'), "a.d.b..cAe");
  EXPECT_EQ(after(moveBranchDown, line, 'd'), "-");  // the next one has another parent
  EXPECT_EQ(after(moveBranchDown, line, 'e'), "-");
}

TEST(PopupTree, DemotedAndPromotedItemsTakeTheirsAlongAndLeaveTheOthers) {
  EXPECT_EQ(after(demoteBranch, "a.bA.ce", 'A'), "a.b.A..ce");
  EXPECT_EQ(after(demoteBranch, "a.b.c", 'b'), "-");  // nothing before it to go below
  EXPECT_EQ(after(demoteBranch, "a.b..c...dA.e", 'A'), "a.b..c...d.A..e");
  EXPECT_EQ(after(demoteBranch, "aA.b..c...d....e", 'A'), "-");  // a sixth level
  EXPECT_EQ(after(promoteBranch, "a.b..c.d..eA", 'b'), "a.d..eb.cA");
  EXPECT_EQ(after(promoteBranch, "a.b..c.d", 'c'), "a.b.c.d");
  EXPECT_EQ(after(promoteBranch, "a.b", 'a'), "-");
}

TEST(PopupTree, ItemsThatSkipALevelBelongToTheNearestBefore) {
  const PopupItems items = tree("..aA..b.c");
  EXPECT_EQ(parentOf(items, 0), kNoItem);
  EXPECT_EQ(childrenOf(items, kNoItem), (std::vector<std::size_t>{0, 1}));
  EXPECT_EQ(childrenOf(items, 1), (std::vector<std::size_t>{2, 3}));
  EXPECT_EQ(after(moveBranchUp, "..aA..b.c", 'c'), "..aA.c.b");
  EXPECT_EQ(after(moveBranchDown, "..aA..b.c", 'a'), "A..b.ca");
  EXPECT_EQ(after(promoteBranch, "A..b", 'b'), "Ab");
}

TEST(PopupTree, NewItemsHaveAPlaceAndAKeyOfTheirOwn) {
  const auto with = [](std::size_t sibling, std::size_t parent) {
    PopupItems items = tree("a.b..cd");
    const std::size_t place = insertItem(items, sibling, parent, tree("N")[0]);
    EXPECT_EQ(items[place].text, "N");
    return lineOf(items);
  };
  EXPECT_EQ(with(kNoItem, kNoItem), "a.b..cdN");
  EXPECT_EQ(with(0, kNoItem), "a.b..cNd");  // its own items stay below it
  EXPECT_EQ(with(1, 0), "a.b..c.Nd");
  EXPECT_EQ(with(kNoItem, 0), "a.N.b..cd");

  FieldRecord field;  // every key of the same minute and the same random number
  const auto isTaken = [&](const ItemKey& key) {
    return findItem(field, ByteView(key).first(kPopupKeySize)) != nullptr;
  };
  const auto fresh = [&] {
    return freshItemKey(field.items, {2024, 2, 29, 13}, [] { return 4u; });
  };
  for (int i = 0; i < 3; ++i) {
    PopupItem item{.key = fresh(), .text = "x"};
    EXPECT_FALSE(isTaken(item.key));
    EXPECT_EQ(item.level(), 0);
    field.items.insert(field.items.begin(), item);
  }
  eraseBranch(field.items, 2);  // so that the number of items is one that a key has
  EXPECT_FALSE(isTaken(fresh()));
}

}  // namespace
}  // namespace tabelion
