// The screen on which a note, or any text of several lines, is read and written.
#pragma once

#include <string>

#include "services/application.h"
#include "services/modal.h"

namespace tabelion {

inline constexpr ControlId kNoteEdit = 1;

struct NoteText {
  std::u16string title;  // the field's name
  std::u16string text;   // lines end with U+000A
  int max_length = 0;
  bool read_only = false;
};

// Shows the text; on kDialogDone and kDialogAutoClosed `note.text` is what it is now.
int EditNoteText(Application& app, NoteText& note);

}  // namespace tabelion
