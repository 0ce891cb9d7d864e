// The same statements by SQLite in memory, through its C interface, in the same run: what sorting,
// filtering and deleting are compared with.
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "engine/packed_record.h"
#include "in_process.h"
#include "query/field_text.h"
#include "query/number_text.h"

namespace tabelion {
namespace {

struct CloseConnection {
  void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
struct EndStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;
using Statement = std::unique_ptr<sqlite3_stmt, EndStatement>;

bool execute(sqlite3* connection, const char* sql) {
  return sqlite3_exec(connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

Statement prepare(sqlite3* connection, const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
  return Statement(statement);
}

void bindValue(sqlite3_stmt* insert, int parameter, const Database& database, int slot,
               ByteView value) {
  const FieldType type = database.schema.fields[static_cast<std::size_t>(slot)].type;
  if (slot == kKindSlot) {
    const FieldRecord& kinds = database.fields[kKindSlot];
    const PopupItem* item = findItem(kinds, value);
    sqlite3_bind_int64(insert, parameter, item ? item - kinds.items.data() : -1);
  } else if (type == FieldType::kFloat) {
    sqlite3_bind_double(insert, parameter, numberOfText(storedText(value), false));
  } else if (slot == kTitleSlot || slot == kPlaceSlot || slot == kNoteSlot ||
             slot == kLongWordsSlot) {
    const std::string_view text = storedText(value);
    sqlite3_bind_text(insert, parameter, text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
  } else {
    sqlite3_bind_int64(insert, parameter, static_cast<std::int32_t>(numberOfValue(value)));
  }
}

// All records with all their values, each as SQLite keeps its kind best.
Connection filledTable(const Database& database) {
  sqlite3* opened = nullptr;
  sqlite3_open(":memory:", &opened);
  Connection connection(opened);
  execute(opened,
          "CREATE TABLE records (Title TEXT COLLATE NOCASE, Place TEXT, Count INTEGER, Weight REAL,"
          " Kind INTEGER, Checked INTEGER, Day INTEGER, Hour INTEGER, Note TEXT, Words TEXT,"
          " Amount REAL, Number INTEGER)");
  execute(opened, "BEGIN");
  const Statement insert =
      prepare(opened, "INSERT INTO records VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  for (const Record& record : database.records) {
    SlotWalker walker(record.bytes());
    for (int slot = 0; const auto value = walker.next(); ++slot) {
      bindValue(insert.get(), slot + 1, database, slot, *value);
    }
    sqlite3_step(insert.get());
    sqlite3_reset(insert.get());
  }
  execute(opened, "COMMIT");
  return connection;
}

std::string between(std::string_view lowest, std::string_view highest) {
  return "Weight BETWEEN " + std::string(lowest) + " AND " + std::string(highest);
}

void select(benchmark::State& state, const Database& database, const std::string& rest) {
  const Connection connection = filledTable(database);
  const Statement statement = prepare(connection.get(), "SELECT rowid FROM records " + rest);
  if (!statement) return state.SkipWithError(sqlite3_errmsg(connection.get()));
  std::vector<std::uint32_t> rows;
  for (auto _ : state) {
    rows.clear();
    while (sqlite3_step(statement.get()) == SQLITE_ROW) {
      rows.push_back(static_cast<std::uint32_t>(sqlite3_column_int64(statement.get(), 0)));
    }
    sqlite3_reset(statement.get());
    benchmark::DoNotOptimize(rows.data());
  }
  state.counters["rows"] = static_cast<double>(rows.size());
}

// Within a transaction, so that it can be taken back as ours can.
void deleteRows(benchmark::State& state, const Database& database) {
  const Connection connection = filledTable(database);
  const std::string sql = "DELETE FROM records WHERE " + between(kLowest, kHighestDeleted);
  for (auto _ : state) {
    state.PauseTiming();
    execute(connection.get(), "BEGIN");
    state.ResumeTiming();
    if (!execute(connection.get(), sql.c_str())) return state.SkipWithError("not deleted");
    state.PauseTiming();
    state.counters["deleted"] = sqlite3_changes(connection.get());
    execute(connection.get(), "ROLLBACK");
    state.ResumeTiming();
  }
}

}  // namespace

void registerSqlite(const Database& database) {
  const auto add = [&](const char* name, auto&&... arguments) {
    benchmark::RegisterBenchmark(name, arguments...)->Unit(benchmark::kMillisecond);
  };
  add("SQLite: ORDER BY the three levels", select, std::cref(database),
      std::string("ORDER BY Title, Count DESC, Day"));
  add("SQLite: WHERE the three criteria", select, std::cref(database),
      "WHERE Kind = " + std::to_string(kItem) + " AND " + between(kLowest, kHighest) +
          " AND Words LIKE '%" + std::string(kWord) + "%'");
  add("SQLite: DELETE within the filter", deleteRows, std::cref(database));
}

}  // namespace tabelion
