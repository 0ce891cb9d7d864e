#include "services/changes/popup_steps.h"

#include <utility>

namespace tabelion {

void ReplacePopupItems(History& history, ChangeTarget target, std::string name, int slot,
                       PopupItems items, const QuerySettings& settings) {
  history.Perform(
      target, std::move(name),
      [&] {
        replaceItems(target.database, slot, std::move(items), settings, &target.current_record);
      },
      SchemaExtent::kWhole);
}

}  // namespace tabelion
