#include "cli/commands/refused_rows.h"

#include <algorithm>
#include <map>
#include <string_view>

#include <fmt/format.h>

#include "interchange/csv_reader.h"

namespace tabelion {
namespace {

constexpr std::size_t kShownLines = 3;
constexpr std::size_t kShownSubjects = 3;

// `"Chess"` and ` is not an item of the list`, or `"Н" (U+041D)` and ` is not in CP1252`.
struct Reason {
  std::string_view subject;
  std::string_view fault;
};
Reason takeApart(std::string_view reason) {
  if (!reason.starts_with('"')) return {{}, reason};
  std::size_t end = reason.rfind('"') + 1;
  if (reason.substr(end).starts_with(" (U+")) end = reason.find(')', end) + 1;
  return {reason.substr(0, end), reason.substr(end)};
}

// Faults that differ in their numbers alone are one fault.
std::string kindOf(const CellFault& fault) {
  std::string kind = fault.column + '\n';
  for (const char c : takeApart(fault.reason).fault) {
    if (c < '0' || c > '9') kind += c;
  }
  return kind;
}

struct FaultGroup {
  const CellFault* first;
  std::vector<std::size_t> lines;
  std::vector<std::string_view> subjects;  // the others than the first's
  bool has_more_subjects = false;

  void add(std::size_t line, const CellFault& fault) {
    if (lines.empty() || lines.back() != line) lines.push_back(line);
    const std::string_view subject = takeApart(fault.reason).subject;
    if (subject.empty() || subject == takeApart(first->reason).subject) return;
    if (std::find(subjects.begin(), subjects.end(), subject) != subjects.end()) return;
    if (subjects.size() < kShownSubjects) {
      subjects.push_back(subject);
    } else {
      has_more_subjects = true;
    }
  }
};

std::string linesText(const std::vector<std::size_t>& lines) {
  if (lines.size() == 1) return fmt::format("line {}", lines.front());
  std::string text = "lines ";
  // One more is shown rather than counted.
  const bool has_rest = lines.size() > kShownLines + 1;
  const std::size_t shown = has_rest ? kShownLines : lines.size();
  for (std::size_t i = 0; i < shown; ++i) {
    if (i > 0) text += !has_rest && i + 1 == shown ? " and " : ", ";
    text += std::to_string(lines[i]);
  }
  if (has_rest) text += fmt::format(" and {} more", lines.size() - shown);
  return text;
}

std::string lineFor(const FaultGroup& group) {
  std::string text = linesText(group.lines) + ": ";
  if (!group.first->column.empty()) text += group.first->column + ": ";
  text += group.first->reason;
  for (std::size_t i = 0; i < group.subjects.size(); ++i) {
    text += fmt::format("{}{}", i == 0 ? "; likewise " : ", ", group.subjects[i]);
  }
  if (group.has_more_subjects) text += " and others";
  return text;
}

void putCell(std::string& into, std::string_view cell, char delimiter) {
  if (!csvNeedsQuotes(cell, delimiter)) {
    into += cell;
    return;
  }
  into += '"';
  for (const char c : cell) {
    if (c == '"') into += c;
    into += c;
  }
  into += '"';
}

void putRow(std::string& into, const std::vector<std::string>& cells, std::string_view last,
            char delimiter) {
  for (const std::string& cell : cells) {
    putCell(into, cell, delimiter);
    into += delimiter;
  }
  putCell(into, last, delimiter);
  into += '\n';
}

}  // namespace

std::vector<std::string> faultLines(const std::vector<RefusedRow>& refused) {
  std::vector<FaultGroup> groups;  // in the order of their first lines
  std::map<std::string, std::size_t> known;
  for (const RefusedRow& row : refused) {
    for (const CellFault& fault : row.faults) {
      const auto [place, is_new] = known.emplace(kindOf(fault), groups.size());
      if (is_new) groups.push_back({&fault, {}, {}, false});
      groups[place->second].add(row.line, fault);
    }
  }
  std::vector<std::string> lines;
  for (const FaultGroup& group : groups) lines.push_back(lineFor(group));
  return lines;
}

std::string refusedTable(const ImportSummary& summary) {
  std::string table;
  putRow(table, summary.header, kReasonColumn, summary.delimiter);
  for (const RefusedRow& row : summary.refused) {
    std::string reasons;
    for (const CellFault& fault : row.faults) {
      if (!reasons.empty()) reasons += "; ";
      reasons += fault.column.empty() ? fault.reason : fault.column + ": " + fault.reason;
    }
    putRow(table, row.cells, reasons, summary.delimiter);
  }
  return table;
}

}  // namespace tabelion
