#include "records.h"

#include <algorithm>

namespace tabelion {

void setCriterion(Database& database, std::size_t criterion, int slot, std::string_view value1,
                  std::string_view value2) {
  FilterBlock& block = database.schema.filters[criterion];
  block = {};
  block.enabled = 1;
  block.field = static_cast<std::uint16_t>(slot);
  std::copy(value1.begin(), value1.end(), block.value1.begin());
  std::copy(value2.begin(), value2.end(), block.value2.begin());
}

}  // namespace tabelion
