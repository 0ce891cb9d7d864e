#include "screens/arrange/choose_view.h"

#include "query/view.h"
#include "services/folders.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

ViewChange apply(Application& app, int view) {
  Database& database = CurrentDatabase(app);
  return applyView(database, view, QuerySettingsOf(app, database), &app.level().current_record);
}

}  // namespace

std::u16string ChooseView(Application& app, int view) {
  const WaitCursor waiting(app);
  ViewChange change;
  app.level().history.Perform(
      CurrentTarget(app), "Choice of view", [&] { change = apply(app, view); },
      SchemaExtent::kWhole);
  return ScreenText(app, change.switch_to);
}

void ApplyCurrentView(Application& app, ViewsWere views) {
  const DatabaseRecord& schema = CurrentDatabase(app).schema;
  const int view = schema.current_view;
  if (view >= viewCount(schema) || viewSettings(schema, view).switches_database) return;
  if (views == ViewsWere::kLeft) {
    ChooseView(app, view);
    return;
  }
  const WaitCursor waiting(app);
  app.level().history.Amend(
      CurrentTarget(app), [&] { apply(app, view); }, SchemaExtent::kWhole);
}

std::optional<std::string> DatabaseOfName(Application& app, const std::u16string& name) {
  // Of files with one name, those of the main storage come first.
  for (const DatabaseFile& file : ListDatabases(app, kAllCategories).files) {
    if (file.name == name) return file.path;
  }
  return std::nullopt;
}

}  // namespace tabelion
