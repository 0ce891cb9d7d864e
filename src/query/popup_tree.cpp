#include "query/popup_tree.h"

#include <algorithm>

namespace tabelion {
namespace {

using Place = PopupItems::iterator;

Place at(PopupItems& items, std::size_t place) {
  return items.begin() + static_cast<std::ptrdiff_t>(place);
}

int levelBelow(const PopupItems& items, std::size_t parent) {
  return parent == kNoItem ? 0 : items[parent].level() + 1;
}

int deepestLevel(const PopupItems& items, std::size_t item) {
  int deepest = 0;
  for (std::size_t i = item; i < branchEnd(items, item); ++i) {
    deepest = std::max(deepest, items[i].level());
  }
  return deepest;
}

void setBranchLevel(PopupItems& items, std::size_t item, int level) {
  const int by = level - items[item].level();
  for (std::size_t i = item, end = branchEnd(items, item); i < end; ++i) {
    items[i].key[kItemLevelOffset] = static_cast<std::uint8_t>(items[i].level() + by);
  }
}

// The item before this one with the same parent.
std::optional<std::size_t> siblingBefore(const PopupItems& items, std::size_t item) {
  const std::vector<std::size_t> siblings = childrenOf(items, parentOf(items, item));
  const auto here = std::find(siblings.begin(), siblings.end(), item);
  if (here == siblings.begin()) return std::nullopt;
  return *(here - 1);
}

}  // namespace

std::size_t branchEnd(const PopupItems& items, std::size_t item) {
  std::size_t end = item + 1;
  while (end < items.size() && items[end].level() > items[item].level()) ++end;
  return end;
}

std::size_t parentOf(const PopupItems& items, std::size_t item) {
  for (std::size_t before = item; before-- > 0;) {
    if (items[before].level() < items[item].level()) return before;
  }
  return kNoItem;
}

std::vector<std::size_t> childrenOf(const PopupItems& items, std::size_t parent) {
  std::vector<std::size_t> children;
  const std::size_t first = parent == kNoItem ? 0 : parent + 1;
  const std::size_t end = parent == kNoItem ? items.size() : branchEnd(items, parent);
  for (std::size_t i = first; i < end; i = branchEnd(items, i)) children.push_back(i);
  return children;
}

std::optional<std::size_t> moveBranchUp(PopupItems& items, std::size_t item) {
  const auto before = siblingBefore(items, item);
  if (!before) return std::nullopt;
  const int level = levelBelow(items, parentOf(items, item));
  const std::size_t end = branchEnd(items, item);
  setBranchLevel(items, *before, level);
  setBranchLevel(items, item, level);
  std::rotate(at(items, *before), at(items, item), at(items, end));
  return *before;
}

std::optional<std::size_t> moveBranchDown(PopupItems& items, std::size_t item) {
  const std::size_t next = branchEnd(items, item);
  if (next == items.size() || parentOf(items, next) != parentOf(items, item)) return std::nullopt;
  const std::size_t length = branchEnd(items, next) - next;
  moveBranchUp(items, next);
  return item + length;
}

std::optional<std::size_t> demoteBranch(PopupItems& items, std::size_t item) {
  const auto parent = siblingBefore(items, item);
  if (!parent) return std::nullopt;
  const int level = levelBelow(items, *parent);
  if (deepestLevel(items, item) - items[item].level() + level >= kPopupLevels) return std::nullopt;
  setBranchLevel(items, item, level);
  return item;
}

std::optional<std::size_t> promoteBranch(PopupItems& items, std::size_t item) {
  const std::size_t parent = parentOf(items, item);
  if (parent == kNoItem) return std::nullopt;
  const std::size_t end = branchEnd(items, item);
  const std::size_t parent_end = branchEnd(items, parent);
  setBranchLevel(items, item, items[parent].level());
  std::rotate(at(items, item), at(items, end), at(items, parent_end));
  return parent_end - (end - item);
}

void eraseBranch(PopupItems& items, std::size_t item) {
  items.erase(at(items, item), at(items, branchEnd(items, item)));
}

std::size_t insertItem(PopupItems& items, std::size_t sibling, std::size_t parent, PopupItem item) {
  std::size_t place = items.size();
  int level = levelBelow(items, parent);
  if (sibling != kNoItem) {
    place = branchEnd(items, sibling);
    level = items[sibling].level();
  } else if (parent != kNoItem) {
    place = parent + 1;
  }
  item.key[kItemLevelOffset] = static_cast<std::uint8_t>(level);
  items.insert(at(items, place), std::move(item));
  return place;
}

ItemKey freshItemKey(const PopupItems& items, const CalendarTime& local,
                     const RandomSource& random) {
  ItemKey key{};
  const auto isTaken = [&] {
    return std::any_of(items.begin(), items.end(), [&](const PopupItem& item) {
      return std::equal(key.begin(), key.begin() + kPopupKeySize, item.key.begin());
    });
  };
  auto serial = static_cast<std::uint16_t>(items.size());
  do {
    const HeadBlock stamp = makeStamp(local, ++serial, random);
    std::copy_n(stamp.begin(), kItemLevelOffset, key.begin());
  } while (isTaken());
  return key;
}

}  // namespace tabelion
