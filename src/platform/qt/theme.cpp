#include "platform/qt/theme.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <utility>

namespace tabelion::theme {

namespace {

const QString& family() {
  static const QString name = QFontDatabase::hasFamily(QStringLiteral("DejaVu Sans"))
                                  ? QStringLiteral("DejaVu Sans")
                                  : QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
  return name;
}

constexpr char kSchemeProperty[] = "tabelion_scheme";

// In the order of Scheme.
constexpr Colours kColours[] = {
    {.paper = 0xFFFFFFFF,
     .ink = 0xFF14202B,
     .ink_soft = 0xFF4A5763,
     .ink_disabled = 0xFF8A929A,
     .line = 0xFF8793A0,
     .line_soft = 0xFFD5DBE1,
     .panel = 0xFFEFF2F5,
     .bar = 0xFF173A5C,
     .bar_pressed = 0xFF2B5F91,
     .bar_ink = 0xFFFFFFFF,
     .bar_ink_disabled = 0xFF8FA6BC,
     .focus = 0xFF0A5FA8,
     .on_focus = 0xFFFFFFFF,
     .focus_paper = 0xFFE8F4FD,
     .selection = 0xFF40BCFF,
     .shade = 0x78101820},
    {.paper = 0xFF14191F,
     .ink = 0xFFE6EBF0,
     .ink_soft = 0xFFB4BFCA,
     .ink_disabled = 0xFF76828E,
     .line = 0xFF6B7885,
     .line_soft = 0xFF343E48,
     .panel = 0xFF212930,
     .bar = 0xFF0C2A45,
     .bar_pressed = 0xFF1F4A75,
     .bar_ink = 0xFFFFFFFF,
     .bar_ink_disabled = 0xFF7F94A8,
     .focus = 0xFF58B0FF,
     .on_focus = 0xFF0B1117,
     .focus_paper = 0xFF16293B,
     .selection = 0xFF1C5C8F,
     .shade = 0xA0000000},
    {.paper = 0xFFFFFFFF,
     .ink = 0xFF000000,
     .ink_soft = 0xFF000000,
     .ink_disabled = 0xFF595959,
     .line = 0xFF000000,
     .line_soft = 0xFF595959,
     .panel = 0xFFFFFFFF,
     .bar = 0xFF000000,
     .bar_pressed = 0xFF0000B0,
     .bar_ink = 0xFFFFFFFF,
     .bar_ink_disabled = 0xFFB8B8B8,
     .focus = 0xFF0000B0,
     .on_focus = 0xFFFFFFFF,
     .focus_paper = 0xFFFFFFFF,
     .selection = 0xFFFFE34D,
     .shade = 0xB0000000},
    {.paper = 0xFF000000,
     .ink = 0xFFFFFFFF,
     .ink_soft = 0xFFFFFFFF,
     .ink_disabled = 0xFFB0B0B0,
     .line = 0xFFFFFFFF,
     .line_soft = 0xFFB0B0B0,
     .panel = 0xFF000000,
     .bar = 0xFF2A2A2A,
     .bar_pressed = 0xFF5A5A00,
     .bar_ink = 0xFFFFFFFF,
     .bar_ink_disabled = 0xFFB0B0B0,
     .focus = 0xFFFFFF00,
     .on_focus = 0xFF000000,
     .focus_paper = 0xFF000000,
     .selection = 0xFF0040C0,
     .shade = 0xB0000000},
};

QString rgb(QRgb colour) {
  return QColor::fromRgb(colour).name();
}

}  // namespace

QFont font(const Scale& scale, int pixels, TextWeight weight) {
  QFont result(family());
  result.setPixelSize(qMax(1, scale.px(pixels)));
  result.setWeight(weight == TextWeight::kSemiBold ? QFont::DemiBold : QFont::Normal);
  // Hinted widths at one size do not fit those at another; a text must fit at every zoom alike.
  result.setHintingPreference(QFont::PreferVerticalHinting);
  return result;
}

Scheme scheme() {
  return static_cast<Scheme>(qApp->property(kSchemeProperty).toInt());
}

const Colours& colours() {
  return kColours[qApp->property(kSchemeProperty).toInt()];
}

void setScheme(Scheme scheme) {
  qApp->setProperty(kSchemeProperty, static_cast<int>(scheme));
  const Colours& now = colours();
  const auto colour = [](QRgb rgb) { return QColor::fromRgb(rgb); };
  QPalette palette(colour(now.panel), colour(now.paper));
  const std::pair<QPalette::ColorRole, QRgb> roles[] = {
      {QPalette::WindowText, now.ink},     {QPalette::Text, now.ink},
      {QPalette::ButtonText, now.ink},     {QPalette::Base, now.paper},
      {QPalette::Window, now.paper},       {QPalette::Highlight, now.selection},
      {QPalette::HighlightedText, now.ink}};
  for (const auto& [role, rgb] : roles) palette.setColor(role, colour(rgb));
  QApplication::setPalette(palette);
}

QString styleSheet(const Scale& scale) {
  // The wider line of the focus takes its room from the padding, so that the text stays in place.
  const int thick = scale.line(2) - scale.line();
  const std::pair<const char*, QString> values[] = {
      {"@paper", rgb(colours().paper)},
      {"@ink", rgb(colours().ink)},
      {"@disabled", rgb(colours().ink_disabled)},
      {"@hair", QString::number(scale.line())},
      {"@thick", QString::number(scale.line(2))},
      {"@softline", rgb(colours().line_soft)},
      {"@line", rgb(colours().line)},
      {"@panel", rgb(colours().panel)},
      {"@focuspaper", rgb(colours().focus_paper)},
      {"@focus", rgb(colours().focus)},
      {"@selection", rgb(colours().selection)},
      {"@padX", QString::number(scale.px(3))},
      {"@padY", QString::number(scale.px(2))},
      {"@tightX", QString::number(qMax(0, scale.px(3) - thick))},
      {"@tightY", QString::number(qMax(0, scale.px(2) - thick))},
      {"@round", QString::number(scale.px(3))},
      {"@bar", QString::number(scale.px(kScrollBarWidth))},
      {"@half", QString::number(scale.px(kScrollBarWidth) / 2)},
      {"@handle", QString::number(scale.px(18))},
  };
  QString sheet = QStringLiteral(R"(
    QLineEdit, QPlainTextEdit {
      background: @paper; color: @ink; border: @hairpx solid @line; border-radius: @roundpx;
      padding: 0 @padXpx; selection-background-color: @selection; selection-color: @ink;
      lineedit-password-character: 42; }
    QPlainTextEdit { padding: @padYpx @padXpx; }
    QLineEdit:focus { background: @focuspaper; border: @thickpx solid @focus;
      padding: 0 @tightXpx; }
    QPlainTextEdit:focus { background: @focuspaper; border: @thickpx solid @focus;
      padding: @tightYpx @tightXpx; }
    QLineEdit:read-only, QPlainTextEdit[readOnly="true"],
    QLineEdit:disabled, QPlainTextEdit:disabled { background: @panel; border-color: @softline; }
    QLineEdit:disabled, QPlainTextEdit:disabled { color: @disabled; }
    QLineEdit:focus:read-only, QPlainTextEdit:focus[readOnly="true"] { border-color: @focus; }
    QScrollBar:vertical { width: @barpx; background: @panel; border: none; margin: 0; }
    QScrollBar::handle:vertical { background: @line; min-height: @handlepx;
      border-radius: @halfpx; }
    QScrollBar::handle:vertical:hover { background: @focus; }
    QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
    QScrollBar::add-page, QScrollBar::sub-page { background: none; }
    QProgressBar { border: @hairpx solid @line; border-radius: @halfpx; background: @panel; }
    QProgressBar::chunk { background: @focus; }
  )");
  for (const auto& [name, value] : values) sheet.replace(QLatin1String(name), value);
  return sheet;
}

}  // namespace tabelion::theme
