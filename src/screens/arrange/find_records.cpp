#include "screens/arrange/find_records.h"

#include <algorithm>

#include "query/find.h"
#include "screens/arrange/search_database.h"
#include "screens/kit/long_work.h"
#include "services/message.h"
#include "services/modal.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr std::uint32_t kRecordsAtOnce = 1024;

int findFromRecord(Application& app, std::uint32_t start) {
  const Database& database = CurrentDatabase(app);
  const QuerySettings settings = QuerySettingsOf(app, database);
  const RecordFinder finder(database, searchSettings(database.schema), settings);
  const std::uint32_t count = database.records.count();
  FoundField found;
  LongWork work{.title = u"Searching", .total = static_cast<int>(count - std::min(start, count))};
  work.part = [&](int done) {
    const std::uint32_t from = start + static_cast<std::uint32_t>(done);
    found = finder.find(from, 0, from + kRecordsAtOnce);
    if (found.position != kNoPosition) return work.total;
    return std::min(done + static_cast<int>(kRecordsAtOnce), work.total);
  };
  if (!DoLongWork(app, work)) return -1;
  if (found.position == kNoPosition) {
    ShowMessage(app, FromUtf8(kNotFoundText), u"Find", MessageIcon::kInformation);
    return -1;
  }
  app.level().current_record = found.position;
  app.level().last_found = {found.position, database.records.arrangement()};
  return found.slot;
}

}  // namespace

int Find(Application& app) {
  if (ShowSearchDatabase(app) != kDialogDone) return -1;
  app.level().last_found.reset();
  return findFromRecord(app, 0);
}

int FindAgain(Application& app) {
  const Database& database = CurrentDatabase(app);
  if (searchSettings(database.schema).text.empty()) return Find(app);
  const auto& last = app.level().last_found;
  if (!last) return findFromRecord(app, 0);
  // When records came, went or moved since, the current one has followed the one that was found.
  const bool stands = last->arrangement == database.records.arrangement();
  return findFromRecord(app, (stands ? last->position : app.level().current_record) + 1);
}

}  // namespace tabelion
