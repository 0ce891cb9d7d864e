#include "interchange/table_export.h"

#include <fmt/format.h>

#include "engine/calendar.h"
#include "interchange/csv_cells.h"
#include "interchange/json_cells.h"
#include "interchange/record_id.h"
#include "interchange/table_rows.h"

namespace tabelion {
namespace {

// What a row's writer and the records' walk share.
class Writer {
 public:
  Writer(TableRows& rows, const ExportChoice& choice, OutputBuffer& to)
      : rows_(rows), choice_(choice), to_(to) {}
  virtual ~Writer() = default;
  virtual void begin() = 0;
  // The record that the rows have loaded; its id where ids are asked for.
  virtual void putRow(bool is_first, std::string_view id) = 0;
  virtual void end() = 0;

 protected:
  std::size_t columnCount() const { return rows_.columns().size(); }

  TableRows& rows_;
  const ExportChoice& choice_;
  OutputBuffer& to_;
};

class CsvWriter : public Writer {
 public:
  using Writer::Writer;

  void begin() override {
    if (choice_.with_ids) to_.put(kRecordIdColumn);
    for (std::size_t i = 0; i < columnCount(); ++i) {
      if (i > 0 || choice_.with_ids) to_.put(',');
      const std::string& name = rows_.columns()[i].name;
      putCsvText(to_, choice_.safe_csv && looksLikeFormula(name) ? '\'' + name : name);
    }
    to_.put('\n');
  }

  void putRow(bool, std::string_view id) override {
    to_.put(id);
    for (std::size_t i = 0; i < columnCount(); ++i) {
      if (i > 0 || choice_.with_ids) to_.put(',');
      putCsvCell(to_, rows_, i, columnCount() == 1 && !choice_.with_ids, choice_.safe_csv);
    }
    to_.put('\n');
  }

  void end() override {}
};

class JsonWriter : public Writer {
 public:
  using Writer::Writer;

  void begin() override { to_.put('['); }

  void putRow(bool is_first, std::string_view id) override {
    to_.put(is_first ? "\n{" : ",\n{");
    if (choice_.with_ids) putId(id);
    for (std::size_t i = 0; i < columnCount(); ++i) {
      if (i > 0 || choice_.with_ids) to_.put(',');
      putJsonText(to_, rows_.columns()[i].name);
      to_.put(':');
      putJsonCell(to_, rows_, i);
    }
    to_.put('}');
  }

  void end() override { to_.put("\n]\n"); }

 private:
  void putId(std::string_view id) {
    putJsonText(to_, kRecordIdColumn);
    to_.put(':');
    if (id.empty()) return to_.put("null");
    putJsonText(to_, id);
  }
};

class SqlWriter : public Writer {
 public:
  SqlWriter(TableRows& rows, const ExportChoice& choice, OutputBuffer& to, const Database& database,
            std::string_view table_name)
      : Writer(rows, choice, to), database_(database), table_(quoted(table_name, '"')) {}

  void begin() override {
    chooseTypes();
    to_.put("BEGIN;\nCREATE TABLE ");
    to_.put(table_);
    to_.put(" (");
    if (choice_.with_ids) {
      to_.put("\n  ");
      to_.put(quoted(kRecordIdColumn, '"'));
      to_.put(" text");
    }
    for (std::size_t i = 0; i < columnCount(); ++i) {
      to_.put(i == 0 && !choice_.with_ids ? "\n  " : ",\n  ");
      to_.put(quoted(rows_.columns()[i].name, '"'));
      to_.put(' ');
      to_.put(types_[i]);
    }
    to_.put("\n);\n");
  }

  void putRow(bool, std::string_view id) override {
    if (rows_in_statement_ == 0) {
      to_.put("INSERT INTO ");
      to_.put(table_);
      to_.put(" VALUES\n(");
    } else {
      to_.put(",\n(");
    }
    if (choice_.with_ids) to_.put(id.empty() ? "NULL" : quoted(id, '\''));
    for (std::size_t i = 0; i < columnCount(); ++i) {
      if (i > 0 || choice_.with_ids) to_.put(',');
      putValue(i, rows_.cell(i));
    }
    to_.put(')');
    if (++rows_in_statement_ == kRowsPerStatement) endStatement();
  }

  void end() override {
    if (rows_in_statement_ > 0) endStatement();
    to_.put("COMMIT;\n");
  }

 private:
  static constexpr int kRowsPerStatement = 500;

  static std::string quoted(std::string_view text, char quote) {
    std::string result(1, quote);
    for (const char c : text) {
      if (c == quote) result += c;
      result += c;
    }
    result += quote;
    return result;
  }

  void endStatement() {
    to_.put(";\n");
    rows_in_statement_ = 0;
  }

  static std::string_view typeOf(const TableColumn& column) {
    if (column.is_link_key) return "bigint";
    switch (traitsOf(column.type).form) {
      case ValueForm::kInteger:
      case ValueForm::kKey:
        return "bigint";
      case ValueForm::kNumberText:
      case ValueForm::kResult:
        return "numeric";
      case ValueForm::kFlag:
        return "boolean";
      case ValueForm::kDays:
        return "date";
      case ValueForm::kClock:
        return "time";
      case ValueForm::kNone:
      case ValueForm::kText:
      case ValueForm::kNote:
      case ValueForm::kPopupKey:
      case ValueForm::kLink:
      case ValueForm::kLookup:
      case ValueForm::kBlock:
        break;
    }
    return "text";
  }

  // Whether the cell is a value of its column's type to every database. Our calendar has a 29
  // February in years that have none elsewhere, and numbers and times are kept as they came.
  static bool fits(const TableColumn& column, std::string_view text) {
    if (text.empty()) return true;
    switch (column.type) {
      case FieldType::kFloat:
      case FieldType::kCalculated:
        return isDecimalNumber(text);
      case FieldType::kTime:
        return text.size() == 8 && text.substr(0, 2) < "24" && text.substr(3, 2) < "60" &&
               text.substr(6, 2) < "60";
      case FieldType::kDate: {
        if (text.size() != 10) return false;
        if (text.substr(5) != "02-29") return true;
        const int century = (text[0] - '0') * 10 + (text[1] - '0');
        return text.substr(2, 2) != "00" || century % 4 == 0;
      }
      default:
        return true;
    }
  }

  // A column of a type that not every value fits becomes text.
  void chooseTypes() {
    std::vector<std::size_t> doubtful;
    for (std::size_t i = 0; i < columnCount(); ++i) {
      const FieldType type = rows_.columns()[i].type;
      types_.push_back(typeOf(rows_.columns()[i]));
      if (type == FieldType::kFloat || type == FieldType::kCalculated || type == FieldType::kTime ||
          type == FieldType::kDate) {
        doubtful.push_back(i);
      }
    }
    if (doubtful.empty()) return;
    for (const Record& record : database_.records) {
      rows_.load(record.bytes());
      for (const std::size_t i : doubtful) {
        if (!fits(rows_.columns()[i], rows_.cell(i).text)) types_[i] = "text";
      }
    }
  }

  void putValue(std::size_t column, const CellText& cell) {
    const std::string_view type = types_[column];
    if (cell.text.empty()) {
      to_.put("NULL");
    } else if (type == "boolean") {
      to_.put(cell.text == "1" ? "TRUE" : "FALSE");
    } else if (type == "bigint" || type == "numeric") {
      to_.put(cell.text);
    } else {
      to_.put(quoted(rows_.utf8(cell), '\''));
    }
  }

  const Database& database_;
  std::string table_;
  std::vector<std::string_view> types_;
  int rows_in_statement_ = 0;
};

}  // namespace

ExportSummary exportTable(const Database& database, const TextEncoding& encoding,
                          TableFormat format, std::string_view table_name,
                          const ExportChoice& choice, OutputBuffer& to,
                          const ProgressStep& progress) {
  constexpr std::uint32_t kRecordsPerStep = 1024;
  TableRows rows(database, encoding, choice.slots);
  std::unique_ptr<Writer> writer;
  if (format == TableFormat::kCsv) writer = std::make_unique<CsvWriter>(rows, choice, to);
  if (format == TableFormat::kJson) writer = std::make_unique<JsonWriter>(rows, choice, to);
  if (format == TableFormat::kSql) {
    writer = std::make_unique<SqlWriter>(rows, choice, to, database, table_name);
  }
  const std::size_t count =
      choice.positions != nullptr ? choice.positions->size() : database.records.count();
  ExportSummary summary;
  writer->begin();
  for (std::size_t i = 0; i < count; ++i) {
    const auto position =
        static_cast<std::uint32_t>(choice.positions != nullptr ? (*choice.positions)[i] : i);
    database.records.fetchAhead(position, kMaxRecordSize);
    const ByteView record = database.records[position].bytes();
    rows.load(record);
    writer->putRow(summary.records == 0, choice.with_ids ? recordId(record) : std::string());
    ++summary.records;
    if (rows.isEnciphered()) ++summary.enciphered_records;
    if (summary.records % kRecordsPerStep != 0) continue;
    if (!to.ok()) return summary;
    if (progress) progress(summary.records, static_cast<std::uint32_t>(count));
  }
  writer->end();
  summary.is_written = to.flush();
  return summary;
}

}  // namespace tabelion
