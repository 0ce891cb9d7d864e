#include "screens/kit/row_layout.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <utility>

namespace tabelion {
namespace {

constexpr int kRowGap = 4;
constexpr int kCellGap = 4;
constexpr int kTextInset = 6;       // both sides of a label's text
constexpr int kCheckMark = 26;      // left of a check box's text, and right of it
constexpr int kCheckTextEdge = 22;  // where that text begins
constexpr int kCheckInset = 8;      // above and below it
constexpr int kButtonInset = 24;
constexpr int kLeastButton = 72;
constexpr int kLeastBox = 100;  // of a box that grows
constexpr int kLeastText = 96;  // of a text that can wrap
constexpr int kBoxHeight = 22;
constexpr int kButtonHeight = 26;
constexpr int kScrollBar = 6;

struct Line {
  std::span<const LayoutCell> cells;
  std::vector<int> widths;
  int height = 0;
};

class Layouter {
 public:
  Layouter(const LayoutScreen& screen, const LayoutBounds& bounds, int screen_width)
      : screen_(screen),
        font_height_(screen.measure(u"X", 0).height),
        screen_width_(screen_width),
        width_(std::max(1, std::min(screen_width - 2 * bounds.margin, bounds.widest))),
        left_((screen_width - width_) / 2),
        y_(bounds.top) {}

  RowLayout run(const std::vector<LayoutRow>& rows) {
    chooseLabelColumn(rows);
    const int bottom = rows.empty() || rows.back().edge_to_edge ? 0 : kRowGap;
    const int needed = heightOf(rows);
    const auto springs = std::count_if(rows.begin(), rows.end(),
                                       [](const LayoutRow& row) { return row.takes_rest; });
    int spare = std::max(0, screen_.size.height - needed - bottom);
    int left_to_share = static_cast<int>(springs);
    for (const LayoutRow& row : rows) {
      int extra = 0;
      if (row.takes_rest) {
        extra = spare / left_to_share--;
        spare -= extra;
      }
      placeRow(row, extra);
    }
    layout_.height = y_ + bottom;
    return std::move(layout_);
  }

 private:
  // The height that everything takes, found by placing it for nothing.
  int heightOf(const std::vector<LayoutRow>& rows) {
    const int top = y_;
    for (const LayoutRow& row : rows) placeRow(row, 0);
    layout_.places.clear();
    return std::exchange(y_, top);
  }

  // Labels stand beside their boxes when the column that they need leaves each box its least room.
  void chooseLabelColumn(const std::vector<LayoutRow>& rows) {
    int labels = 0;
    int least = 0;
    for (const LayoutRow& row : rows) {
      if (row.label == 0) continue;
      labels = std::max(labels, textWidth(row.label) + kTextInset);
      for (const LayoutCell& cell : row.cells) least = std::max(least, leastWidth(cell));
    }
    label_width_ = labels + kCellGap + least <= width_ && labels <= width_ / 2 ? labels : 0;
  }

  int textWidth(ControlId id) const { return screen_.measure(screen_.text(id), 0).width; }

  // As wide as it is when nothing presses it.
  int naturalWidth(const LayoutCell& cell) const {
    if (cell.width != 0) return cell.width;
    switch (cell.kind) {
      case CellKind::kText:
        return textWidth(cell.id) + kTextInset;
      case CellKind::kCheckBox:
        return textWidth(cell.id) + kCheckMark;
      case CellKind::kButton:
        return std::max(kLeastButton, textWidth(cell.id) + kButtonInset);
      case CellKind::kBox:
      case CellKind::kArea:
        return kLeastBox;
    }
    return kLeastBox;
  }
  int leastWidth(const LayoutCell& cell) const {
    const bool wraps = cell.kind == CellKind::kText || cell.kind == CellKind::kCheckBox;
    return wraps ? std::min(naturalWidth(cell), kLeastText) : naturalWidth(cell);
  }

  int linesOf(const LayoutCell& cell, int width) const {
    const int room = width - (cell.kind == CellKind::kText ? kTextInset : kCheckMark);
    return std::max(1, screen_.measure(screen_.text(cell.id), std::max(1, room)).height /
                           std::max(1, font_height_));
  }
  int boxHeight() const { return std::max(kBoxHeight, font_height_ + kCheckInset); }
  int heightOf(const LayoutCell& cell, int width) const {
    if (cell.height != 0) return cell.height;
    switch (cell.kind) {
      case CellKind::kText:
        return linesOf(cell, width) * font_height_ + 4;
      case CellKind::kCheckBox:
        return std::max(boxHeight(), linesOf(cell, width) * font_height_ + kCheckInset);
      case CellKind::kButton:
        return std::max(kButtonHeight, font_height_ + 12);
      case CellKind::kBox:
      case CellKind::kArea:
        return boxHeight();
    }
    return boxHeight();
  }

  // Takes cells from the front: as many as fit, at least one, and never one without what is glued
  // to it.
  Line takeLine(std::span<const LayoutCell>& cells, int room) const {
    std::size_t count = 0;
    int used = 0;
    while (count < cells.size()) {
      std::size_t group = 1;
      int width = naturalWidth(cells[count]);
      while (count + group < cells.size() && cells[count + group].glued) {
        width += kCellGap + naturalWidth(cells[count + group++]);
      }
      if (count > 0 && used + kCellGap + width > room) break;
      used += (count > 0 ? kCellGap : 0) + width;
      count += group;
    }
    Line line{cells.first(count), {}, 0};
    cells = cells.subspan(count);
    spread(line, room);
    for (std::size_t i = 0; i < count; ++i) {
      line.height = std::max(line.height, heightOf(line.cells[i], line.widths[i]));
    }
    return line;
  }

  // Gives the cells their widths: what they need, and what is left to those that grow. Where even
  // that is too much, a text or the widest box gives way.
  void spread(Line& line, int room) const {
    int used = kCellGap * (static_cast<int>(line.cells.size()) - 1);
    int shares = 0;
    for (const LayoutCell& cell : line.cells) {
      line.widths.push_back(naturalWidth(cell));
      used += line.widths.back();
      shares += cell.grow;
    }
    if (used > room) {
      int& widest = *std::max_element(line.widths.begin(), line.widths.end());
      widest = std::max(kBoxHeight, widest - (used - room));
    }
    int spare = std::max(0, room - used);
    for (std::size_t i = 0; i < line.cells.size() && shares > 0; ++i) {
      const int extra = spare * line.cells[i].grow / shares;
      shares -= line.cells[i].grow;
      spare -= extra;
      line.widths[i] += extra;
    }
  }

  void placeRow(const LayoutRow& row, int extra_height) {
    y_ += row.space_above;
    if (!row.edge_to_edge && !row.cells.empty()) y_ += kRowGap;
    int left = row.edge_to_edge ? 0 : left_;
    int room = row.edge_to_edge ? screen_width_ : width_;
    if (row.label != 0 && label_width_ == 0) {  // above its cells
      add(row.label, {left, y_, room, font_height_ + 4});
      y_ += font_height_ + 4;
    } else if (row.label != 0) {
      left += label_width_ + kCellGap;
      room -= label_width_ + kCellGap;
    }
    std::span<const LayoutCell> cells = row.cells;
    const int indent =
        !cells.empty() && cells.front().kind == CellKind::kCheckBox ? kCheckTextEdge : 0;
    for (bool first = true; !cells.empty(); first = false) {
      if (!first) y_ += row.label != 0 || indent == 0 ? kRowGap : 0;
      Line line = takeLine(cells, room - (first ? 0 : indent));
      if (cells.empty()) line.height += extra_height;
      if (first && row.label != 0 && label_width_ != 0) {
        add(row.label, {left_, y_, label_width_, std::min(line.height, boxHeightBeside(line))});
      }
      placeLine(line, left + (first ? 0 : indent), row.centered ? room : 0, extra_height);
      y_ += line.height;
    }
    if (row.cells.empty()) y_ += extra_height;
  }

  // A label stands beside the first line of what it names.
  int boxHeightBeside(const Line& line) const {
    const bool texts =
        std::all_of(line.cells.begin(), line.cells.end(),
                    [](const LayoutCell& cell) { return cell.kind == CellKind::kText; });
    return texts ? font_height_ + 4 : boxHeight();
  }

  void placeLine(const Line& line, int x, int centered_in, int extra_height) {
    const int used = std::accumulate(line.widths.begin(), line.widths.end(),
                                     kCellGap * (static_cast<int>(line.cells.size()) - 1));
    if (centered_in > used) x += (centered_in - used) / 2;
    for (std::size_t i = 0; i < line.cells.size(); ++i) {
      const LayoutCell& cell = line.cells[i];
      const int width = line.widths[i];
      Rect place{x, y_, width, heightOf(cell, width)};
      if (cell.kind == CellKind::kArea) place.height += extra_height;
      if (cell.kind == CellKind::kText && linesOf(cell, width) == 1) {
        place.height = line.height;  // beside the middle of the boxes on its line
      } else if (cell.kind == CellKind::kText) {
        place.y += 2;  // its first line level with a label of one
        place.height -= 2;
      }
      add(cell.id, place);
      x += width + kCellGap;
    }
  }

  void add(ControlId id, const Rect& place) { layout_.places.push_back({id, place}); }

  const LayoutScreen& screen_;
  const int font_height_;
  const int screen_width_;
  const int width_;  // of a row
  const int left_;
  int label_width_ = 0;  // 0: labels stand above
  int y_;
  RowLayout layout_;
};

}  // namespace

LayoutRow ButtonRow(const std::vector<ControlId>& ids) {
  LayoutRow row;
  for (const ControlId id : ids) row.cells.push_back(ButtonCell(id));
  return row;
}

RowLayout LayoutRows(const std::vector<LayoutRow>& rows, const LayoutScreen& screen,
                     const LayoutBounds& bounds) {
  RowLayout layout = Layouter(screen, bounds, screen.size.width).run(rows);
  if (layout.height <= screen.size.height) return layout;
  return Layouter(screen, bounds, screen.size.width - kScrollBar).run(rows);
}

void PlaceRows(Dialog& dialog, const std::vector<LayoutRow>& rows, const LayoutBounds& bounds) {
  const LayoutScreen screen{.size = dialog.screenSize(),
                            .measure = [&](const std::u16string& text,
                                           int width) { return dialog.textSize(text, width); },
                            .text = [&](ControlId id) { return dialog.control(id).text(); }};
  const RowLayout layout = LayoutRows(rows, screen, bounds);
  for (const PlacedControl& placed : layout.places) {
    dialog.control(placed.id).setPlace(placed.place);
  }
  dialog.setContentHeight(layout.height);
}

}  // namespace tabelion
