#include "interchange/table_import.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>

#include "interchange/cell_text.h"
#include "interchange/csv_reader.h"
#include "interchange/table_columns.h"

namespace tabelion {
namespace {

constexpr std::size_t kNoCell = static_cast<std::size_t>(-1);

bool isNumbered(int type) {
  return type == kAutoNumber || type == kLinkedField;
}

// One field of the database and where a row has its text.
struct SlotPlan {
  TableColumn column;
  std::size_t cell = kNoCell;
  std::size_t key_cell = kNoCell;  // of a link field
  PopupNames popups;
};

class Importer {
 public:
  Importer(const TextEncoding& encoding, Engine& engine, Database& database)
      : encoding_(encoding), engine_(engine), database_(database), now_(engine.clock.local()) {}

  // Matches the header row with the database's columns.
  std::optional<std::string> plan(const std::vector<std::string_view>& header);
  // Appends the row as a record, or says why not.
  std::optional<std::string> addRow(const std::vector<std::string_view>& cells);

 private:
  std::optional<std::string> putSlot(const SlotPlan& slot,
                                     const std::vector<std::string_view>& cells);
  void beginRecord();

  const TextEncoding& encoding_;
  Engine& engine_;
  Database& database_;
  CalendarTime now_;
  std::vector<SlotPlan> slots_;  // up to the last slot in use, unused ones among them
  std::size_t cell_count_ = 0;
  Bytes record_;
  // What the record being built takes from the database's counter, kept when it is added.
  std::uint32_t next_auto_number_ = 0;
};

std::optional<std::string> Importer::plan(const std::vector<std::string_view>& header) {
  cell_count_ = header.size();
  std::vector<bool> matched(header.size(), false);
  const auto findCell = [&](const TableColumn& column) {
    const auto found = std::find(header.begin(), header.end(), column.name);
    if (found == header.end()) return kNoCell;
    const auto cell = static_cast<std::size_t>(found - header.begin());
    matched[cell] = true;
    return cell;
  };
  for (const TableColumn& column : tableColumns(database_.schema, encoding_)) {
    slots_.resize(static_cast<std::size_t>(column.slot) + 1);
    SlotPlan& slot = slots_.back();
    if (column.is_link_key) {
      slot.key_cell = findCell(column);
      continue;
    }
    slot.column = column;
    slot.cell = findCell(column);
    if (column.type == kPopup) {
      slot.popups = PopupNames(database_.fields[static_cast<std::size_t>(column.slot)], encoding_);
    }
  }
  for (std::size_t i = 0; i < header.size(); ++i) {
    if (std::count(header.begin(), header.end(), header[i]) > 1) {
      return fmt::format("the column \"{}\" stands there more than once", header[i]);
    }
    if (!matched[i]) return fmt::format("the database has no field \"{}\"", header[i]);
  }
  return std::nullopt;
}

void Importer::beginRecord() {
  next_auto_number_ = database_.schema.next_auto_number;
  record_.clear();
  if (database_.schema.stamping_option) {
    const HeadBlock stamp = makeStamp(now_, database_.schema.next_serial, engine_.random);
    record_.push_back(kStampedPrefix);
    record_.insert(record_.end(), stamp.begin(), stamp.end());
  } else {
    record_.push_back(0);
  }
}

std::optional<std::string> Importer::putSlot(const SlotPlan& slot,
                                             const std::vector<std::string_view>& cells) {
  if (slot.column.type == kUnused) return std::nullopt;
  const auto cellAt = [&](std::size_t cell) {
    return cell == kNoCell ? std::string_view() : cells[cell];
  };
  const std::string_view text = cellAt(slot.cell);
  if (isNumbered(slot.column.type)) {
    std::uint32_t number = next_auto_number_;
    if (!text.empty()) {
      const auto given = parseAutoNumber(text, slot.column.type);
      if (!given) return fmt::format("\"{}\" is not a whole number of 32 bits", text);
      number = *given;
    }
    // The counter stays ahead of every number given out.
    if (text.empty() || (number >= next_auto_number_ && number < 0x7FFFFFFFu)) {
      next_auto_number_ = number + 1;
    }
    record_.resize(record_.size() + 4);
    storeLe32(&record_[record_.size() - 4], number);
    return std::nullopt;
  }
  if (slot.column.type == kLinkField) {
    return readLinkCells(encoding_, text, cellAt(slot.key_cell), record_);
  }
  const FieldDefinition& field =
      database_.schema.fields[static_cast<std::size_t>(slot.column.slot)];
  return readCell({slot.column, field, slot.popups, encoding_}, text, record_);
}

std::optional<std::string> Importer::addRow(const std::vector<std::string_view>& cells) {
  if (cells.size() != cell_count_) {
    return fmt::format("the row has {} cell{} where the header has {}", cells.size(),
                       cells.size() == 1 ? "" : "s", cell_count_);
  }
  beginRecord();
  for (const SlotPlan& slot : slots_) {
    const std::size_t length_place = record_.size();
    record_.resize(length_place + 2);
    if (auto reason = putSlot(slot, cells)) {
      return fmt::format("{}: {}", slot.column.name, *reason);
    }
    const std::size_t length = record_.size() - length_place - 2;
    if (length >= kEndOfRecord) return fmt::format("{}: the value is too long", slot.column.name);
    storeLe16(&record_[length_place], static_cast<std::uint32_t>(length));
  }
  ByteWriter(record_).putLe16(kEndOfRecord);
  if (database_.records.isFull()) {
    return fmt::format("the database is full: it holds {} records, the most it can",
                       database_.records.count());
  }
  const std::uint32_t position =
      database_.records.insert(database_.records.count(), record_, UniqueId{});
  if (position == kNoPosition) {
    return fmt::format("the record takes {} bytes; {} is the limit", record_.size(),
                       kMaxRecordSize);
  }
  database_.schema.next_auto_number = next_auto_number_;
  if (database_.schema.stamping_option) ++database_.schema.next_serial;
  return std::nullopt;
}

}  // namespace

Result<ImportSummary> importCsv(std::string_view csv, const TextEncoding& encoding, Engine& engine,
                                Database& database, const ProgressStep& progress) {
  constexpr std::uint32_t kRowsPerStep = 1024;
  CsvReader reader(csv);
  ImportSummary summary;
  const auto broken = [&reader] {
    return makeError(ErrorKind::kInvalid,
                     fmt::format("line {}: {}", reader.line(), reader.problem()));
  };
  CsvReader::Row row = reader.next();
  if (row == CsvReader::Row::kEnd) {
    return makeError(ErrorKind::kInvalid, "there is no header row that names the fields");
  }
  if (row == CsvReader::Row::kBroken) return broken();
  Importer importer(encoding, engine, database);
  if (const auto reason = importer.plan(reader.cells())) {
    return makeError(ErrorKind::kInvalid, fmt::format("line {}: {}", reader.line(), *reason));
  }
  while ((row = reader.next()) == CsvReader::Row::kRead) {
    ++summary.rows;
    if (auto reason = importer.addRow(reader.cells())) {
      summary.refused.push_back({reader.line(), std::move(*reason)});
    } else {
      ++summary.records;
    }
    if (progress && summary.rows % kRowsPerStep == 0) {
      progress(static_cast<std::uint32_t>(reader.position()),
               static_cast<std::uint32_t>(csv.size()));
    }
  }
  if (row == CsvReader::Row::kBroken) return broken();
  if (summary.records > 0) {
    setDirty(database);
    // The new records stand at the end; who opens the database next puts them in order.
    if (database.schema.sort[0].field != kNoField) database.schema.sort_pending = 1;
  }
  return summary;
}

}  // namespace tabelion
