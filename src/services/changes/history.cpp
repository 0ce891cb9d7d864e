#include "services/changes/history.h"

#include <iterator>
#include <utility>

#include "services/changes/recorder.h"

namespace tabelion {

History::History(std::size_t most_bytes) : most_bytes_(most_bytes) {}
History::~History() = default;
History::History(History&&) noexcept = default;
History& History::operator=(History&&) noexcept = default;

void History::Perform(ChangeTarget target, std::string name, const std::function<void()>& change,
                      SchemaExtent extent) {
  const auto succeed = [&change] {
    change();
    return true;
  };
  Attempt(target, std::move(name), succeed, extent);
}

bool History::Attempt(ChangeTarget target, std::string name, const std::function<bool()>& change,
                      SchemaExtent extent) {
  Database& database = target.database;
  if (database.records.watcher() != nullptr) return change();
  CatchUp(database);
  Step step{std::move(name), {}, {}, {target.current_record, database.dirty}};
  bool wanted = false;
  step.changes = Watch(
      database, [&] { wanted = change(); }, extent);
  if (step.changes.empty()) {
    // What it marked as changed was nothing that could be seen; only its place is known.
    arrangement_ = database.records.arrangement();
    return wanted;
  }
  if (!wanted) {
    const Standing before = step.to;
    ApplyStep(database, std::move(step));
    Stand(target, before);
    return false;
  }
  Keep(target, std::move(step));
  return true;
}

// What was just done, by the step that takes it back.
void History::Keep(ChangeTarget target, Step step) {
  Database& database = target.database;
  // A save while the change was being made leaves neither state in the file.
  const bool was_dirty = dirty_ || database.times_marked_dirty != times_marked_dirty_;
  if (was_dirty && !database.dirty) step.to.dirty = true;
  setDirty(database);
  step.from = {target.current_record, true};
  Note(database);
  while (!redo_.empty()) Pop(redo_);
  Push(undo_, std::move(step));
}

// After a step was done.
void History::Stand(ChangeTarget target, const Standing& standing) {
  target.database.dirty = standing.dirty;
  target.current_record = standing.current_record;
  Note(target.database);
}

void History::Amend(ChangeTarget target, const std::function<void()>& change, SchemaExtent extent) {
  Database& database = target.database;
  CatchUp(database);
  if (undo_.empty() || database.records.watcher() != nullptr) return change();
  std::vector<Change> changes = Watch(database, change, extent);
  if (changes.empty()) return;
  Step step = Pop(undo_);
  step.changes.insert(step.changes.begin(), std::make_move_iterator(changes.begin()),
                      std::make_move_iterator(changes.end()));
  Keep(target, std::move(step));
}

std::vector<Change> History::Watch(Database& database, const std::function<void()>& change,
                                   SchemaExtent extent) {
  if (!copy_) copy_ = std::make_unique<SchemaCopy>();
  StepRecorder recorder(database, extent, *copy_);
  change();
  return recorder.Finish();
}

const std::string* History::UndoName(const Database& database) {
  CatchUp(database);
  return undo_.empty() ? nullptr : &undo_.back().step.name;
}

const std::string* History::RedoName(const Database& database) {
  CatchUp(database);
  return redo_.empty() ? nullptr : &redo_.back().step.name;
}

bool History::Undo(ChangeTarget target) {
  return Move(target, undo_, redo_);
}

bool History::Redo(ChangeTarget target) {
  return Move(target, redo_, undo_);
}

bool History::Move(ChangeTarget target, Steps& from, Steps& to) {
  Database& database = target.database;
  CatchUp(database);
  if (from.empty() || database.records.watcher() != nullptr) return false;
  Step step = Pop(from);
  step.from.dirty = database.dirty;  // it may have been saved since
  const Standing standing = step.to;
  step = ApplyStep(database, std::move(step));
  Stand(target, standing);
  Push(to, std::move(step));
  return true;
}

void History::Clear() {
  undo_.clear();
  redo_.clear();
  bytes_ = 0;
}

// Whether the database is still the one that the steps lead away from, and whether they lead to
// what its file holds: after a save, or a change that is no step, none of them does.
void History::CatchUp(const Database& database) {
  if (database.records.arrangement() != arrangement_) Clear();
  const bool saved = dirty_ && !database.dirty;
  if (saved || database.times_marked_dirty != times_marked_dirty_) {
    for (Steps* steps : {&undo_, &redo_}) {
      for (Kept& kept : *steps) kept.step.to.dirty = true;
    }
  }
  Note(database);
}

void History::Note(const Database& database) {
  arrangement_ = database.records.arrangement();
  times_marked_dirty_ = database.times_marked_dirty;
  dirty_ = database.dirty;
}

void History::Push(Steps& steps, Step step) {
  const std::size_t bytes = MemoryOf(step);
  bytes_ += bytes;
  steps.push_back({std::move(step), bytes});
  ForgetOldest(undo_, &steps == &undo_ ? 1 : 0);
  ForgetOldest(redo_, &steps == &redo_ ? 1 : 0);
}

Step History::Pop(Steps& steps) {
  Kept kept = std::move(steps.back());
  steps.pop_back();
  bytes_ -= kept.bytes;
  return std::move(kept.step);
}

void History::ForgetOldest(Steps& steps, std::size_t kept) {
  while (bytes_ > most_bytes_ && steps.size() > kept) {
    bytes_ -= steps.front().bytes;
    steps.pop_front();
  }
}

}  // namespace tabelion
