// The phone's screen as the program sees it: dialogs made from templates, message boxes, popup
// menus. Interfaces only; one implementation draws them in a window, another replays a script for
// tests. No toolkit type appears here, and nothing here decides anything.
//
// Places and sizes are in the screen's own pixels (240×320 unless the user chose another size);
// a zoom is the implementation's business and invisible here. Texts are UTF-16.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/painting.h"

namespace tabelion {

using ControlId = int;
using CommandId = int;

// Commands that keys give in every dialog.
inline constexpr CommandId kActionCommand = 1;  // the action key (Enter)
inline constexpr CommandId kBackCommand = 2;    // the Back key, where no edit box wants it

enum class ControlKind {
  kLabel,
  kEdit,       // one line of text
  kMultiEdit,  // several lines of text
  kCheckBox,
  kButton,  // gives kActivated
  kChoice,  // one of several texts; opens below itself
  kList,    // rows painted by the handler (ListControl)
  kIcon,    // a picture
  kSpin,    // a number between two bounds, stepped by keys
  kCanvas,  // painted by the handler (onPaintCanvas)
};

struct ControlTemplate {
  ControlId id = 0;
  ControlKind kind = ControlKind::kLabel;
  std::u16string text{};
  Rect place{};
  std::u16string accessible_name{};  // what a screen reader says; the text when empty
  bool visible = true;
  bool enabled = true;
  bool read_only = false;  // edits: shown and selectable, not changed
  bool right_aligned = false;
  bool centered = false;
  bool masked = false;       // edits: shows an asterisk per character
  bool back_erases = false;  // edits: Escape is the Back key here as well, and takes a character
  int max_length = 0;        // edits: in UTF-16 units; 0 = no bound
  bool takes_focus = false;  // canvases: their keys come to onKey
  bool opened_by_handler = false;  // choices: they give kActivated instead of opening their texts
  int minimum = 0;                 // spins
  int maximum = 0;
  Picture picture = Picture::kNone;
};

struct MenuEntry {
  CommandId command = 0;  // 0: opens `children`, or separates when there are none and no text
  std::u16string text{};
  bool enabled = true;
  bool checked = false;
  std::vector<MenuEntry> children{};
};

// The two soft keys. A key with children opens them as a menu, else it gives its command.
struct MenuBar {
  int resource = 0;
  MenuEntry left{};
  MenuEntry right{};
};

struct DialogTemplate {
  int resource = 0;  // the dialog's number; identifies the screen to scripts and tests
  std::u16string title{};
  std::vector<ControlTemplate> controls{};
  MenuBar menu_bar{};
};

// A control of a dialog that runs; it lives until its dialog ends or removes it.
class Control {
 public:
  virtual ~Control() = default;
  virtual std::u16string text() const = 0;
  virtual void setText(const std::u16string& text) = 0;  // gives no kEdited
  virtual bool checked() const = 0;
  virtual void setChecked(bool checked) = 0;
  virtual void setChoices(const std::vector<std::u16string>& texts) = 0;
  virtual int selection() const = 0;  // choice or spin value; -1 for none
  virtual void select(int index) = 0;
  virtual Rect place() const = 0;
  virtual void setPlace(const Rect& place) = 0;
  // Where the control ends on the screen, scrolled as it is: a menu of its own opens there.
  virtual int bottomOnScreen() const = 0;
  virtual void setVisible(bool visible) = 0;
  virtual void setEnabled(bool enabled) = 0;
  virtual void setMasked(bool masked) = 0;
  virtual void setFontPixels(int pixels) = 0;  // label font height; 0 = the dialog's
  virtual void repaint() = 0;  // what the handler paints looks, and says, something else now
  virtual void focus() = 0;
  virtual bool hasFocus() const = 0;
  // Of an edit of one line, so that typing replaces it. Arriving there by keys selects as well.
  virtual void selectText() = 0;
};

// How a list is sorted by a column.
enum class SortMark { kNone, kForward, kReverse };

struct ListColumn {
  std::u16string heading;
  int width = 0;  // pixels
  SortMark sort = SortMark::kNone;
  int sort_level = 0;       // shown beside the mark, from 1 on; 0 when there is only one
  std::u16string spoken{};  // what a screen reader says of the column; the heading when empty
};

// A report list: rows of one height, one selectable at a time, no stored items. The handler is
// asked for each row as it becomes visible (onPaintRow) and for its text when a screen reader
// asks (rowText).
class ListControl : public Control {
 public:
  virtual void setColumns(const std::vector<ListColumn>& columns) = 0;
  virtual const std::vector<ListColumn>& columns() const = 0;
  virtual void setRowCount(int count) = 0;
  virtual int rowCount() const = 0;
  virtual void selectRow(int row) = 0;  // -1: none; scrolls it into view
  virtual int selectedRow() const = 0;
  virtual void scrollSideways(int pixels) = 0;  // positive: towards the last column
};

class Dialog;

enum class Notice {
  kEdited,            // an edit, check box, choice or spin was changed by the user
  kActivated,         // a button pressed, a list row double-clicked, a choice to be opened
  kSelectionChanged,  // a list's row selected by keys or pointer
  kFocusGained,
  kFocusLost,
  kTooLong,     // an edit took nothing of several characters that came at once: no room for them
  kNotAllowed,  // the same, because of a character that the handler does not accept
};

enum class Key {
  kCharacter,
  kLeft,
  kRight,
  kUp,
  kDown,
  kEnter,
  kBack,
  kPageUp,
  kPageDown,
  kHome,
  kEnd,
  kUndo,  // in a box where something was typed they are the box's own
  kRedo,
};

struct KeyPress {
  Key key = Key::kCharacter;
  char32_t character = 0;  // for kCharacter
  ControlId control = 0;   // that had the focus
};

// What a screen does. The implementation calls these on the one user-interface thread; the dialog
// outlives every call.
class DialogHandler {
 public:
  virtual ~DialogHandler() = default;
  // The controls of the template exist and the screen size is known; nothing is visible yet.
  virtual void onInit(Dialog&) {}
  // Soft keys, menu entries, kActionCommand, kBackCommand.
  virtual void onCommand(Dialog&, CommandId) {}
  virtual void onNotice(Dialog&, ControlId, Notice) {}
  // A key in a list, in a canvas or in the dialog itself, before anything else uses it. True:
  // consumed. Enter and Back that are not consumed become kActionCommand and kBackCommand.
  virtual bool onKey(Dialog&, const KeyPress&) { return false; }
  // Whether an edit box takes this character; false refuses it as it is typed.
  virtual bool acceptsCharacter(Dialog&, ControlId, char32_t) { return true; }
  // A soft-key menu is about to open: its entries may be rebuilt or disabled.
  virtual void onMenuOpening(Dialog&, MenuEntry& /*soft_key*/) {}
  virtual void onTimer(Dialog&, int /*timer*/) {}
  virtual void onMessage(Dialog&, int /*message*/) {}  // posted with Dialog::post
  virtual void onActivate(Dialog&) {}                  // it became the top screen again
  virtual void onResize(Dialog&) {}                    // the screen has another size
  virtual void onPaintRow(Dialog&, ControlId, int /*row*/, ListPainter&, const Rect&) {}
  virtual std::u16string rowText(Dialog&, ControlId, int /*row*/) { return {}; }
  // A canvas is seen, or was repainted; its place says its size. What it shows in words is what a
  // screen reader says behind its name. A press of the pointer is at a place in the canvas.
  virtual void onPaintCanvas(Dialog&, ControlId, CanvasPainter&) {}
  virtual std::u16string canvasText(Dialog&, ControlId) { return {}; }
  virtual void onCanvasPressed(Dialog&, ControlId, Point) {}
};

// The dialog that runs, as its handler is given it; not to be kept beyond the call that ends it.
class Dialog {
 public:
  virtual ~Dialog() = default;
  virtual Size screenSize() const = 0;  // of the client area, between title and soft keys
  virtual Size fullScreenSize() const = 0;
  virtual int verticalDpi() const = 0;  // of the screen's own pixels; 96 unless zoomed oddly
  // The room of a text in the dialog's font, without any margin, rounded up: on one line, or broken
  // into lines of at most `width` when that is not 0. Line feeds begin a line in either case.
  virtual Size textSize(const std::u16string& text, int width) const = 0;

  // A control of the template or one added since; asking for an unknown id is a program fault.
  virtual Control& control(ControlId id) = 0;
  virtual ListControl& list(ControlId id) = 0;
  virtual Control& addControl(const ControlTemplate& control) = 0;
  virtual void removeControl(ControlId id) = 0;
  // The whole form scrolls vertically when controls lie below the screen's edge; the focused
  // control is always brought into view.
  virtual void setContentHeight(int height) = 0;

  virtual void setTitle(const std::u16string& title) = 0;
  virtual void setMenuBar(const MenuBar& bar) = 0;
  virtual void startTimer(int timer, int period_ms) = 0;  // restarts one that runs
  virtual void stopTimer(int timer) = 0;
  virtual void post(int message) = 0;  // handled after the present event
  virtual void end(int result) = 0;    // the run returns `result` when the present call is over
};

enum class MessageIcon { kNone, kInformation, kExclamation, kQuestion, kError, kWarning };
enum class MessageButtons { kOk, kYesNo };
// kNobody: a question was dismissed, because nobody is there to answer it.
enum class MessageAnswer { kOk, kYes, kNo, kNobody };

struct MessageBox {
  std::u16string text;
  std::u16string title;
  MessageButtons buttons = MessageButtons::kOk;
  MessageIcon icon = MessageIcon::kNone;
};

// A window that says how far a long step is; destroyed when the step is over.
class Progress {
 public:
  virtual ~Progress() = default;
  virtual void set(int done, int total) = 0;
};

class Dialogs {
 public:
  virtual ~Dialogs() = default;
  // Runs the dialog until its end and returns the result. Nests.
  virtual int runModal(const DialogTemplate& dialog, DialogHandler& handler) = 0;
  virtual MessageAnswer message(const MessageBox& box) = 0;
  // The chosen entry's command, 0 when dismissed.
  virtual CommandId popupMenu(Point at, const std::vector<MenuEntry>& entries) = 0;
  virtual void setWaitCursor(bool on) = 0;  // counts: every on wants its off
  virtual std::unique_ptr<Progress> progress(const std::u16string& what) = 0;
  // Dismisses every message box and menu above the topmost dialog: kOk, kNobody, no entry. False
  // when there was none.
  virtual bool dismissBoxes() = 0;
  // What to do when the user closes the window, whatever is shown; it stays until its last dialog
  // ends. Called on an event of its own.
  virtual void whenWindowCloses(std::function<void()> asked) = 0;
  // Brings the window before all others. `token` is what the desktop gave for that; may be empty.
  virtual void bringToFront(const std::string& token) = 0;
};

}  // namespace tabelion
