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

inline constexpr QRgb kPaper = 0xFFFFFFFF;
inline constexpr QRgb kInk = 0xFF14202B;
inline constexpr QRgb kInkSoft = 0xFF4A5763;  // second-rank text; 7:1 on paper
inline constexpr QRgb kInkDisabled = 0xFF8A929A;
inline constexpr QRgb kLine = 0xFF8793A0;  // borders of controls
inline constexpr QRgb kLineSoft = 0xFFD5DBE1;
inline constexpr QRgb kPanel = 0xFFEFF2F5;  // headings, read-only boxes
inline constexpr QRgb kBar = 0xFF173A5C;    // title strip and soft keys
inline constexpr QRgb kBarPressed = 0xFF2B5F91;
inline constexpr QRgb kBarInk = 0xFFFFFFFF;
inline constexpr QRgb kBarInkDisabled = 0xFF8FA6BC;
inline constexpr QRgb kFocus = 0xFF0A5FA8;  // rings and frames of what has the focus
inline constexpr QRgb kFocusPaper = 0xFFE8F4FD;
inline constexpr QRgb kSelection = 0xFF40BCFF;
inline constexpr QRgb kShade = 0x78101820;  // over what lies below a panel

// A font of the given height in the screen's own pixels.
QFont font(const Scale& scale, int pixels = kTextPixels, TextWeight weight = TextWeight::kNormal);
// The rules for the toolkit's own widgets (text boxes, scroll bars) at this zoom.
QString styleSheet(const Scale& scale);

}  // namespace tabelion::theme
