#include "screens/records/undo.h"

#include <algorithm>

#include "services/screen_text.h"

namespace tabelion {
namespace {

StepEntry entryOf(const std::u16string& word, const std::string* step) {
  if (step == nullptr) return {word, false};
  return {word + u" " + FromUtf8(*step), true};
}

void showResult(Application& app) {
  const std::uint32_t count = CurrentDatabase(app).records.count();
  Level& level = app.level();
  level.current_record = std::min(level.current_record, count == 0 ? 0 : count - 1);
  app.engine.steps.refresh(CurrentDatabase(app));
}

}  // namespace

StepEntry UndoEntry(Application& app) {
  return entryOf(u"Undo", app.level().history.UndoName(CurrentDatabase(app)));
}

StepEntry RedoEntry(Application& app) {
  return entryOf(u"Redo", app.level().history.RedoName(CurrentDatabase(app)));
}

bool UndoStep(Application& app) {
  WaitCursor waiting(app);
  if (!app.level().history.Undo(CurrentTarget(app))) return false;
  showResult(app);
  return true;
}

bool RedoStep(Application& app) {
  WaitCursor waiting(app);
  if (!app.level().history.Redo(CurrentTarget(app))) return false;
  showResult(app);
  return true;
}

}  // namespace tabelion
