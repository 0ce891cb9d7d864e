// The look of the phone in one place: colours, fonts, the heights of its fixed parts.
#pragma once

#include <QColor>
#include <QFont>
#include <QString>

#include "platform/dialogs.h"
#include "platform/qt/scale.h"

namespace tabelion::theme {

// Heights in the screen's own pixels.
inline constexpr int kTitleHeight = 22;
inline constexpr int kSoftKeyHeight = 24;
inline constexpr int kListRowHeight = 18;
inline constexpr int kHeadingHeight = 18;
inline constexpr int kMenuRowHeight = 22;
inline constexpr int kScrollBarWidth = 6;

// Font heights in the screen's own pixels: 9 and 11 points at 96 dots per inch.
inline constexpr int kTextPixels = 12;
inline constexpr int kListTitlePixels = 14;
inline constexpr int kDotsPerInch = 96;

// What the window is painted with. Contrast of ink on paper is 7:1 or more in every scheme, that of
// borders and of the frame round what has the focus 3:1.
struct Colours {
  QRgb paper;
  QRgb ink;
  QRgb ink_soft;  // second-rank text
  QRgb ink_disabled;
  QRgb line;  // borders of controls
  QRgb line_soft;
  QRgb panel;  // headings, read-only boxes
  QRgb bar;    // title strip and soft keys
  QRgb bar_pressed;
  QRgb bar_ink;
  QRgb bar_ink_disabled;
  QRgb focus;     // rings and frames of what has the focus
  QRgb on_focus;  // text and marks on it
  QRgb focus_paper;
  QRgb selection;
  QRgb shade;  // over what lies below a panel
};
const Colours& colours();  // of the present scheme

// Held by the application object. A window that is there already is told by its setScheme.
Scheme scheme();
void setScheme(Scheme scheme);

// A font of the given height in the screen's own pixels.
QFont font(const Scale& scale, int pixels = kTextPixels, TextWeight weight = TextWeight::kNormal);
// The rules for the toolkit's own widgets (text boxes, scroll bars) at this zoom.
QString styleSheet(const Scale& scale);

}  // namespace tabelion::theme
