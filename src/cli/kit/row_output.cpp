#include "cli/kit/row_output.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/kit/json_output.h"
#include "cli/kit/text_table.h"
#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "interchange/csv_cells.h"
#include "interchange/record_id.h"
#include "query/field_text.h"

namespace tabelion {
namespace {

// Those in front of the fields: the number, and what else is asked for.
std::size_t firstColumns(const RowSource& source) {
  return std::size_t{1} + source.has_ids + source.has_found_field;
}

class TableOutput : public RowOutput {
 public:
  TableOutput(const RowSource& source, OutputBuffer& out)
      : source_(source), out_(out), table_(source.slots.size() + firstColumns(source)) {
    table_.reserve(source.expected_rows);
    table_.alignRight(0);
    table_.add("#");
    if (source.has_ids) table_.add("id");
    if (source.has_found_field) table_.add("Found in");
    std::size_t column = firstColumns(source);
    for (const int slot : source.slots) {
      const FieldDefinition& field = fieldOf(slot);
      if (isNumber(field)) table_.alignRight(column);
      table_.add(source.encoding.toUtf8(fieldName(field)));
      ++column;
      last_slot_ = std::max(last_slot_, slot);
    }
    values_.resize(static_cast<std::size_t>(last_slot_) + 1);
  }

  void put(std::uint32_t position, std::uint32_t number, std::string_view field) override {
    const fmt::format_int digits(number);
    table_.addPlain({digits.data(), digits.size()});
    const ByteView record = source_.database.records[position].bytes();
    if (source_.has_ids) table_.add(recordId(record));
    if (source_.has_found_field) table_.add(field);
    load(record);
    for (const int slot : source_.slots) putCell(record, slot);
  }

  void finish() override { table_.print(out_); }

 private:
  struct Value {
    ByteView bytes;
    bool is_present = false;
  };

  const FieldDefinition& fieldOf(int slot) const {
    return source_.database.schema.fields[static_cast<std::size_t>(slot)];
  }
  static bool isNumber(const FieldDefinition& field) {
    const FieldType type = effectiveType(field);
    return type == FieldType::kInteger || type == FieldType::kFloat ||
           type == FieldType::kAutoNumber;
  }

  void load(ByteView record) {
    SlotWalker walker(record);
    bool has_more = true;
    for (Value& value : values_) {
      const auto next = has_more ? walker.next() : std::nullopt;
      has_more = next.has_value();
      value = {next.value_or(ByteView()), has_more};
    }
  }

  void putCell(ByteView record, int slot) {
    const FieldDefinition& field = fieldOf(slot);
    const Value& value = values_[static_cast<std::size_t>(slot)];
    text_.clear();
    const bool is_masked = isMasked(field, record);
    if (field.type == FieldType::kLookup || is_masked) {
      const TextOptions options{kNoBound, false, source_.settings.lookup};
      text_ = fieldText(source_.database, record, slot, source_.settings.formats, options).text;
    } else if (value.is_present) {
      appendValueText(text_, field, source_.database.fields[static_cast<std::size_t>(slot)],
                      value.bytes, source_.settings.formats);
    }
    if (field.type == FieldType::kCheckBox && !is_masked) {
      table_.add(text_ == "1" ? "[x]" : "[ ]");
    } else if (TextTable::isPlain(text_)) {
      table_.addPlain(text_);
    } else if (source_.encoding.isUtf8()) {
      table_.add(text_);
    } else {
      converted_.clear();
      source_.encoding.appendUtf8(converted_, text_);
      table_.add(converted_);
    }
  }

  RowSource source_;
  OutputBuffer& out_;
  TextTable table_;
  int last_slot_ = -1;
  std::vector<Value> values_;
  std::string text_;
  std::string converted_;
};

class CsvOutput : public RowOutput {
 public:
  CsvOutput(const RowSource& source, OutputBuffer& out)
      : source_(source), out_(out), rows_(source.database, source.encoding) {
    out_.put("record");
    if (source.has_ids) out_.put(",id");
    if (source.has_found_field) out_.put(",found_in");
    for (const int slot : source.slots) {
      for (std::size_t i = 0; i < rows_.columns().size(); ++i) {
        if (rows_.columns()[i].slot != slot) continue;
        columns_.push_back(i);
        out_.put(',');
        const std::string& name = rows_.columns()[i].name;
        putCsvText(out_, source.safe_csv && looksLikeFormula(name) ? '\'' + name : name);
      }
    }
    out_.put('\n');
  }

  void put(std::uint32_t position, std::uint32_t number, std::string_view field) override {
    const ByteView record = source_.database.records[position].bytes();
    rows_.load(record);
    const fmt::format_int digits(number);
    out_.put({digits.data(), digits.size()});
    if (source_.has_ids) {
      out_.put(',');
      out_.put(recordId(record));
    }
    if (source_.has_found_field) {
      out_.put(',');
      putCsvText(out_, field);
    }
    for (const std::size_t column : columns_) {
      out_.put(',');
      putCsvCell(out_, rows_, column, false, source_.safe_csv);
    }
    out_.put('\n');
  }

  void finish() override {}

 private:
  RowSource source_;
  OutputBuffer& out_;
  TableRows rows_;
  std::vector<std::size_t> columns_;
};

class JsonOutput : public RowOutput {
 public:
  JsonOutput(const RowSource& source, OutputBuffer& out)
      : source_(source), records_(source.database, source.encoding, out, source.slots) {
    records_.begin(versionedJson());
  }

  void put(std::uint32_t position, std::uint32_t number, std::string_view field) override {
    nlohmann::ordered_json more;
    if (source_.has_ids) more["id"] = idJson(source_.database.records[position].bytes());
    if (source_.has_found_field) more["found_in"] = field;
    records_.put(position, number, more.empty() ? nullptr : &more);
  }

  void finish() override { records_.end(); }

 private:
  RowSource source_;
  JsonRecords records_;
};

}  // namespace

std::unique_ptr<RowOutput> makeRowOutput(const RowSource& source, RowFormat format,
                                         OutputBuffer& out) {
  switch (format) {
    case RowFormat::kCsv:
      return std::make_unique<CsvOutput>(source, out);
    case RowFormat::kJson:
      return std::make_unique<JsonOutput>(source, out);
    default:
      return std::make_unique<TableOutput>(source, out);
  }
}

}  // namespace tabelion
