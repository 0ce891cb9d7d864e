// The items of a pop-up as the tree that they are: what follows an item with a greater level lies
// below it. A branch is an item with all that lies below it, one run in the list.
//
// Every edit keeps branches whole and the keys of their items as they are, so records keep their
// values. Files may hold items that skip a level; they count as lying directly below the nearest
// item before them with a smaller one, and get the level that this means when they are moved.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "engine/field_record.h"

namespace tabelion {

using PopupItems = std::vector<PopupItem>;

inline constexpr int kPopupLevels = 5;
inline constexpr std::size_t kNoItem = SIZE_MAX;  // as a parent: the top level's

std::size_t branchEnd(const PopupItems& items, std::size_t item);
std::size_t parentOf(const PopupItems& items, std::size_t item);
std::vector<std::size_t> childrenOf(const PopupItems& items, std::size_t parent);

// Each gives the place where the item stands afterwards; none, with nothing changed, where there is
// no place to go or a branch would pass kPopupLevels.
std::optional<std::size_t> moveBranchUp(PopupItems& items, std::size_t item);
std::optional<std::size_t> moveBranchDown(PopupItems& items, std::size_t item);
// Below the item that stands before it on its level, as that one's last.
std::optional<std::size_t> demoteBranch(PopupItems& items, std::size_t item);
// Behind its parent's branch, so that those that followed it keep their parent.
std::optional<std::size_t> promoteBranch(PopupItems& items, std::size_t item);

void eraseBranch(PopupItems& items, std::size_t item);
// Its place: behind the branch of `sibling` on that one's level; else below `parent`, as the first
// there; without both at the end of the top level. The item gets its level there.
std::size_t insertItem(PopupItems& items, std::size_t sibling, std::size_t parent, PopupItem item);

// A key made like a record's stamp, which no item of the list has. Its level is 0.
ItemKey freshItemKey(const PopupItems& items, const CalendarTime& local,
                     const RandomSource& random);

}  // namespace tabelion
