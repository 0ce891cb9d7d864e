#include "interchange/json_cells.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "engine/ascii.h"

namespace tabelion {
namespace {

// "007" and "+1" are numbers to a person but not to JSON.
bool isJsonNumber(std::string_view text) {
  if (!isDecimalNumber(text) || text[0] == '+') return false;
  const std::size_t first = text[0] == '-' ? 1 : 0;
  if (text[first] == '.') return false;
  if (text[first] == '0' && text.size() > first + 1) {
    if (isDigit(text[first + 1])) return false;
  }
  const std::size_t point = text.find('.');
  return point == std::string_view::npos || (point + 1 < text.size() && isDigit(text[point + 1]));
}

bool isNumberColumn(const TableColumn& column) {
  switch (traitsOf(column.type).form) {
    case ValueForm::kInteger:
    case ValueForm::kNumberText:
    case ValueForm::kKey:
    case ValueForm::kResult:
      return true;
    case ValueForm::kNone:
    case ValueForm::kText:
    case ValueForm::kNote:
    case ValueForm::kPopupKey:
    case ValueForm::kFlag:
    case ValueForm::kDays:
    case ValueForm::kClock:
    case ValueForm::kLink:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      break;
  }
  return column.is_link_key;
}

// Most cells: nothing to escape and nothing to check.
bool isPlainAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c >= ' ' && c < 0x7F && c != '"' && c != '\\'; });
}

}  // namespace

void putJsonText(OutputBuffer& to, std::string_view text) {
  if (!isPlainAscii(text)) {
    to.put(nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    return;
  }
  to.put('"');
  to.put(text);
  to.put('"');
}

void putJsonCell(OutputBuffer& to, TableRows& rows, std::size_t column) {
  const CellText cell = rows.cell(column);
  const TableColumn& at = rows.columns()[column];
  if (cell.text.empty()) {
    to.put("null");
  } else if (at.type == FieldType::kCheckBox) {
    to.put(cell.text == "1" ? "true" : "false");
  } else if (isNumberColumn(at) && isJsonNumber(cell.text)) {
    to.put(cell.text);
  } else {
    putJsonText(to, rows.utf8(cell));
  }
}

}  // namespace tabelion
