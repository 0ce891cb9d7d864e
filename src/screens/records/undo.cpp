#include "screens/records/undo.h"

#include <algorithm>

#include "screens/program/ask_password.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

StepEntry entryOf(const std::u16string& word, const std::string* step) {
  if (step == nullptr) return {word, false};
  return {word + u" " + FromUtf8(*step), true};
}

bool take(Application& app, HistoryMove move) {
  if (!MoveInHistory(app, move, AskEncryptionPassword(app))) return false;
  WaitCursor waiting(app);
  const std::uint32_t count = CurrentDatabase(app).records.count();
  Level& level = app.level();
  level.current_record = std::min(level.current_record, count == 0 ? 0 : count - 1);
  app.engine.steps.refresh(CurrentDatabase(app));
  return true;
}

}  // namespace

StepEntry UndoEntry(Application& app) {
  return entryOf(u"Undo", app.level().history.UndoName(CurrentDatabase(app)));
}

StepEntry RedoEntry(Application& app) {
  return entryOf(u"Redo", app.level().history.RedoName(CurrentDatabase(app)));
}

bool UndoStep(Application& app) {
  return take(app, HistoryMove::kUndo);
}

bool RedoStep(Application& app) {
  return take(app, HistoryMove::kRedo);
}

}  // namespace tabelion
