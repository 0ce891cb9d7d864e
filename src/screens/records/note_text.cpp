#include "screens/records/note_text.h"

#include "screens/kit/commands.h"
#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

class NoteScreen : public CommandScreen<NoteScreen> {
 public:
  NoteScreen(Application& app, NoteText& note) : app_(app), note_(note) {}

  // Only Cancel gives up what was written.
  CommandTable<NoteScreen> Commands(Dialog&) {
    return {
        .left = {kDoneCommand, u"Done", &NoteScreen::Done},
        .right = {kCancelCommand, u"Cancel", &NoteScreen::Cancel},
        .keys = {{kActionCommand, {}, &NoteScreen::Done}, {kBackCommand, {}, &NoteScreen::Done}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
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
  bool OnAutoClose(Dialog& dialog) override {
    note_.text = dialog.control(kNoteEdit).text();
    return true;
  }

 private:
  void Done(Dialog& dialog) {
    note_.text = dialog.control(kNoteEdit).text();
    dialog.end(kDialogDone);
  }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }

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
  NoteScreen screen(app, note);
  return RunModalDialog(app, dialog, screen);
}

}  // namespace tabelion
