#include "cli/kit/text_table.h"

#include <algorithm>

#include <utf8proc.h>

#include "interchange/utf8.h"

namespace tabelion {
namespace {

constexpr std::string_view kCut = "…";
constexpr std::string_view kBetween = "  ";
constexpr char32_t kFirstCombining = 0x300;

bool isControl(char32_t c) {
  return c < ' ' || (c >= 0x7F && c < 0xA0) || c == kNoCharacter;
}

// Controls count as the blank that stands for them.
std::size_t widthOf(char32_t c) {
  if (c < kFirstCombining || c == kNoCharacter) return 1;
  return static_cast<std::size_t>(
      std::max(0, utf8proc_charwidth(static_cast<utf8proc_int32_t>(c))));
}

}  // namespace

std::size_t terminalWidth(std::string_view utf8) {
  std::size_t width = 0;
  while (!utf8.empty()) {
    const DecodedCharacter next = decodeUtf8(utf8);
    width += widthOf(next.character);
    utf8.remove_prefix(next.length);
  }
  return width;
}

std::string cutToWidth(std::string_view utf8, std::size_t columns) {
  const bool fits = terminalWidth(utf8) <= columns;
  std::string text;
  for (std::size_t width = fits ? 0 : 1; !utf8.empty();) {
    const DecodedCharacter next = decodeUtf8(utf8);
    width += widthOf(next.character);
    if (width > columns) break;
    if (isControl(next.character)) {
      text += ' ';
    } else {
      text += utf8.substr(0, next.length);
    }
    utf8.remove_prefix(next.length);
  }
  if (!fits) text += kCut;
  return text;
}

void TextTable::reserve(std::size_t rows) {
  constexpr std::size_t kUsualCell = 24;
  const std::size_t cells = (rows + 1) * columns_.size();
  cells_.reserve(cells);
  text_.reserve(cells * kUsualCell);
}

bool TextTable::isPlain(std::string_view text) {
  bool plain = true;
  for (const char c : text) plain &= c >= ' ' && c <= '~';
  return plain;
}

// Returns the width of what was added.
std::size_t TextTable::addCharacters(std::string_view text) {
  std::size_t width = 0;
  std::size_t cut_at = text_.size();  // where "…" still has room
  std::size_t cut_width = 0;
  while (!text.empty()) {
    // Most of a text is one run of plain letters after the other.
    const std::size_t room = kWidestCell - 1 - std::min(width, kWidestCell - 1);
    const std::size_t run = std::min(asciiLength(text), room);
    if (run > 0 && isPlain(text.substr(0, run))) {
      text_ += text.substr(0, run);
      text.remove_prefix(run);
      width += run;
      cut_at = text_.size();
      cut_width = width;
      continue;
    }
    const DecodedCharacter next = decodeUtf8(text);
    const std::size_t wide = widthOf(next.character);
    if (width + wide > kWidestCell) {
      text_.resize(cut_at);
      text_ += kCut;
      return cut_width + 1;
    }
    if (isControl(next.character)) {
      text_ += ' ';
    } else {
      text_ += text.substr(0, next.length);
    }
    width += wide;
    if (width < kWidestCell) {
      cut_at = text_.size();
      cut_width = width;
    }
    text.remove_prefix(next.length);
  }
  return width;
}

void TextTable::endCell(std::size_t begin, std::size_t width) {
  Column& column = columns_[next_column_];
  column.width = std::max(column.width, width);
  if (++next_column_ == columns_.size()) next_column_ = 0;
  cells_.push_back(
      {static_cast<std::uint32_t>(text_.size() - begin), static_cast<std::uint32_t>(width)});
}

void TextTable::addPlain(std::string_view text) {
  const std::size_t begin = text_.size();
  if (text.size() <= kWidestCell) {
    text_ += text;
    return endCell(begin, text.size());
  }
  text_ += text.substr(0, kWidestCell - 1);
  text_ += kCut;
  endCell(begin, kWidestCell);
}

void TextTable::add(std::string_view utf8) {
  if (isPlain(utf8)) return addPlain(utf8);
  const std::size_t begin = text_.size();
  endCell(begin, addCharacters(utf8));
}

void TextTable::print(OutputBuffer& out) const {
  const std::string blanks(kWidestCell, ' ');
  std::string_view text = text_;
  for (std::size_t i = 0; i < cells_.size(); i += columns_.size()) {
    std::size_t pending = 0;  // no line ends in blanks
    for (std::size_t at = 0; at < columns_.size() && i + at < cells_.size(); ++at) {
      const Cell& cell = cells_[i + at];
      const Column& column = columns_[at];
      const std::size_t room = column.width - cell.width;
      if (column.is_right) pending += room;
      if (cell.size > 0) {
        for (; pending > 0; pending -= std::min(pending, blanks.size())) {
          out.put(std::string_view(blanks).substr(0, pending));
        }
        out.put(text.substr(0, cell.size));
        text.remove_prefix(cell.size);
      }
      pending += (column.is_right ? 0 : room) + kBetween.size();
    }
    out.put('\n');
  }
}

}  // namespace tabelion
