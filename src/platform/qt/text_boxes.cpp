// Edit boxes of one line and of several. Whatever way characters come in (typed, pasted, dropped,
// from an input method), each is offered to the handler first; one that is refused, or that makes
// the text too long, takes the whole insertion with it, so that nothing arrives half.
#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QStyle>
#include <QTextBlock>
#include <QTextDocument>
#include <QValidator>

#include "platform/qt/control.h"
#include "platform/qt/theme.h"

namespace tabelion {

namespace {

// Whether every character of `inserted` is a whole one that the handler takes.
bool acceptsAll(ControlHost& host, ControlId id, const QString& inserted) {
  for (qsizetype i = 0; i < inserted.size(); ++i) {
    char32_t character = inserted[i].unicode();
    if (inserted[i].isHighSurrogate()) {
      if (i + 1 == inserted.size() || !inserted[i + 1].isLowSurrogate()) return false;
      character = QChar::surrogateToUcs4(inserted[i], inserted[i + 1]);
      ++i;
    } else if (inserted[i].isLowSurrogate()) {
      return false;
    }
    if (!host.acceptsCharacter(id, character)) return false;
  }
  return true;
}

// Whoever types a character sees that it does not appear; of a whole text one wants to know why.
void sayRefused(ControlHost& host, ControlId id, const QString& inserted, bool fits) {
  QApplication::beep();
  if (inserted.toUcs4().size() < 2) return;
  host.notifyLater(id, fits ? Notice::kNotAllowed : Notice::kTooLong);
}

// Refuses a change of a one-line box by what it inserts, compared with the text before.
class InsertionValidator final : public QValidator {
 public:
  InsertionValidator(ControlHost& host, ControlId id, int max_length, QObject* parent)
      : QValidator(parent), host_(host), id_(id), max_length_(max_length) {}

  State validate(QString& text, int&) const override {
    if (text == before || open_to_all) return Acceptable;
    qsizetype start = 0;
    while (start < qMin(text.size(), before.size()) && text[start] == before[start]) ++start;
    qsizetype tail = 0;
    while (tail < qMin(text.size(), before.size()) - start &&
           text[text.size() - 1 - tail] == before[before.size() - 1 - tail]) {
      ++tail;
    }
    // A difference between two characters may lie in their second halves only.
    if (start > 0 && text[start - 1].isHighSurrogate()) --start;
    if (tail > 0 && text[text.size() - tail].isLowSurrogate()) --tail;
    const bool longer = text.size() > before.size();
    const bool fits = max_length_ <= 0 || text.size() <= max_length_ || !longer;
    const QString inserted = text.mid(start, text.size() - start - tail);
    if (fits && acceptsAll(host_, id_, inserted)) return Acceptable;
    sayRefused(host_, id_, inserted, fits);
    return Invalid;
  }

  QString before;
  bool open_to_all = false;  // while the program itself sets the text

 private:
  ControlHost& host_;
  const ControlId id_;
  const int max_length_;
};

bool isLineKey(Key key) {
  return key == Key::kCharacter || key == Key::kLeft || key == Key::kRight || key == Key::kHome ||
         key == Key::kEnd;
}

class EditControl final : public ControlOf<Control> {
 public:
  EditControl(ControlHost& control_host, const ControlTemplate& from, QLineEdit* widget)
      : ControlOf(control_host, from, *widget),
        line_(widget),
        validator_(new InsertionValidator(control_host, from.id, from.max_length, widget)) {
    line_->setValidator(validator_);
    line_->setReadOnly(from.read_only);
    line_->setAlignment((from.right_aligned ? Qt::AlignRight
                         : from.centered    ? Qt::AlignHCenter
                                            : Qt::AlignLeft) |
                        Qt::AlignVCenter);
    line_->setContextMenuPolicy(Qt::NoContextMenu);  // it would open outside the phone's screen
    setMasked(from.masked);
    setText(from.text);
    QObject::connect(line_, &QLineEdit::textChanged, line_,
                     [this](const QString& text) { validator_->before = text; });
    QObject::connect(line_, &QLineEdit::textEdited, line_, [this] {
      edited_ = true;
      host().notify(id(), Notice::kEdited);
    });
  }

  // A text that nobody edited comes back exactly as it was set.
  std::u16string text() const override { return edited_ ? fromQt(line_->text()) : set_; }
  void setText(const std::u16string& text) override {
    set_ = text;
    edited_ = false;
    const QScopedValueRollback<bool> open(validator_->open_to_all, true);
    line_->setText(toQt(text));
    // A box shows the start of its text; whoever is typing in it goes on at the end.
    line_->setCursorPosition(line_->hasFocus() ? int(line_->text().size()) : 0);
    validator_->before = line_->text();
  }
  void setMasked(bool masked) override {
    line_->setEchoMode(masked ? QLineEdit::Password : QLineEdit::Normal);
  }
  bool editsWith(const KeyPress& press) const override { return isLineKey(press.key); }
  bool undoTyping(bool again) override {
    if (!(again ? line_->isRedoAvailable() : line_->isUndoAvailable())) return false;
    again ? line_->redo() : line_->undo();
    return true;
  }
  void selectContent() override { line_->selectAll(); }
  void moveCaretToEnd() override {
    if (!line_->isReadOnly()) line_->end(false);  // what is only read is read from its start
  }
  void eraseBeforeCaret() override { line_->backspace(); }

 private:
  QLineEdit* line_;
  InsertionValidator* validator_;
  std::u16string set_;
  bool edited_ = false;
};

class MultiLineBox final : public QPlainTextEdit {
 public:
  MultiLineBox(ControlHost& host, const ControlTemplate& from, QWidget* parent)
      : QPlainTextEdit(parent), host_(host), id_(from.id), max_length_(from.max_length) {
    setReadOnly(from.read_only);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setContextMenuPolicy(Qt::NoContextMenu);
    document()->setDocumentMargin(0);
    if (from.read_only)
      setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  }

  bool takes(const QString& inserted) {
    const qsizetype selected = textCursor().selectionEnd() - textCursor().selectionStart();
    const qsizetype size = document()->characterCount() - 1 - selected + inserted.size();
    const bool fits = max_length_ <= 0 || size <= max_length_;
    if (fits && acceptsAll(host_, id_, inserted)) return true;
    sayRefused(host_, id_, inserted, fits);
    return false;
  }

  QString rawText() const {
    // Not toPlainText, which turns no-break spaces into spaces.
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    return text;
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const QString text = event->text();
    const bool types = !text.isEmpty() && (text[0].isPrint() || text[0].isSurrogate()) &&
                       !(event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier));
    const bool breaks = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReadOnly() && ((types && !takes(text)) || (breaks && !takes(QStringLiteral("\n"))))) {
      return;
    }
    QPlainTextEdit::keyPressEvent(event);
  }
  void inputMethodEvent(QInputMethodEvent* event) override {
    if (!event->commitString().isEmpty() && !takes(event->commitString())) {
      QInputMethodEvent nothing;
      return QPlainTextEdit::inputMethodEvent(&nothing);
    }
    QPlainTextEdit::inputMethodEvent(event);
  }
  void insertFromMimeData(const QMimeData* source) override {
    QString text = source->text();
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (!isReadOnly() && takes(text)) insertPlainText(text);
  }

 private:
  ControlHost& host_;
  const ControlId id_;
  const int max_length_;
};

class MultiEditControl final : public ControlOf<Control> {
 public:
  MultiEditControl(ControlHost& control_host, const ControlTemplate& from, MultiLineBox* widget)
      : ControlOf(control_host, from, *widget), box_(widget) {
    setText(from.text);
    QObject::connect(box_, &QPlainTextEdit::textChanged, box_, [this] {
      if (setting_) return;
      edited_ = true;
      host().notify(id(), Notice::kEdited);
    });
  }

  std::u16string text() const override { return edited_ ? fromQt(box_->rawText()) : set_; }
  void setText(const std::u16string& text) override {
    const QScopedValueRollback<bool> setting(setting_, true);
    set_ = text;
    edited_ = false;
    box_->setPlainText(toQt(text));
  }
  bool editsWith(const KeyPress& press) const override {
    switch (press.key) {
      case Key::kEnter:
        return !box_->isReadOnly();
      case Key::kUp:
        return canMove(QTextCursor::Up);
      case Key::kDown:
        return canMove(QTextCursor::Down);
      case Key::kPageUp:
      case Key::kPageDown:
        return true;
      default:
        return isLineKey(press.key);
    }
  }
  bool undoTyping(bool again) override {
    const QTextDocument& text = *box_->document();
    if (!(again ? text.isRedoAvailable() : text.isUndoAvailable())) return false;
    again ? box_->redo() : box_->undo();
    return true;
  }
  void applyScale() override {
    ControlOf::applyScale();
    box_->setTabStopDistance(4.0 * box_->fontMetrics().horizontalAdvance(QLatin1Char(' ')));
  }

 private:
  bool canMove(QTextCursor::MoveOperation way) const {
    QTextCursor cursor = box_->textCursor();
    return cursor.movePosition(way);
  }

  MultiLineBox* box_;
  std::u16string set_;
  bool edited_ = false;
  bool setting_ = false;
};

}  // namespace

std::unique_ptr<ScreenControl> makeEdit(ControlHost& host, const ControlTemplate& from,
                                        QWidget& parent) {
  return std::make_unique<EditControl>(host, from, new QLineEdit(&parent));
}

std::unique_ptr<ScreenControl> makeMultiEdit(ControlHost& host, const ControlTemplate& from,
                                             QWidget& parent) {
  return std::make_unique<MultiEditControl>(host, from, new MultiLineBox(host, from, &parent));
}

}  // namespace tabelion
