// Places a screen's controls in rows, for every screen size and font. A screen says which rows it
// has, from the top down, and calls PlaceRows in onInit, in onResize, and when a row comes or goes:
//
//   PlaceRows(dialog, {LabeledRow(kNameLabel, {BoxCell(kNameBox)}),
//                      LabeledRow(kFirstLabel, {BoxCell(kFirstField), BoxCell(kFirstWay, 80)}),
//                      SentenceRow({CheckCell(kSaveBox), BoxCell(kSeconds, 46), TextCell(kUnit)}),
//                      RestRow(kHits, 60),
//                      ButtonRow({kFindButton, kNextButton})});
//
// Labels stand beside their boxes, in one column that is as wide as the longest of them, where the
// screen has room for both, else above. The cells of a row follow each other on a line and go on
// in the next when they do not fit; texts and check boxes wrap. On a wide screen the rows keep a
// readable width in its middle. Rows that need more than the screen's height make it scroll.
//
// Places are in the screen's own pixels. A control that no row names is neither placed nor hidden.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/dialogs.h"

namespace tabelion {

enum class CellKind {
  kText,      // a label; as wide as its text
  kCheckBox,  // likewise, with room for the box
  kButton,    // likewise, with a margin
  kBox,       // anything of a box's height: edits, choices, spins
  kArea,      // a picture, list or text box of its own height
};

struct LayoutCell {
  ControlId id = 0;
  CellKind kind = CellKind::kBox;
  int width = 0;       // 0: what its kind and text need at least
  int height = 0;      // 0: its kind's; an area's least height when it takes the rest
  int grow = 0;        // its share of the room that is left on the line
  bool glued = false;  // stays on the line of the cell before it
};

struct LayoutRow {
  ControlId label = 0;  // 0: the cells begin at the left edge
  std::vector<LayoutCell> cells{};
  bool centered = false;
  bool takes_rest = false;  // of the height; shared when several do
  bool edge_to_edge = false;
  int space_above = 0;  // besides what every row keeps
};

inline LayoutCell TextCell(ControlId id) {
  return {.id = id, .kind = CellKind::kText};
}
inline LayoutCell CheckCell(ControlId id) {
  return {.id = id, .kind = CellKind::kCheckBox};
}
inline LayoutCell ButtonCell(ControlId id) {
  return {.id = id, .kind = CellKind::kButton};
}
// Of this width, or as wide as the line lets it be.
inline LayoutCell BoxCell(ControlId id, int width = 0) {
  return {.id = id, .width = width, .grow = width == 0 ? 1 : 0};
}
inline LayoutCell AreaCell(ControlId id, Size size) {
  return {.id = id, .kind = CellKind::kArea, .width = size.width, .height = size.height};
}
inline LayoutCell Glued(LayoutCell cell) {
  cell.glued = true;
  return cell;
}

inline LayoutRow LabeledRow(ControlId label, std::vector<LayoutCell> cells) {
  return {.label = label, .cells = std::move(cells)};
}
// Texts and boxes that read as one sentence; the lines after the first begin where a check box's
// text does.
inline LayoutRow SentenceRow(std::vector<LayoutCell> cells) {
  return {.cells = std::move(cells)};
}
inline LayoutRow TextRow(ControlId id) {
  return {.cells = {{.id = id, .kind = CellKind::kText, .grow = 1}}};
}
inline LayoutRow CheckRow(ControlId id) {
  return {.cells = {{.id = id, .kind = CellKind::kCheckBox, .grow = 1}}};
}
inline LayoutRow BoxRow(ControlId id) {
  return {.cells = {BoxCell(id)}};
}
LayoutRow ButtonRow(const std::vector<ControlId>& ids);
// A paragraph of its own.
inline LayoutRow Spaced(LayoutRow row) {
  row.space_above = 8;
  return row;
}
inline LayoutRow Centered(LayoutRow row) {
  row.centered = true;
  return row;
}
// A list or picture from edge to edge, in the height that the other rows leave, at least `least`.
inline LayoutRow RestRow(ControlId id, int least) {
  return {.cells = {{.id = id, .kind = CellKind::kArea, .height = least, .grow = 1}},
          .takes_rest = true,
          .edge_to_edge = true};
}
// Nothing, in the height that the other rows leave: what follows stands at the bottom.
inline LayoutRow SpringRow() {
  return {.takes_rest = true};
}

struct LayoutBounds {
  int top = 0;       // where the first row begins
  int widest = 480;  // that rows become
  int margin = 4;    // on both sides
};

// What the layout asks about: the screen's client area, a text's room in its font (wrapped to a
// width, or on one line for width 0), and a control's text.
struct LayoutScreen {
  Size size;
  std::function<Size(const std::u16string& text, int width)> measure;
  std::function<std::u16string(ControlId)> text;
};

struct PlacedControl {
  ControlId id = 0;
  Rect place;
};
struct RowLayout {
  std::vector<PlacedControl> places;
  int height = 0;  // of everything
};

RowLayout LayoutRows(const std::vector<LayoutRow>& rows, const LayoutScreen& screen,
                     const LayoutBounds& bounds = {});

// Lays out and places, and sets the dialog's content height.
void PlaceRows(Dialog& dialog, const std::vector<LayoutRow>& rows, const LayoutBounds& bounds = {});

}  // namespace tabelion
