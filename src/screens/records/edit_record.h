// The form on which one record is shown and changed.
//
// Keys: Up and Down move between the rows, Page Up and Page Down to the previous and the next
// record, the action key is Done; Undo and Redo take steps back and do them again. Leaving by the
// Back key saves as well; only Cancel does not.
#pragma once

#include <optional>

#include "engine/packed_record.h"
#include "screens/kit/commands.h"
#include "screens/records/record_form.h"
#include "services/application.h"

namespace tabelion {

class EditRecordScreen : public CommandScreen<EditRecordScreen> {
 public:
  EditRecordScreen(Application& app, std::uint32_t record)
      : app_(app), form_(app), first_record_(record) {}

  CommandTable<EditRecordScreen> Commands(Dialog& dialog);
  void onInit(Dialog& dialog) override;
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
  bool onKey(Dialog& dialog, const KeyPress& key) override;
  bool acceptsCharacter(Dialog& dialog, ControlId control, char32_t character) override;
  void onResize(Dialog& dialog) override { form_.Place(dialog); }
  bool OnAutoClose(Dialog& dialog) override;

 private:
  enum class Move { kFirst, kPrevious, kNext, kLast };

  void LoadEditRecord(Dialog& dialog, std::uint32_t record);
  // False when the form must stay, because a value or the record was not accepted.
  bool SaveEditRecord(Dialog& dialog);
  bool StoreCopy();
  void DeleteEditRecord(Dialog& dialog);
  void MoveTo(Dialog& dialog, Move move);
  void NewRecord(Dialog& dialog);
  void Done(Dialog& dialog);
  void Back(Dialog& dialog);
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }
  void ChangeWidth(Dialog& dialog, int step);
  void ShowDetails(Dialog& dialog);
  void DecipherForEditing(Bytes& record);
  void EncipherStored();
  void ToggleEncryption(Dialog& dialog);
  void Undo(Dialog& dialog);
  void Redo(Dialog& dialog);
  void ShowCurrent(Dialog& dialog);
  bool MayChange() const;
  bool IsUntouchedNew(Dialog& dialog) const;

  Application& app_;
  RecordForm form_;
  std::uint32_t first_record_;
  std::uint32_t record_before_new_ = 0;  // that was current when the new one was begun
  std::optional<UnpackedRecord> copy_;   // of the record being edited; none when there is no record
};

// Whether the database has room for another record; says so when it has not.
bool HasRoomForRecord(Application& app);

// Shows a record, or a new one for kNewRecord. kDialogClosed, or kDialogAutoClosed when the
// database is to be closed.
int ShowEditRecord(Application& app, std::uint32_t record);

}  // namespace tabelion
