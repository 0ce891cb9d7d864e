// The keys that a description gives the items of a pop-up when it names none itself.
#pragma once

#include <cstddef>

#include "engine/field_record.h"

namespace tabelion {

// The key of item `index` of the field in `slot`: "pdblb", the item's and the field's numbers
// counted from 1, zeros, the level. The same description always gives the same keys, so a value
// in one database made from it means the same item in every other.
ItemKey describedItemKey(int slot, std::size_t index, int level);

}  // namespace tabelion
