#include "interchange/table_import.h"

#include <algorithm>
#include <map>
#include <optional>

#include <fmt/format.h>

#include "interchange/cell_text.h"
#include "interchange/csv_reader.h"
#include "interchange/record_id.h"
#include "interchange/table_columns.h"
#include "query/near_names.h"
#include "query/text_case.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

constexpr std::size_t kNoCell = static_cast<std::size_t>(-1);

bool isNumbered(FieldType type) {
  return type == FieldType::kAutoNumber || type == FieldType::kLinkedField;
}

// One field of the database and where a row has its text.
struct SlotPlan {
  TableColumn column;
  std::size_t cell = kNoCell;
  std::size_t key_cell = kNoCell;  // of a link field
  PopupNames popups;
};

// What an export or a list of refused rows adds of its own.
bool isPassedOver(const std::vector<std::string_view>& header, std::size_t cell) {
  return (cell + 1 == header.size() && header[cell] == kReasonColumn) ||
         (cell == 0 && header[cell] == kRecordIdColumn);
}

Error refused(std::string reason) {
  return makeError(ErrorKind::kInvalid, std::move(reason));
}

class Importer {
 public:
  Importer(const ImportForm& form, const TextEncoding& encoding, Engine& engine, Database& database)
      : form_(form),
        encoding_(encoding),
        engine_(engine),
        database_(database),
        columns_(tableColumns(database.schema, encoding)),
        now_(engine.clock.local()) {}

  // How many cells of a header row name columns of the database.
  std::size_t matches(const std::vector<std::string_view>& header) const;
  // Matches the header row with the database's columns.
  Status plan(const std::vector<std::string_view>& header);
  // Appends the row as a record, or says all that keeps it from being one.
  std::vector<CellFault> addRow(const std::vector<std::string_view>& cells);

 private:
  Status putSlot(const SlotPlan& slot, const std::vector<std::string_view>& cells);
  void beginRecord();
  Status insertRecord();
  const TableColumn* columnNamed(std::string_view name) const;
  std::string unknownColumn(std::string_view name) const;
  const FieldDefinition& fieldOf(const SlotPlan& slot) const {
    return database_.schema.fields[static_cast<std::size_t>(slot.column.slot)];
  }

  const ImportForm& form_;
  const TextEncoding& encoding_;
  Engine& engine_;
  Database& database_;
  std::vector<TableColumn> columns_;
  CalendarTime now_;
  std::vector<SlotPlan> slots_;  // up to the last slot in use, unused ones among them
  std::size_t cell_count_ = 0;
  Bytes record_;
  // What the record being built takes from the database's counter, kept when it is added.
  std::uint32_t next_auto_number_ = 0;
};

const TableColumn* Importer::columnNamed(std::string_view name) const {
  const auto find = [&](auto is_named) -> const TableColumn* {
    const auto found = std::find_if(columns_.begin(), columns_.end(), is_named);
    return found == columns_.end() ? nullptr : &*found;
  };
  const auto* exact = find([&](const TableColumn& column) { return column.name == name; });
  if (exact != nullptr) return exact;
  name = withoutBlanks(name);
  return find([&](const TableColumn& column) { return compareAnyCase(column.name, name) == 0; });
}

std::size_t Importer::matches(const std::vector<std::string_view>& header) const {
  return static_cast<std::size_t>(
      std::count_if(header.begin(), header.end(),
                    [&](std::string_view name) { return columnNamed(name) != nullptr; }));
}

std::string Importer::unknownColumn(std::string_view name) const {
  std::vector<std::string> known;
  for (const TableColumn& column : columns_) known.push_back(column.name);
  const auto near = nearNames(name, known);
  return fmt::format("the database has no field \"{}\"{}{}", name,
                     near.empty() ? "" : "; there is ", alternatives(near));
}

Status Importer::plan(const std::vector<std::string_view>& header) {
  cell_count_ = header.size();
  std::map<const TableColumn*, std::size_t> cells;
  for (std::size_t i = 0; i < header.size(); ++i) {
    const TableColumn* column = columnNamed(header[i]);
    if (column == nullptr) {
      if (isPassedOver(header, i)) continue;
      return refused(unknownColumn(header[i]));
    }
    if (!cells.emplace(column, i).second) {
      return refused(fmt::format("the column \"{}\" stands there more than once", column->name));
    }
  }
  const auto cellOf = [&](const TableColumn& column) {
    const auto found = cells.find(&column);
    return found == cells.end() ? kNoCell : found->second;
  };
  for (const TableColumn& column : columns_) {
    slots_.resize(static_cast<std::size_t>(column.slot) + 1);
    SlotPlan& slot = slots_.back();
    if (column.is_link_key) {
      slot.key_cell = cellOf(column);
      continue;
    }
    slot.column = column;
    slot.cell = cellOf(column);
    if (column.type == FieldType::kPopup) {
      slot.popups = PopupNames(database_.fields[static_cast<std::size_t>(column.slot)], encoding_);
    }
  }
  return Done{};
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

Status Importer::putSlot(const SlotPlan& slot, const std::vector<std::string_view>& cells) {
  if (slot.column.type == FieldType::kUnused) return Done{};
  const auto cellAt = [&](std::size_t cell) {
    return cell == kNoCell ? std::string_view() : cells[cell];
  };
  std::string_view text = cellAt(slot.cell);
  if (isNumbered(slot.column.type)) {
    text = withoutBlanks(text);
    std::uint32_t number = next_auto_number_;
    if (!text.empty()) {
      const auto given = parseAutoNumber(text, slot.column.type);
      if (!given) return refused(fmt::format("\"{}\" is not a whole number of 32 bits", text));
      number = *given;
    }
    // The counter stays ahead of every number given out.
    if (text.empty() || (number >= next_auto_number_ && number < 0x7FFFFFFFu)) {
      next_auto_number_ = number + 1;
    }
    record_.resize(record_.size() + 4);
    storeLe32(&record_[record_.size() - 4], number);
    return Done{};
  }
  if (slot.column.type == FieldType::kLinkField) {
    return readLinkCells(encoding_, text, cellAt(slot.key_cell), record_);
  }
  const FormatSettings* dates = form_.dates ? &*form_.dates : nullptr;
  return readCell({slot.column, fieldOf(slot), slot.popups, encoding_, dates}, text, record_);
}

std::vector<CellFault> Importer::addRow(const std::vector<std::string_view>& cells) {
  if (cells.size() != cell_count_) {
    return {{"", fmt::format("the row has {} cell{} where the header has {}", cells.size(),
                             cells.size() == 1 ? "" : "s", cell_count_)}};
  }
  std::vector<CellFault> faults;
  beginRecord();
  for (const SlotPlan& slot : slots_) {
    const std::size_t length_place = record_.size();
    record_.resize(length_place + 2);
    Status put = putSlot(slot, cells);
    if (put.ok()) fitValue(fieldOf(slot), record_, length_place + 2);
    const std::size_t length = record_.size() - length_place - 2;
    if (put.ok() && length >= kEndOfRecord) put = refused("the value is too long");
    if (!put.ok()) {
      faults.push_back({slot.column.name, put.error().text});
    } else {
      storeLe16(&record_[length_place], static_cast<std::uint32_t>(length));
    }
  }
  if (faults.empty()) {
    if (const Status added = insertRecord(); !added.ok()) {
      faults.push_back({"", added.error().text});
    }
  }
  return faults;
}

Status Importer::insertRecord() {
  ByteWriter(record_).putLe16(kEndOfRecord);
  if (record_.size() > kMaxRecordSize) {
    UnpackedRecord unpacked = unpackRecord(record_);
    (void)packFitted(database_.schema, unpacked, record_);
  }
  if (database_.records.isFull()) {
    return refused(fmt::format("the database is full: it holds {} records, the most it can",
                               database_.records.count()));
  }
  const std::uint32_t position =
      database_.records.insert(database_.records.count(), record_, UniqueId{});
  if (position == kNoPosition) {
    return refused(
        fmt::format("the record takes {} bytes; {} is the limit", record_.size(), kMaxRecordSize));
  }
  database_.schema.next_auto_number = next_auto_number_;
  if (database_.schema.stamping_option) ++database_.schema.next_serial;
  return Done{};
}

char delimiterOf(std::string_view csv, const Importer& importer) {
  char best = ',';
  std::size_t most = 0;
  for (const char delimiter : {',', ';', '\t', '|'}) {
    CsvReader reader(csv, delimiter);
    if (reader.next() != CsvReader::Row::kRead) continue;
    const std::size_t matches = importer.matches(reader.cells());
    if (matches <= most) continue;
    most = matches;
    best = delimiter;
  }
  return best;
}

// The cells of a row as they are kept when it is refused.
std::vector<std::string> keptCells(const CsvReader& reader, bool has_reason) {
  std::vector<std::string> cells(reader.cells().begin(), reader.cells().end());
  if (has_reason && !cells.empty()) cells.pop_back();
  return cells;
}

}  // namespace

Result<ImportSummary> importCsv(std::string_view csv, const ImportForm& form,
                                const TextEncoding& encoding, Engine& engine, Database& database,
                                const ProgressStep& progress) {
  constexpr std::uint32_t kRowsPerStep = 1024;
  Importer importer(form, encoding, engine, database);
  ImportSummary summary;
  summary.delimiter = form.delimiter.value_or(delimiterOf(csv, importer));
  CsvReader reader(csv, summary.delimiter);
  const auto broken = [&reader] {
    return makeError(ErrorKind::kInvalid,
                     fmt::format("line {}: {}", reader.line(), reader.problem()));
  };
  CsvReader::Row row = reader.next();
  if (row == CsvReader::Row::kEnd) {
    return makeError(ErrorKind::kInvalid, "there is no header row that names the fields");
  }
  if (row == CsvReader::Row::kBroken) return broken();
  const bool has_reason = reader.cells().back() == kReasonColumn;
  summary.header = keptCells(reader, has_reason);
  if (const Status planned = importer.plan(reader.cells()); !planned.ok()) {
    return refused(fmt::format("line {}: {}", reader.line(), planned.error().text));
  }
  const std::uint32_t records_before = database.records.count();
  const std::uint32_t number_before = database.schema.next_auto_number;
  const auto serial_before = database.schema.next_serial;
  const bool dirty_before = isDirty(database);
  while ((row = reader.next()) == CsvReader::Row::kRead) {
    ++summary.rows;
    if (auto faults = importer.addRow(reader.cells()); !faults.empty()) {
      summary.refused.push_back({reader.line(), keptCells(reader, has_reason), std::move(faults)});
    } else {
      ++summary.records;
    }
    if (progress && summary.rows % kRowsPerStep == 0) {
      progress(static_cast<std::uint32_t>(reader.position()),
               static_cast<std::uint32_t>(csv.size()));
    }
  }
  if (row == CsvReader::Row::kBroken) {
    while (database.records.count() > records_before) {
      database.records.remove(database.records.count() - 1);
    }
    database.schema.next_auto_number = number_before;
    database.schema.next_serial = serial_before;
    database.dirty = dirty_before;
    return broken();
  }
  if (summary.records > 0) {
    setDirty(database);
    // The new records stand at the end; who opens the database next puts them in order.
    if (database.schema.sort[0].field != kNoField) database.schema.sort_pending = 1;
  }
  return summary;
}

}  // namespace tabelion
