#include "query/filter.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "engine/packed_record.h"
#include "query/field_text.h"
#include "query/filter_criterion.h"

namespace tabelion {
namespace {

using Criteria = std::array<FilterBlock, kFilterCriteria>;

// Joins the criteria from left to right, given what each one's test gave.
class Evaluation {
 public:
  // `results` has a bit for each criterion that is enabled, in their order.
  Evaluation(const std::vector<FilterBlock>& enabled, unsigned results)
      : enabled_(enabled), results_(results) {}

  bool run() { return group(false); }

 private:
  // What stands from here on to the end; inside a group, to the ")" that closes it.
  bool group(bool is_nested) {
    std::optional<bool> running;
    while (next_ < enabled_.size()) {
      const FilterBlock& criterion = enabled_[next_];
      // The first one in a group is what opened it.
      const bool opens = (criterion.grouping & kFilterOpens) != 0 && (!is_nested || running);
      bool closes = false;
      bool result;
      if (opens) {
        result = group(true);
      } else {
        result = (results_ >> next_ & 1) != (criterion.mode & kFilterNot);
        closes = is_nested && (criterion.grouping & kFilterCloses) != 0;
        ++next_;
      }
      const bool is_or = (criterion.mode & kFilterOr) != 0;
      running = !running ? result : is_or ? *running || result : *running && result;
      if (closes) break;
    }
    return running.value_or(true);
  }

  const std::vector<FilterBlock>& enabled_;
  unsigned results_;
  std::size_t next_ = 0;
};

// Whether a record passes, for every way in which up to six tests can turn out: bit r is the answer
// where the bits of r are their results. A test that is not there changes nothing.
using TruthTable = std::uint64_t;
static_assert(1 << kFilterCriteria == 64);

TruthTable truthTable(const std::vector<FilterBlock>& enabled) {
  TruthTable table = 0;
  for (unsigned results = 0; results < 64; ++results) {
    if (Evaluation(enabled, results).run()) table |= TruthTable{1} << results;
  }
  return table;
}

// The table once one test's result is known, whatever that test would give.
TruthTable withResult(TruthTable table, std::size_t test, bool result) {
  TruthTable known = 0;
  for (unsigned results = 0; results < 64; ++results) {
    const unsigned bit = 1u << test;
    const unsigned source = result ? results | bit : results & ~bit;
    known |= (table >> source & 1) << results;
  }
  return known;
}

// The values of a record's slots, each looked for once and no further than asked for.
class SlotCache {
 public:
  explicit SlotCache(ByteView record) : walker_(record) {}

  std::optional<ByteView> value(int slot) {
    const auto index = static_cast<std::size_t>(slot);
    while (count_ <= index) {
      const auto next = walker_.next();
      if (!next) return std::nullopt;
      values_[count_++] = {next->data(), next->size()};
    }
    return ByteView(values_[index].begin, values_[index].size);
  }

 private:
  struct Value {
    const std::uint8_t* begin;
    std::size_t size;
  };
  SlotWalker walker_;
  std::size_t count_ = 0;
  std::array<Value, kFieldSlots> values_;  // the first count_ are set
};

}  // namespace

// The criteria as a tree of tests, the cheapest first: every test is without effects, so that none
// is made whose result cannot change the answer.
struct RecordFilter::Prepared {
  static constexpr int kPasses = -1;
  static constexpr int kFails = -2;
  struct Step {
    std::size_t test = 0;
    int when_failed = kFails;  // a step, kPasses or kFails
    int when_passed = kPasses;
  };

  explicit Prepared(const Database& of) : database(of) {}

  const Database& database;
  std::vector<CriterionTest> tests;
  std::vector<Step> steps;
  int first = kPasses;
  std::optional<LinkFilter> link;
  FormatSettings formats;  // for the link filter's text
  const LookupText* lookup = nullptr;

  int addSteps(TruthTable table, std::span<const std::size_t> order) {
    if (table == 0) return kFails;
    if (~table == 0) return kPasses;
    const std::size_t test = order.front();
    const TruthTable failed = withResult(table, test, false);
    const TruthTable passed = withResult(table, test, true);
    if (failed == passed) return addSteps(table, order.subspan(1));
    const int index = static_cast<int>(steps.size());
    steps.push_back({test});
    const int when_failed = addSteps(failed, order.subspan(1));
    const int when_passed = addSteps(passed, order.subspan(1));
    steps[static_cast<std::size_t>(index)].when_failed = when_failed;
    steps[static_cast<std::size_t>(index)].when_passed = when_passed;
    return index;
  }

  void prepare(const Criteria& criteria, const QuerySettings& settings) {
    std::vector<FilterBlock> enabled;
    for (const FilterBlock& criterion : criteria) {
      if (criterion.enabled == 0) continue;
      enabled.push_back(criterion);
      tests.emplace_back(database, criterion, settings);
    }
    std::vector<std::size_t> order(tests.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      return tests[a].cost() < tests[b].cost();
    });
    first = addSteps(truthTable(enabled), order);
  }

  bool matchesLink(ByteView record) const {
    const TextOptions options{.capacity = kNoBound, .raw = true, .lookup = lookup};
    return fieldText(database, record, link->slot, formats, options).text == link->text;
  }

  bool passes(ByteView record) const {
    if (link && !matchesLink(record)) return false;
    if (first < 0) return first == kPasses;
    SlotCache slots(record);
    int at = first;
    while (at >= 0) {
      const Step& step = steps[static_cast<std::size_t>(at)];
      const CriterionTest& test = tests[step.test];
      const auto value = slots.value(test.slot());
      at = value && test.passes(*value) ? step.when_passed : step.when_failed;
    }
    return at == kPasses;
  }
};

bool isFilterInUse(const DatabaseRecord& schema) {
  return std::any_of(schema.filters.begin(), schema.filters.end(),
                     [](const FilterBlock& criterion) { return criterion.enabled != 0; });
}

RecordFilter::RecordFilter(const Database& database, const QuerySettings& settings,
                           const LinkFilter* link)
    : RecordFilter(database, database.schema.filters, settings, link) {}

RecordFilter::RecordFilter(const Database& database, const Criteria& criteria,
                           const QuerySettings& settings, const LinkFilter* link)
    : prepared_(std::make_unique<Prepared>(database)) {
  prepared_->prepare(criteria, settings);
  if (!link) return;
  prepared_->link = *link;
  prepared_->formats = settings.formats;
  prepared_->lookup = settings.lookup;
}

RecordFilter::~RecordFilter() = default;

bool RecordFilter::passes(ByteView record) const {
  return prepared_->passes(record);
}

bool RecordFilter::passesEverything() const {
  return !prepared_->link && prepared_->tests.empty();
}

std::size_t RecordFilter::reachIn(ByteView record) const {
  if (prepared_->first < 0) return 0;
  const auto& step = prepared_->steps[static_cast<std::size_t>(prepared_->first)];
  return slotEnd(record, prepared_->tests[step.test].slot());
}

bool recordPassesCriterion(const Database& database, int criterion, ByteView record,
                           const QuerySettings& settings) {
  if (criterion < 0 || criterion >= kFilterCriteria) return false;
  const CriterionTest test(database, database.schema.filters[static_cast<std::size_t>(criterion)],
                           settings);
  const auto value = slotValue(record, test.slot());
  return value && test.passes(*value);
}

void collectPositions(const Database& database, const RecordFilter& filter, bool passing,
                      std::vector<std::uint32_t>& positions) {
  const RecordStore& records = database.records;
  const std::uint32_t count = records.count();
  positions.clear();
  if (filter.passesEverything()) {
    positions.resize(passing ? count : 0);
    std::iota(positions.begin(), positions.end(), 0u);
    return;
  }
  const std::size_t reach = count > 0 ? filter.reachIn(records[0].bytes()) : 0;
  for (std::uint32_t position = 0; position < count; ++position) {
    records.fetchAhead(position, reach);
    if (filter.passes(records[position].bytes()) == passing) positions.push_back(position);
  }
}

void rebuildFilterIndex(Database& database, const QuerySettings& settings, const LinkFilter* link) {
  collectPositions(database, RecordFilter(database, settings, link), true, database.record_index);
  database.needs_refresh = false;
}

}  // namespace tabelion
