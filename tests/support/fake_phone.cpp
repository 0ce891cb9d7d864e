#include "support/fake_phone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace tabelion {
namespace {

// Thrown to leave every open dialog at once after a failure.
struct ScriptBroken {};

constexpr int kSoftKeyBarHeight = 26;
constexpr int kTitleHeight = 22;
constexpr int kRowHeight = 20;

class RowRecorder : public ListPainter {
 public:
  RowRecorder(PaintedRow& row, Scheme scheme) : row_(row), scheme_(scheme) {}
  void fill(const Rect& area, Color color) override { row_.fills.push_back({area, color}); }
  void text(const Rect& area, const std::u16string& text, Color color, TextWeight weight) override {
    row_.texts.push_back({area, text, color, weight});
  }
  void picture(Point at, Picture picture) override { row_.pictures.push_back({at, picture}); }
  Scheme scheme() const override { return scheme_; }

 private:
  PaintedRow& row_;
  const Scheme scheme_;
};

class CanvasRecorder : public CanvasPainter {
 public:
  CanvasRecorder(PaintedCanvas& canvas, Scheme scheme) : canvas_(canvas), scheme_(scheme) {}
  void fill(const Rect& area, Color color) override { canvas_.fills.push_back({area, color}); }
  void line(Point from, Point to, Color color, int width) override {
    canvas_.lines.push_back({from, to, color, width});
  }
  void text(const Rect& area, const std::u16string& text, Color color, TextWeight weight,
            TextSide) override {
    canvas_.texts.push_back({area, text, color, weight});
  }
  Scheme scheme() const override { return scheme_; }

 private:
  PaintedCanvas& canvas_;
  const Scheme scheme_;
};

class FakeProgress : public Progress {
 public:
  void set(int, int) override {}
};

}  // namespace

std::string narrow(const std::u16string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size()) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
    }
    const auto put = [&](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
      put(c);
    } else if (c < 0x800) {
      put(0xC0 | c >> 6), put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      put(0xE0 | c >> 12), put(0x80 | (c >> 6 & 0x3F)), put(0x80 | (c & 0x3F));
    } else {
      put(0xF0 | c >> 18), put(0x80 | (c >> 12 & 0x3F));
      put(0x80 | (c >> 6 & 0x3F)), put(0x80 | (c & 0x3F));
    }
  }
  return out;
}

Size plainTextSize(const std::u16string& text, int width) {
  constexpr int kCharacter = 7;
  constexpr int kLine = 15;
  const std::size_t room =
      width > 0 ? static_cast<std::size_t>(std::max(1, width / kCharacter)) : text.size() + 1;
  std::size_t widest = 0;
  std::size_t used = 0;
  int lines = 1;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && text[end] != u' ' && text[end] != u'\n') ++end;
    if (used > 0 && used + (end - at) > room) used = 0, ++lines;      // the word begins a line
    for (used += end - at; width > 0 && used > room; used -= room) {  // and may need several
      widest = room;
      ++lines;
    }
    widest = std::max(widest, used);
    if (end < text.size() && text[end] == u'\n') used = 0, ++lines;
    if (end < text.size() && text[end] == u' ') ++used;
    at = end + 1;
  }
  return {static_cast<int>(widest) * kCharacter, lines * kLine};
}

std::vector<std::u16string> PaintedRow::words() const {
  std::vector<std::u16string> words;
  for (const Text& text : texts) words.push_back(text.text);
  return words;
}

// ---- controls

FakeControl::FakeControl(FakeDialog& dialog, ControlTemplate from)
    : face(std::move(from)), dialog_(dialog) {}

void FakeControl::setChoices(const std::vector<std::u16string>& texts) {
  choices = texts;
  selection_ = -1;
}

void FakeControl::focus() {
  dialog_.moveFocus(face.id);
}

bool FakeControl::hasFocus() const {
  return dialog_.focus_id == face.id;
}

void FakeControl::setColumns(const std::vector<ListColumn>& columns) {
  columns_ = columns;
  scrolled = 0;
}

void FakeControl::setRowCount(int count) {
  rows_ = count;
  if (selected_ >= count) selected_ = -1;
}

void FakeControl::scrollSideways(int pixels) {
  int total = 0;
  for (const ListColumn& column : columns_) total += column.width;
  scrolled = std::clamp(scrolled + pixels, 0, std::max(0, total - face.place.width));
}

PaintedRow FakeControl::paintRow(int row) {
  PaintedRow painted;
  RowRecorder recorder(painted, dialog_.phone.scheme);
  int total = 0;
  for (const ListColumn& column : columns_) total += column.width;
  const Rect area{-scrolled, row * kRowHeight, std::max(total, face.place.width), kRowHeight};
  dialog_.handler.onPaintRow(dialog_, face.id, row, recorder, area);
  return painted;
}

PaintedCanvas FakeControl::paintCanvas() {
  PaintedCanvas painted;
  CanvasRecorder recorder(painted, dialog_.phone.scheme);
  dialog_.handler.onPaintCanvas(dialog_, face.id, recorder);
  return painted;
}

std::u16string FakeControl::spoken() const {
  return face.accessible_name + u", " + dialog_.handler.canvasText(dialog_, face.id);
}

std::vector<std::u16string> FakeControl::headings() const {
  std::vector<std::u16string> texts;
  for (const ListColumn& column : columns_) texts.push_back(column.heading);
  return texts;
}

bool FakeControl::takesFocus() const {
  if (face.kind == ControlKind::kCanvas && !face.takes_focus) return false;
  return face.visible && face.enabled && face.kind != ControlKind::kLabel &&
         face.kind != ControlKind::kIcon;
}

// ---- dialogs

FakeDialog::FakeDialog(FakePhone& on, const DialogTemplate& from, DialogHandler& by)
    : phone(on), handler(by), resource(from.resource), title(from.title), menu_bar(from.menu_bar) {
  for (const ControlTemplate& control : from.controls) addControl(control);
}

Size FakeDialog::screenSize() const {
  return {phone.screen.width, phone.screen.height - kTitleHeight - kSoftKeyBarHeight};
}

Size FakeDialog::textSize(const std::u16string& text, int width) const {
  return plainTextSize(text, width);
}

Size FakeDialog::fullScreenSize() const {
  return phone.screen;
}

Control& FakeDialog::addControl(const ControlTemplate& control) {
  if (controls.contains(control.id)) {
    phone.fail("control " + std::to_string(control.id) + " is there already");
  }
  order.push_back(control.id);
  return *(controls[control.id] = std::make_unique<FakeControl>(*this, control));
}

void FakeDialog::removeControl(ControlId id) {
  fake(id);
  if (focus_id == id) focus_id = 0;
  controls.erase(id);
  std::erase(order, id);
}

FakeControl& FakeDialog::fake(ControlId id) {
  const auto found = controls.find(id);
  if (found == controls.end()) {
    phone.fail("screen " + std::to_string(resource) + " has no control " + std::to_string(id));
  }
  return *found->second;
}

FakeControl* FakeDialog::focused() {
  const auto found = controls.find(focus_id);
  return found == controls.end() ? nullptr : found->second.get();
}

void FakeDialog::moveFocus(ControlId id) {
  if (id == focus_id) return;
  const ControlId before = focus_id;
  focus_id = id;
  if (before != 0 && has(before)) handler.onNotice(*this, before, Notice::kFocusLost);
  if (focus_id == id) handler.onNotice(*this, id, Notice::kFocusGained);
}

void FakeDialog::arriveAt(ControlId id) {
  moveFocus(id);
  if (FakeControl* control = focused()) control->selectText();
}

void FakeDialog::focusNeighbour(int step) {
  const auto at = std::find(order.begin(), order.end(), focus_id);
  const int from = at == order.end() ? -1 : static_cast<int>(at - order.begin());
  for (int i = from + step; i >= 0 && i < static_cast<int>(order.size()); i += step) {
    if (fake(order[i]).takesFocus()) return arriveAt(order[i]);
  }
}

bool FakeDialog::pressInEdit(FakeControl& edit, Key key, char32_t character) {
  if (key == Key::kLeft || key == Key::kRight || key == Key::kHome || key == Key::kEnd) return true;
  std::vector<std::u16string> before = edit.before_typing;
  if (key == Key::kUndo && !before.empty()) {
    edit.setText(before.back());
    before.pop_back();
    edit.before_typing = std::move(before);
    handler.onNotice(*this, edit.face.id, Notice::kEdited);
    return true;
  }
  if (key != Key::kCharacter && key != Key::kBack) return false;
  if (edit.face.read_only) return key == Key::kCharacter;
  before.push_back(edit.text());
  std::u16string text = edit.text();
  const bool replaces = std::exchange(edit.text_selected, false);
  if (key == Key::kBack) {
    if (text.empty()) return true;
    replaces ? text.clear() : text.pop_back();
  } else {
    if (!handler.acceptsCharacter(*this, edit.face.id, character)) return true;
    if (replaces) text.clear();
    if (character >= 0x10000) {
      text.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
      text.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
    } else {
      text.push_back(static_cast<char16_t>(character));
    }
    const auto limit = static_cast<std::size_t>(edit.face.max_length);
    if (limit != 0 && text.size() > limit) return true;
  }
  edit.setText(text);
  edit.before_typing = std::move(before);
  handler.onNotice(*this, edit.face.id, Notice::kEdited);
  return true;
}

bool FakeDialog::pressInList(FakeControl& list, Key key) {
  if (key != Key::kUp && key != Key::kDown) return false;
  const int row = std::clamp(list.selectedRow() + (key == Key::kDown ? 1 : -1), 0,
                             std::max(0, list.rowCount() - 1));
  if (row == list.selectedRow() || row >= list.rowCount()) return true;
  list.selectRow(row);
  handler.onNotice(*this, list.face.id, Notice::kSelectionChanged);
  return true;
}

void FakeDialog::press(Key key, char32_t character) {
  FakeControl* control = focused();
  const bool in_edit = control != nullptr && (control->face.kind == ControlKind::kEdit ||
                                              control->face.kind == ControlKind::kMultiEdit);
  if (in_edit && pressInEdit(*control, key, character)) return;
  if (handler.onKey(*this, {key, character, focus_id})) return;
  if (control != nullptr && control->face.kind == ControlKind::kList &&
      pressInList(*control, key)) {
    return;
  }
  if (key == Key::kEnter) {
    handler.onCommand(*this, kActionCommand);
  } else if (key == Key::kBack) {
    handler.onCommand(*this, kBackCommand);
  } else if (key == Key::kUp || key == Key::kDown) {
    focusNeighbour(key == Key::kDown ? 1 : -1);
  }
}

MenuEntry* FakeDialog::openMenu(const std::vector<std::u16string>& path) {
  MenuEntry* entry = menu_bar.left.text == path[0]    ? &menu_bar.left
                     : menu_bar.right.text == path[0] ? &menu_bar.right
                                                      : nullptr;
  if (entry == nullptr) phone.fail("no soft key \"" + narrow(path[0]) + "\"");
  if (!entry->children.empty()) handler.onMenuOpening(*this, *entry);
  for (std::size_t i = 1; i < path.size(); ++i) {
    const auto found = std::find_if(entry->children.begin(), entry->children.end(),
                                    [&](const MenuEntry& child) { return child.text == path[i]; });
    if (found == entry->children.end()) phone.fail("no menu entry \"" + narrow(path[i]) + "\"");
    entry = &*found;
  }
  return entry;
}

void FakeDialog::choose(const std::vector<std::u16string>& path) {
  const MenuEntry* entry = openMenu(path);
  if (!entry->enabled) phone.fail("menu entry \"" + narrow(entry->text) + "\" is disabled");
  if (!entry->children.empty()) phone.fail("\"" + narrow(entry->text) + "\" is a menu");
  handler.onCommand(*this, entry->command);
}

std::vector<std::u16string> FakeDialog::menuTexts(const std::vector<std::u16string>& path) {
  std::vector<std::u16string> texts;
  for (const MenuEntry& entry : openMenu(path)->children) {
    texts.push_back((!entry.enabled ? u"-" : entry.checked ? u"*" : u"") + entry.text);
  }
  return texts;
}

void FakeDialog::fire(int timer) {
  if (!timers.contains(timer)) phone.fail("timer " + std::to_string(timer) + " is not running");
  handler.onTimer(*this, timer);
}

// ---- the script

ScreenScript& ScreenScript::look(std::function<void(FakeDialog&)> act) {
  FakePhone::Step step;
  step.screen = screen_;
  step.what = "a step on screen " + std::to_string(screen_);
  step.act = std::move(act);
  phone_.add(std::move(step));
  return *this;
}
ScreenScript& ScreenScript::press(Key key, int times) {
  for (int i = 0; i < times; ++i) look([key](FakeDialog& dialog) { dialog.press(key); });
  return *this;
}
ScreenScript& ScreenScript::type(const std::u16string& text) {
  for (const char16_t unit : text) {
    look([unit](FakeDialog& dialog) { dialog.press(Key::kCharacter, unit); });
  }
  return *this;
}
ScreenScript& ScreenScript::choose(const std::vector<std::u16string>& path) {
  return look([path](FakeDialog& dialog) { dialog.choose(path); });
}
ScreenScript& ScreenScript::focus(ControlId id) {
  return look([id](FakeDialog& dialog) {
    if (!dialog.fake(id).takesFocus()) dialog.phone.fail("the control takes no focus");
    dialog.arriveAt(id);
  });
}
ScreenScript& ScreenScript::write(ControlId id, const std::u16string& text) {
  focus(id).look([id](FakeDialog& dialog) {
    while (!dialog.fake(id).text().empty() && !dialog.fake(id).face.read_only) {
      dialog.press(Key::kBack);
    }
  });
  return type(text);
}
ScreenScript& ScreenScript::tick(ControlId id) {
  return look([id](FakeDialog& dialog) {
    FakeControl& box = dialog.fake(id);
    if (!box.takesFocus()) dialog.phone.fail("the check box cannot be ticked");
    dialog.moveFocus(id);
    box.setChecked(!box.checked());
    dialog.handler.onNotice(dialog, id, Notice::kEdited);
  });
}
ScreenScript& ScreenScript::pick(ControlId id, const std::u16string& choice) {
  return look([id, choice](FakeDialog& dialog) {
    FakeControl& control = dialog.fake(id);
    const auto found = std::find(control.choices.begin(), control.choices.end(), choice);
    if (!control.takesFocus() || found == control.choices.end()) {
      dialog.phone.fail("cannot pick \"" + narrow(choice) + "\"");
    }
    dialog.moveFocus(id);
    control.select(static_cast<int>(found - control.choices.begin()));
    dialog.handler.onNotice(dialog, id, Notice::kEdited);
  });
}
ScreenScript& ScreenScript::activate(ControlId id) {
  return look([id](FakeDialog& dialog) {
    if (!dialog.fake(id).takesFocus()) dialog.phone.fail("the button cannot be pressed");
    dialog.moveFocus(id);
    dialog.handler.onNotice(dialog, id, Notice::kActivated);
  });
}
ScreenScript& ScreenScript::row(ControlId list, int row) {
  return look([list, row](FakeDialog& dialog) {
    if (row >= dialog.fake(list).rowCount()) dialog.phone.fail("there is no such row");
    dialog.moveFocus(list);
    dialog.fake(list).selectRow(row);
    dialog.handler.onNotice(dialog, list, Notice::kSelectionChanged);
  });
}
ScreenScript& ScreenScript::fire(int timer) {
  return look([timer](FakeDialog& dialog) { dialog.fire(timer); });
}

ScreenScript& ScreenScript::fireOf(int lower_screen, int timer) {
  return look([=](FakeDialog& dialog) { dialog.phone.open(lower_screen).fire(timer); });
}

void FakePhone::says(const std::u16string& text, const std::u16string& title) {
  add({StepKind::kMessage,
       0,
       "message \"" + narrow(text) + "\"",
       {},
       text,
       title,
       MessageAnswer::kOk,
       MessageButtons::kOk});
}

void FakePhone::asks(const std::u16string& text, const std::u16string& title,
                     MessageAnswer answer) {
  add({StepKind::kMessage,
       0,
       "question \"" + narrow(text) + "\"",
       {},
       text,
       title,
       answer,
       MessageButtons::kYesNo});
}

void FakePhone::offers(const std::u16string& choice) {
  add({StepKind::kPopup,
       0,
       "popup with \"" + narrow(choice) + "\"",
       {},
       choice,
       {},
       MessageAnswer::kOk,
       MessageButtons::kOk});
}

std::string FakePhone::describeNext() const {
  return script_.empty() ? "the end of the script" : script_.front().what;
}

void FakePhone::fail(const std::string& what) {
  ADD_FAILURE() << "phone: " << what << "; next in the script: " << describeNext();
  throw ScriptBroken{};
}

void FakePhone::play(const std::function<void()>& program) {
  try {
    program();
  } catch (const ScriptBroken&) {
    script_.clear();
    open_.clear();
    wait_cursor = 0;
    return;
  }
  if (!script_.empty()) ADD_FAILURE() << "phone: the program ended before " << describeNext();
  script_.clear();
  EXPECT_EQ(wait_cursor, 0) << "the wait cursor was left on";
}

// Messages that were posted are handled before the person can do anything.
void FakePhone::settle(FakeDialog& dialog) {
  while (!dialog.ended && !dialog.posted.empty()) {
    const int message = dialog.posted.front();
    dialog.posted.pop_front();
    dialog.handler.onMessage(dialog, message);
  }
}

int FakePhone::runModal(const DialogTemplate& from, DialogHandler& handler) {
  FakeDialog dialog(*this, from, handler);
  open_.push_back(&dialog);
  const struct OnTop {
    ~OnTop() { open.pop_back(); }
    std::vector<FakeDialog*>& open;
  } on_top{open_};
  handler.onInit(dialog);
  if (dialog.focused() == nullptr) {
    for (const ControlId id : dialog.order) {
      if (dialog.fake(id).takesFocus()) {
        dialog.moveFocus(id);
        break;
      }
    }
  }
  settle(dialog);
  while (!dialog.ended) {
    if (script_.empty() || script_.front().kind != StepKind::kScreen ||
        script_.front().screen != dialog.resource) {
      leave(dialog);
      continue;
    }
    const Step step = std::move(script_.front());
    script_.pop_front();
    step.act(dialog);
    settle(dialog);
  }
  if (open_.size() > 1) open_[open_.size() - 2]->handler.onActivate(*open_[open_.size() - 2]);
  return dialog.result;
}

// A screen may need two Backs, as one in whose box Back erases does; the first one asks, so its
// window is closed.
void FakePhone::leave(FakeDialog& dialog) {
  for (int back = 0; leaves_the_rest && back < 2 && !dialog.ended; ++back) {
    dialog.handler.onCommand(dialog, kBackCommand);
    settle(dialog);
  }
  if (leaves_the_rest && !dialog.ended) {
    close_window();
    settle(dialog);
  }
  if (!dialog.ended) fail("screen " + std::to_string(dialog.resource) + " waits for a key");
}

FakeDialog& FakePhone::open(int screen_number) {
  for (FakeDialog* dialog : open_) {
    if (dialog->resource == screen_number) return *dialog;
  }
  fail("screen " + std::to_string(screen_number) + " is not open");
}

MessageAnswer FakePhone::message(const MessageBox& box) {
  boxes.push_back(box);
  dismissed_ = false;
  ++messages_up;
  while_message();
  --messages_up;
  if (dismissed_) {
    return box.buttons == MessageButtons::kOk ? MessageAnswer::kOk : MessageAnswer::kNobody;
  }
  const bool expected = !script_.empty() && script_.front().kind == StepKind::kMessage;
  if (!expected && leaves_the_rest) {
    return box.buttons == MessageButtons::kOk ? MessageAnswer::kOk : MessageAnswer::kNo;
  }
  if (!expected || script_.front().text != box.text || script_.front().title != box.title ||
      script_.front().buttons != box.buttons) {
    fail("unexpected message \"" + narrow(box.text) + "\" titled \"" + narrow(box.title) + "\"");
  }
  const MessageAnswer answer = script_.front().answer;
  script_.pop_front();
  return answer;
}

CommandId FakePhone::popupMenu(Point, const std::vector<MenuEntry>& entries) {
  if (script_.empty() || script_.front().kind != StepKind::kPopup) {
    if (leaves_the_rest) return 0;
    fail("unexpected popup menu");
  }
  const std::u16string wanted = script_.front().text;
  script_.pop_front();
  if (wanted.empty()) return 0;
  for (const MenuEntry& entry : entries) {
    if (entry.text == wanted) {
      if (!entry.enabled) fail("popup entry \"" + narrow(wanted) + "\" is disabled");
      return entry.command;
    }
  }
  fail("no popup entry \"" + narrow(wanted) + "\"");
}

void FakePhone::setWaitCursor(bool on) {
  wait_cursor += on ? 1 : -1;
  if (on) ++wait_cursor_shown;
}

bool FakePhone::dismissBoxes() {
  dismissed_ = messages_up > 0;
  return dismissed_;
}

std::unique_ptr<Progress> FakePhone::progress(const std::u16string&) {
  return std::make_unique<FakeProgress>();
}

}  // namespace tabelion
