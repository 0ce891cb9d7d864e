// What was done to an open database, so that it can be taken back and done again.
//
// Everything that a person changes goes through Perform. The history is that of one state of the
// database: when records came, went or changed places in another way, what it held would hit other
// records, so it is empty from then on.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/schema_bytes.h"
#include "services/changes/step.h"

namespace tabelion {

struct SchemaCopy;

// A database that is changed, and the record on which its user stands.
struct ChangeTarget {
  Database& database;
  std::uint32_t& current_record;
};

class History {
 public:
  // What all steps together keep in memory. The oldest are forgotten, whole; the one that was done
  // last stays whatever its size, since most of it was in memory already.
  static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

  History() : History(kMostBytes) {}
  explicit History(std::size_t most_bytes);
  ~History();
  History(History&&) noexcept;
  History& operator=(History&&) noexcept;

  // Runs `change` and keeps what takes back all that it did to the records and, within the extent,
  // to the schema. When it did nothing, nothing is kept and what was taken back can still be done
  // again. A change inside another one is part of that.
  void Perform(ChangeTarget target, std::string name, const std::function<void()>& change,
               SchemaExtent extent = SchemaExtent::kSettings);
  // The same for a change that may turn out not to be wanted: when it returns false, all that it
  // did is taken back at once and nothing is kept. What it returned.
  bool Attempt(ChangeTarget target, std::string name, const std::function<bool()>& change,
               SchemaExtent extent = SchemaExtent::kSettings);
  // What belongs to the step that was performed last becomes part of it.
  void Amend(ChangeTarget target, const std::function<void()>& change,
             SchemaExtent extent = SchemaExtent::kSettings);

  // The name of the step that Undo would take back, Redo do again; null for none.
  const std::string* UndoName(const Database& database);
  const std::string* RedoName(const Database& database);
  // False when there is nothing to take back or do again. Afterwards the database holds, is as
  // dirty and has the same current record as before the step, or after it. The list of records
  // shown is the caller's to refresh.
  bool Undo(ChangeTarget target);
  bool Redo(ChangeTarget target);

  void Clear();
  std::size_t MemoryInUse() const { return bytes_; }

 private:
  struct Kept {
    Step step;
    std::size_t bytes = 0;
  };
  using Steps = std::deque<Kept>;  // the next one to be done at the back

  std::vector<Change> Watch(Database& database, const std::function<void()>& change,
                            SchemaExtent extent);
  bool Move(ChangeTarget target, Steps& from, Steps& to);
  void CatchUp(const Database& database);
  void Note(const Database& database);
  void Keep(ChangeTarget target, Step step);
  void Stand(ChangeTarget target, const Standing& standing);
  void Push(Steps& steps, Step step);
  Step Pop(Steps& steps);
  void ForgetOldest(Steps& steps, std::size_t kept);

  std::size_t most_bytes_;
  std::size_t bytes_ = 0;
  Steps undo_;
  Steps redo_;
  std::unique_ptr<SchemaCopy> copy_;
  // How the database was left.
  std::uint64_t arrangement_ = 0;
  std::uint64_t times_marked_dirty_ = 0;
  bool dirty_ = false;
};

}  // namespace tabelion
