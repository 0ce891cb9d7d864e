// One control of a screen: the seam's Control over a widget, and what the screen asks of it.
#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>

#include "platform/dialogs.h"
#include "platform/qt/scale.h"

namespace tabelion {

class ScreenControl;

// What a control asks of the screen that it lies in.
class ControlHost {
 public:
  virtual ~ControlHost() = default;
  virtual const Scale& scale() const = 0;
  virtual void notify(ControlId control, Notice notice) = 0;
  // The same after the present event, for what is found out in the middle of it.
  virtual void notifyLater(ControlId control, Notice notice) = 0;
  virtual bool acceptsCharacter(ControlId control, char32_t character) = 0;
  virtual void paintRow(ControlId control, int row, ListPainter& painter, const Rect& area) = 0;
  virtual QString rowText(ControlId control, int row) = 0;
  virtual void paintCanvas(ControlId control, CanvasPainter& painter) = 0;
  virtual void pressCanvas(ControlId control, Point at) = 0;
  // A list of texts that opens below the control; `chosen` gets the place of the chosen one.
  virtual void openChoices(ScreenControl& control, const std::vector<QString>& texts, int marked,
                           std::function<void(int)> chosen) = 0;
  virtual void giveFocus(ScreenControl& control) = 0;
  virtual bool hasFocus(const ScreenControl& control) const = 0;
  virtual void stateChanged(ScreenControl& control) = 0;  // visible, enabled or its name
};

class ScreenControl {
 public:
  ScreenControl(ControlHost& host, const ControlTemplate& made_from, QWidget& widget);
  virtual ~ScreenControl();
  ScreenControl(const ScreenControl&) = delete;
  ScreenControl& operator=(const ScreenControl&) = delete;

  ControlId id() const { return made_from_.id; }
  const ControlTemplate& madeFrom() const { return made_from_; }
  QWidget& widget() const { return *widget_; }
  const Rect& area() const { return area_; }
  bool isShown() const { return visible_; }
  bool canHaveFocus() const;
  void setAccessibleName(const QString& name) { widget_->setAccessibleName(name); }

  virtual Control& seam() = 0;
  // Whether the control itself uses this key for editing, before its screen sees it.
  virtual bool editsWith(const KeyPress&) const { return false; }
  // Takes back, or does again, what was typed in this box; false when there is nothing of that.
  virtual bool undoTyping(bool /*again*/) { return false; }
  // Uses a key that the screen's handler did not want; false leaves it to the screen.
  virtual bool takeKey(const KeyPress&) { return false; }
  virtual void applyScale();
  // Of a box whose text is replaced by typing, when the focus arrives there by keys.
  virtual void selectContent() {}
  // Of the same box, when the screen itself gives it the focus: typing goes on behind the text.
  virtual void moveCaretToEnd() {}
  virtual void eraseBeforeCaret() {}

 protected:
  void moveTo(const Rect& place);
  void show(bool visible);
  void enable(bool enabled);
  void setFontHeight(int pixels);
  ControlHost& host() const { return host_; }

 private:
  ControlHost& host_;
  const ControlTemplate made_from_;
  QWidget* const widget_;  // owned here, though it has the screen as its parent
  Rect area_;
  int font_pixels_ = 0;  // 0: the dialog's
  bool visible_;
  bool enabled_;
};

// What every kind answers alike. A kind overrides what it has; asking another kind's question is a
// program fault and gives nothing.
template <class Interface>
class ControlOf : public Interface, public ScreenControl {
 public:
  using ScreenControl::ScreenControl;

  Control& seam() override { return *this; }
  std::u16string text() const override { return {}; }
  void setText(const std::u16string&) override {}
  bool checked() const override { return false; }
  void setChecked(bool) override {}
  void setChoices(const std::vector<std::u16string>&) override {}
  int selection() const override { return -1; }
  void select(int) override {}
  void setMasked(bool) override {}
  Rect place() const override { return area(); }
  void setPlace(const Rect& place) override { moveTo(place); }
  int bottomOnScreen() const override {
    const double scrolled = widget().parentWidget()->y() / host().scale().zoom();
    return area().y + area().height + int(scrolled);
  }
  void setVisible(bool visible) override { show(visible); }
  void setEnabled(bool enabled) override { enable(enabled); }
  void setFontPixels(int pixels) override { setFontHeight(pixels); }
  void repaint() override {}
  void focus() override { host().giveFocus(*this); }
  void selectText() override { selectContent(); }
  bool hasFocus() const override { return host().hasFocus(*this); }
};

std::unique_ptr<ScreenControl> makeControl(ControlHost& host, const ControlTemplate& from,
                                           QWidget& parent);

// The makers of single kinds, one per file of their own.
std::unique_ptr<ScreenControl> makeLabel(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeIcon(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeCheckBox(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeButton(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeEdit(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeMultiEdit(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeChoice(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeSpin(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeCanvas(ControlHost&, const ControlTemplate&, QWidget& parent);
std::unique_ptr<ScreenControl> makeList(ControlHost&, const ControlTemplate&, QWidget& parent);

}  // namespace tabelion
