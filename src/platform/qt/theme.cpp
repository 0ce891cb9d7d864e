#include "platform/qt/theme.h"

#include <QFontDatabase>
#include <utility>

namespace tabelion::theme {

namespace {

const QString& family() {
  static const QString name = QFontDatabase::hasFamily(QStringLiteral("DejaVu Sans"))
                                  ? QStringLiteral("DejaVu Sans")
                                  : QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
  return name;
}

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

QString styleSheet(const Scale& scale) {
  // The wider line of the focus takes its room from the padding, so that the text stays in place.
  const int thick = scale.line(2) - scale.line();
  const std::pair<const char*, QString> values[] = {
      {"@paper", rgb(kPaper)},
      {"@ink", rgb(kInk)},
      {"@disabled", rgb(kInkDisabled)},
      {"@hair", QString::number(scale.line())},
      {"@thick", QString::number(scale.line(2))},
      {"@softline", rgb(kLineSoft)},
      {"@line", rgb(kLine)},
      {"@panel", rgb(kPanel)},
      {"@focuspaper", rgb(kFocusPaper)},
      {"@focus", rgb(kFocus)},
      {"@selection", rgb(kSelection)},
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
