#include "interchange/table_rows.h"

#include <algorithm>
#include <iterator>

#include "engine/packed_record.h"

namespace tabelion {
namespace {

std::vector<TableColumn> chosenColumns(const DatabaseRecord& schema, const TextEncoding& encoding,
                                       std::span<const int> slots) {
  const std::vector<TableColumn> all = tableColumns(schema, encoding);
  if (slots.empty()) return all;
  std::vector<TableColumn> chosen;
  for (const int slot : slots) {
    std::copy_if(all.begin(), all.end(), std::back_inserter(chosen),
                 [slot](const TableColumn& column) { return column.slot == slot; });
  }
  return chosen;
}

}  // namespace

TableRows::TableRows(const Database& database, const TextEncoding& encoding,
                     std::span<const int> slots)
    : database_(database),
      encoding_(encoding),
      columns_(chosenColumns(database.schema, encoding, slots)) {
  int last_slot = -1;
  for (const TableColumn& column : columns_) {
    const auto slot = static_cast<std::size_t>(column.slot);
    popups_.push_back(column.type == FieldType::kPopup
                          ? PopupNames(database_.fields[slot], encoding)
                          : PopupNames());
    is_flagged_.push_back(database_.schema.fields[slot].encrypt_flag != 0);
    last_slot = std::max(last_slot, column.slot);
  }
  values_.resize(static_cast<std::size_t>(last_slot) + 1);
}

void TableRows::load(ByteView record) {
  is_enciphered_ = isRecordEncrypted(record);
  SlotWalker walker(record);
  bool ended = false;
  for (ByteView& value : values_) {
    const auto next = ended ? std::nullopt : walker.next();
    ended = !next;
    value = next.value_or(ByteView());
  }
}

CellText TableRows::cell(std::size_t column) {
  if (is_enciphered_ && is_flagged_[column]) return {};
  const TableColumn& at = columns_[column];
  return cellText(at, popups_[column], values_[static_cast<std::size_t>(at.slot)], scratch_);
}

std::string_view TableRows::utf8(const CellText& cell) {
  if (cell.is_utf8) return cell.text;
  converted_.clear();
  encoding_.appendUtf8(converted_, cell.text);
  return converted_;
}

void TableRows::putUtf8(OutputBuffer& to, const CellText& cell) {
  if (cell.is_utf8) return to.put(cell.text);
  const std::size_t room = TextEncoding::roomForUtf8(cell.text.size());
  if (room > OutputBuffer::kLargestRoom) return to.put(utf8(cell));
  char* const begin = to.room(room);
  to.took(static_cast<std::size_t>(encoding_.writeUtf8(begin, cell.text) - begin));
}

}  // namespace tabelion
