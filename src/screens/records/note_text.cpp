#include "screens/records/note_text.h"

#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

class NoteScreen : public Screen {
 public:
  NoteScreen(Application& app, NoteText& note) : app_(app), note_(note) {}

  void onInit(Dialog& dialog) override {
    onResize(dialog);
    dialog.control(kNoteEdit).focus();
  }
  void onResize(Dialog& dialog) override {
    const Size size = dialog.screenSize();
    dialog.control(kNoteEdit).setPlace({0, 0, size.width, size.height});
  }
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return CanStore(app_, character);
  }
  // Only Cancel gives up what was written.
  void onCommand(Dialog& dialog, CommandId command) override {
    if (command == kCancelCommand) return dialog.end(kDialogClosed);
    if (command != kDoneCommand && command != kActionCommand && command != kBackCommand) return;
    note_.text = dialog.control(kNoteEdit).text();
    dialog.end(kDialogDone);
  }
  bool OnAutoClose(Dialog& dialog) override {
    note_.text = dialog.control(kNoteEdit).text();
    return true;
  }

 private:
  Application& app_;
  NoteText& note_;
};

}  // namespace

int EditNoteText(Application& app, NoteText& note) {
  DialogTemplate dialog;
  dialog.resource = kNoteScreen;
  dialog.title = note.title;
  dialog.controls = {{.id = kNoteEdit,
                      .kind = ControlKind::kMultiEdit,
                      .text = note.text,
                      .accessible_name = note.title,
                      .read_only = note.read_only,
                      .max_length = note.max_length}};
  dialog.menu_bar.left = {.command = kDoneCommand, .text = u"Done"};
  dialog.menu_bar.right = {.command = kCancelCommand, .text = u"Cancel"};
  NoteScreen screen(app, note);
  return RunModalDialog(app, dialog, screen);
}

}  // namespace tabelion
