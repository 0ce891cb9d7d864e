// The phone in memory: it plays a script of what a person does and sees, and fails the test on
// anything that the script did not expect (a message box, a menu, a screen, an early or a late
// end). Nothing waits: timers fire when the script says so.
//
//   phone.at(kRecordListScreen).press(Key::kDown).choose({u"Menu", u"Save"});
//   phone.says(u"File Saved", u"Update");
//   phone.play([&] { RunTabelion(platform, {}); });
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/dialogs.h"

namespace tabelion {

// What a handler painted for one row.
struct PaintedRow {
  struct Fill {
    Rect area;
    Color color;
  };
  struct Text {
    Rect area;
    std::u16string text;
    Color color;
    TextWeight weight;
  };
  struct Picture {
    Point at;
    tabelion::Picture picture;
  };
  std::vector<Fill> fills;
  std::vector<Text> texts;
  std::vector<Picture> pictures;

  std::vector<std::u16string> words() const;  // the texts alone, in painting order
};

// What a handler painted on a canvas.
struct PaintedCanvas {
  struct Line {
    Point from;
    Point to;
    Color color;
    int width;
  };
  std::vector<PaintedRow::Fill> fills;
  std::vector<Line> lines;
  std::vector<PaintedRow::Text> texts;
};

class FakeDialog;

class FakeControl : public ListControl {
 public:
  FakeControl(FakeDialog& dialog, ControlTemplate from);

  std::u16string text() const override { return face.text; }
  void setText(const std::u16string& text) override {
    face.text = text;
    before_typing.clear();
    text_selected = false;
  }
  bool checked() const override { return checked_; }
  void setChecked(bool checked) override { checked_ = checked; }
  void setChoices(const std::vector<std::u16string>& texts) override;
  int selection() const override { return selection_; }
  void select(int index) override { selection_ = index; }
  Rect place() const override { return face.place; }
  void setPlace(const Rect& place) override { face.place = place; }
  int bottomOnScreen() const override { return face.place.y + face.place.height; }
  void setVisible(bool visible) override { face.visible = visible; }
  void setEnabled(bool enabled) override { face.enabled = enabled; }
  void setMasked(bool masked) override { face.masked = masked; }
  void setFontPixels(int pixels) override { font_pixels = pixels; }
  void focus() override;
  bool hasFocus() const override;
  void selectText() override { text_selected = face.kind == ControlKind::kEdit; }

  void setColumns(const std::vector<ListColumn>& columns) override;
  const std::vector<ListColumn>& columns() const override { return columns_; }
  void setRowCount(int count) override;
  int rowCount() const override { return rows_; }
  void selectRow(int row) override { selected_ = row < rows_ ? row : -1; }
  int selectedRow() const override { return selected_; }
  void scrollSideways(int pixels) override;
  void repaint() override {}

  PaintedRow paintRow(int row);
  PaintedCanvas paintCanvas();
  std::u16string spoken() const;  // a canvas's name and words
  std::vector<std::u16string> headings() const;
  bool takesFocus() const;

  ControlTemplate face;  // as the template gave it, with what was set since
  std::vector<std::u16string> choices;
  std::vector<std::u16string> before_typing;  // the texts that Undo in the box goes back to
  bool text_selected = false;
  int font_pixels = 0;
  int scrolled = 0;

 private:
  FakeDialog& dialog_;
  bool checked_ = false;
  int selection_ = -1;
  std::vector<ListColumn> columns_;
  int rows_ = 0;
  int selected_ = -1;
};

class FakePhone;

class FakeDialog : public Dialog {
 public:
  FakeDialog(FakePhone& phone, const DialogTemplate& from, DialogHandler& handler);

  Size screenSize() const override;
  Size fullScreenSize() const override;
  int verticalDpi() const override { return 96; }
  Size textSize(const std::u16string& text, int width) const override;
  Control& control(ControlId id) override { return fake(id); }
  ListControl& list(ControlId id) override { return fake(id); }
  Control& addControl(const ControlTemplate& control) override;
  void removeControl(ControlId id) override;
  void setContentHeight(int height) override { content_height = height; }
  void setTitle(const std::u16string& text) override { title = text; }
  void setMenuBar(const MenuBar& bar) override { menu_bar = bar; }
  void startTimer(int timer, int period_ms) override { timers[timer] = period_ms; }
  void stopTimer(int timer) override { timers.erase(timer); }
  void post(int message) override { posted.push_back(message); }
  void end(int with) override {
    ended = true;
    result = with;
  }

  // An unknown id fails the test.
  FakeControl& fake(ControlId id);
  bool has(ControlId id) const { return controls.contains(id); }
  FakeControl* focused();
  void moveFocus(ControlId id);
  void arriveAt(ControlId id);  // by keys

  // What the person at the phone does.
  void press(Key key, char32_t character = 0);
  void choose(const std::vector<std::u16string>& path);
  void fire(int timer);
  // The texts of the entries under a path of a soft-key menu; a disabled one starts with "-", a
  // checked one with "*".
  std::vector<std::u16string> menuTexts(const std::vector<std::u16string>& path);

  FakePhone& phone;
  DialogHandler& handler;
  int resource = 0;
  std::u16string title;
  MenuBar menu_bar;
  std::map<ControlId, std::unique_ptr<FakeControl>> controls;
  std::vector<ControlId> order;
  std::map<int, int> timers;  // running ones, with their periods
  std::deque<int> posted;
  int content_height = 0;
  ControlId focus_id = 0;
  bool ended = false;
  int result = 0;

 private:
  bool pressInEdit(FakeControl& edit, Key key, char32_t character);
  bool pressInList(FakeControl& list, Key key);
  void focusNeighbour(int step);
  MenuEntry* openMenu(const std::vector<std::u16string>& path);
};

// One screen's part of the script; every call adds a step to it.
class ScreenScript {
 public:
  ScreenScript(FakePhone& phone, int screen) : phone_(phone), screen_(screen) {}

  ScreenScript& press(Key key, int times = 1);
  ScreenScript& type(const std::u16string& text);
  ScreenScript& choose(const std::vector<std::u16string>& path);
  ScreenScript& focus(ControlId id);
  ScreenScript& write(ControlId id, const std::u16string& text);  // focus, clear, type
  ScreenScript& tick(ControlId id);                               // a check box
  ScreenScript& pick(ControlId id, const std::u16string& choice);
  ScreenScript& activate(ControlId id);  // a button
  ScreenScript& row(ControlId list, int row);
  ScreenScript& fire(int timer);
  ScreenScript& fireOf(int lower_screen, int timer);  // of a screen below this one
  ScreenScript& look(std::function<void(FakeDialog&)> check);

 private:
  FakePhone& phone_;
  int screen_;
};

class FakePhone : public Dialogs {
 public:
  explicit FakePhone(Size size = {240, 320}) : screen(size) {}

  // The script.
  ScreenScript at(int screen_number) { return {*this, screen_number}; }
  void says(const std::u16string& text, const std::u16string& title);
  void asks(const std::u16string& text, const std::u16string& title, MessageAnswer answer);
  void offers(const std::u16string& choice);  // a popup menu, and the entry chosen (empty: none)

  // Runs the program; fails the test when the script was not followed or not used up.
  void play(const std::function<void()>& program);

  int runModal(const DialogTemplate& dialog, DialogHandler& handler) override;
  MessageAnswer message(const MessageBox& box) override;
  CommandId popupMenu(Point at, const std::vector<MenuEntry>& entries) override;
  void setWaitCursor(bool on) override;
  std::unique_ptr<Progress> progress(const std::u16string& what) override;
  bool dismissBoxes() override;
  void whenWindowCloses(std::function<void()> asked) override { close_window = std::move(asked); }
  void bringToFront(const std::string&) override { ++brought_to_front; }

  [[noreturn]] void fail(const std::string& what);
  FakeDialog& open(int screen_number);  // one of the open screens

  Size screen;
  Scheme scheme = Scheme::kLight;
  std::vector<MessageBox> boxes;  // every one shown
  bool leaves_the_rest = false;   // leaves by Back, and answers No to, what no step is for
  std::function<void()> while_message = [] {};  // what happens while one is up
  std::function<void()> close_window = [] {};   // as its user does
  int messages_up = 0;                          // now
  int brought_to_front = 0;
  int wait_cursor = 0;
  int wait_cursor_shown = 0;  // how often it came up

 private:
  friend class ScreenScript;
  bool dismissed_ = false;
  enum class StepKind { kScreen, kMessage, kPopup };
  struct Step {
    StepKind kind = StepKind::kScreen;
    int screen = 0;
    std::string what;  // for messages of this phone
    std::function<void(FakeDialog&)> act;
    std::u16string text;
    std::u16string title;
    MessageAnswer answer = MessageAnswer::kOk;
    MessageButtons buttons = MessageButtons::kOk;
  };
  void add(Step step) { script_.push_back(std::move(step)); }
  std::string describeNext() const;
  void settle(FakeDialog& dialog);
  void leave(FakeDialog& dialog);

  std::deque<Step> script_;
  std::vector<FakeDialog*> open_;  // the top one last
};

// A text's room where each character is 7 pixels wide and each line 15 high.
Size plainTextSize(const std::u16string& text, int width);

// UTF-8, for failure messages.
std::string narrow(const std::u16string& text);

}  // namespace tabelion
