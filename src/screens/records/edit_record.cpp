#include "screens/records/edit_record.h"

#include <algorithm>
#include <utility>

#include "screens/kit/screen_numbers.h"
#include "screens/program/ask_password.h"
#include "screens/records/record_details.h"
#include "screens/records/undo.h"
#include "security/database_encryption.h"
#include "services/access.h"
#include "services/changes/record_steps.h"
#include "services/encryption.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr char16_t kEditTitle[] = u"Edit Record";
constexpr char16_t kViewTitle[] = u"View Record";     // that may only be looked at
constexpr char kWidthStepName[] = "Change of width";  // however many in a row are one step

DialogTemplate editRecordTemplate() {
  DialogTemplate dialog;
  dialog.resource = kEditRecordScreen;
  dialog.title = kEditTitle;
  return dialog;
}

}  // namespace

bool HasRoomForRecord(Application& app) {
  if (!CurrentDatabase(app).records.isFull()) return true;
  ShowMessage(app,
              u"This database holds 65,000 records, which is the most that it can. Delete some "
              u"before you add another.",
              u"New Record", MessageIcon::kExclamation);
  return false;
}

int ShowEditRecord(Application& app, std::uint32_t record) {
  EditRecordScreen screen(app, record);
  return RunModalDialog(app, editRecordTemplate(), screen);
}

void EditRecordScreen::onInit(Dialog& dialog) {
  ShowCommands(dialog);
  LoadEditRecord(dialog, first_record_);
}

bool EditRecordScreen::MayChange() const {
  return app_.level().new_record ||
         CheckSecurity(CurrentDatabase(app_).schema, Operation::kChange) == kAccessGranted;
}

void EditRecordScreen::LoadEditRecord(Dialog& dialog, std::uint32_t record) {
  const Database& database = CurrentDatabase(app_);
  if (record == kNewRecord && !app_.level().new_record) {
    record_before_new_ = app_.level().current_record;
  }
  app_.level().current_record = record;
  app_.level().new_record = record == kNewRecord;
  copy_.reset();
  if (app_.level().new_record) {
    copy_ = newRecord(database.schema);
  } else if (record < database.records.count()) {
    const ByteView stored = database.records[record].bytes();
    Bytes bytes(stored.begin(), stored.end());
    DecipherForEditing(bytes);
    copy_ = unpackRecord(bytes);
  }
  Bytes packed;
  if (copy_ && !packRecord(*copy_, packed)) copy_.reset();
  if (app_.level().new_record) form_.Clear(dialog);  // begins at its first field
  const bool may_change = MayChange();
  dialog.setTitle(may_change ? kEditTitle : kViewTitle);
  form_.Show(dialog, packed, copy_.has_value() && may_change);
}

void EditRecordScreen::Done(Dialog& dialog) {
  if (SaveEditRecord(dialog)) dialog.end(kDialogClosed);
}

bool EditRecordScreen::IsUntouchedNew(Dialog& dialog) const {
  return app_.level().new_record && !form_.Changed(dialog);
}

// Going back from a new record on which nothing was entered stores none.
void EditRecordScreen::Back(Dialog& dialog) {
  if (IsUntouchedNew(dialog) || SaveEditRecord(dialog)) dialog.end(kDialogClosed);
}

bool EditRecordScreen::OnAutoClose(Dialog& dialog) {
  const bool drops = app_.closing == Closing::kLeaving && IsUntouchedNew(dialog);
  return drops || SaveEditRecord(dialog);
}

void EditRecordScreen::onNotice(Dialog& dialog, ControlId control, Notice notice) {
  if (notice == Notice::kEdited) form_.OnEdited(dialog, control);
  if (notice == Notice::kFocusGained) form_.OnFocus(dialog, control, true);
  if (notice == Notice::kFocusLost) form_.OnFocus(dialog, control, false);
  if (notice == Notice::kActivated) form_.OnActivated(dialog, control);
}

bool EditRecordScreen::onKey(Dialog& dialog, const KeyPress& key) {
  if (StepKey(dialog, key)) return true;
  if (key.key == Key::kPageUp || key.key == Key::kPageDown) {
    MoveTo(dialog, key.key == Key::kPageUp ? Move::kPrevious : Move::kNext);
    return true;
  }
  return form_.OnKey(dialog, key);
}

bool EditRecordScreen::acceptsCharacter(Dialog&, ControlId, char32_t character) {
  return CanStore(app_, character);
}

bool EditRecordScreen::SaveEditRecord(Dialog& dialog) {
  if (!copy_) return true;
  const bool changed = form_.Changed(dialog);
  // Looking at a record is no reason to store it.
  if (!app_.level().new_record && !changed) return true;
  if (!app_.level().new_record &&
      securityCode(CurrentDatabase(app_).schema, Operation::kChange) == kCodeRestricted) {
    return true;
  }
  if (!app_.level().new_record && CheckSecurity(app_, Operation::kChange, true) == kAccessRefused) {
    return true;
  }
  UnpackedRecord before = *copy_;
  const bool alone = app_.closing == Closing::kUnattended || app_.closing == Closing::kSessionEnds;
  if (!form_.Collect(dialog, *copy_, alone ? Unaccepted::kIsLeftOut : Unaccepted::kIsAsked)) {
    return false;
  }
  if (StoreCopy()) return true;
  copy_ = std::move(before);  // so that another attempt starts from what is stored
  return false;
}

bool EditRecordScreen::StoreCopy() {
  Level& level = app_.level();
  if (level.new_record && !HasRoomForRecord(app_)) return false;
  Database& database = CurrentDatabase(app_);
  if (level.new_record) level.current_record = record_before_new_;  // where Undo leads back to
  bool is_corrupt = false;
  const std::uint32_t position =
      StoreRecord(level.history, CurrentTarget(app_), app_.engine,
                  level.new_record ? kNoPosition : level.current_record, *copy_,
                  QuerySettingsOf(app_, database), [&](auto...) { is_corrupt = true; });
  if (is_corrupt) {  // said once, however many formulas are
    ShowMessage(app_, u"Formula is invalid or corrupt, please verify", u"Error",
                MessageIcon::kExclamation);
  }
  if (position == kNoPosition) {
    if (level.new_record) level.current_record = kNewRecord;
    ShowMessage(app_, u"ERROR: Saving record!", u"ERROR", MessageIcon::kWarning);
    return false;
  }
  level.new_record = false;
  if (database.schema.encryption_mode == kEncryptRecordsOnSave) {
    level.history.Amend(CurrentTarget(app_), [this] { EncipherStored(); });
  }
  app_.engine.steps.refresh(database);
  return true;
}

// In a database that enciphers what it saves, the copy is in clear once its password was given.
// When the user gives none, the form shows the record as it is stored.
void EditRecordScreen::DecipherForEditing(Bytes& record) {
  if (CurrentDatabase(app_).schema.encryption_mode != kEncryptRecordsOnSave) return;
  while (isRecordEncrypted(record) &&
         PromptDecryptRecord(app_, record, AskEncryptionPassword(app_)) == kWrongPassword) {
    ShowMessage(app_, u"ERROR: Password does not properly decrypt this data.  Please Try again.",
                u"ACCESS DENIED", MessageIcon::kError);
  }
}

void EditRecordScreen::EncipherStored() {
  Database& database = CurrentDatabase(app_);
  const ByteView stored = database.records[app_.level().current_record].bytes();
  Bytes record(stored.begin(), stored.end());
  if (isRecordEncrypted(record) ||
      !PromptEncryptRecord(app_, record, AskEncryptionPassword(app_))) {
    return;
  }
  if (database.records.replace(app_.level().current_record, record)) setDirty(database);
}

void EditRecordScreen::ToggleEncryption(Dialog& dialog) {
  if (!SaveEditRecord(dialog) || app_.level().new_record) return;
  Database& database = CurrentDatabase(app_);
  const ByteView stored = database.records[app_.level().current_record].bytes();
  if (isRecordEncrypted(stored)) {
    Bytes record(stored.begin(), stored.end());
    const int result = PromptDecryptRecord(app_, record, AskEncryptionPassword(app_));
    if (result == kWrongPassword) {
      ShowMessage(app_, u"Error: Supplied Password does not properly Decrypt Record!", u"Error",
                  MessageIcon::kError);
    }
    if (result != kRecordDecrypted) return;
    ReplaceRecord(app_.level().history, CurrentTarget(app_), "Decryption of record",
                  app_.level().current_record, record);
  } else {
    app_.level().history.Perform(CurrentTarget(app_), "Encryption of record",
                                 [this] { EncipherStored(); });
  }
  app_.engine.steps.refresh(database);
  LoadEditRecord(dialog, app_.level().current_record);
}

void EditRecordScreen::DeleteEditRecord(Dialog& dialog) {
  if (app_.level().new_record) return dialog.end(kDialogClosed);
  if (Ask(app_, u"Are you sure you want to delete this record?", u"Confirm Delete") !=
          Answer::kYes ||
      CheckSecurity(app_, Operation::kDelete, true) == kAccessRefused) {
    return;
  }
  Database& database = CurrentDatabase(app_);
  DeleteRecords(app_.level().history, CurrentTarget(app_), {app_.level().current_record},
                QuerySettingsOf(app_, database));
  app_.engine.steps.refresh(database);
  dialog.end(kDialogClosed);
}

void EditRecordScreen::MoveTo(Dialog& dialog, Move move) {
  if (CheckSecurity(app_, Operation::kChange, true) == kAccessRefused) return;
  if (!IsUntouchedNew(dialog) && !SaveEditRecord(dialog)) return;
  const auto& index = CurrentDatabase(app_).record_index;
  if (index.empty()) return;
  // A record that the list does not show, a new one for instance, lies behind the last.
  const auto here = std::find(index.begin(), index.end(), app_.level().current_record);
  auto to = here;
  if (move == Move::kFirst) to = index.begin();
  if (move == Move::kLast) to = index.end() - 1;
  if (move == Move::kPrevious && here != index.begin()) to = here - 1;
  if (move == Move::kNext && here != index.end()) to = here + 1;
  LoadEditRecord(dialog, to == index.end() ? app_.level().current_record : *to);
}

void EditRecordScreen::NewRecord(Dialog& dialog) {
  if (CheckSecurity(app_, Operation::kAdd, true) != kAccessGranted || !SaveEditRecord(dialog) ||
      !HasRoomForRecord(app_)) {
    return;
  }
  LoadEditRecord(dialog, kNewRecord);
}

// What was typed is stored first, as a step of its own, so that Redo brings it back.
void EditRecordScreen::Undo(Dialog& dialog) {
  if (form_.Changed(dialog) && !SaveEditRecord(dialog)) return;
  if (UndoStep(app_)) ShowCurrent(dialog);
}

void EditRecordScreen::Redo(Dialog& dialog) {
  if (!form_.Changed(dialog) && RedoStep(app_)) ShowCurrent(dialog);
}

void EditRecordScreen::ShowCurrent(Dialog& dialog) {
  if (CurrentDatabase(app_).records.count() == 0) return dialog.end(kDialogClosed);
  LoadEditRecord(dialog, app_.level().current_record);
}

void EditRecordScreen::ChangeWidth(Dialog& dialog, int step) {
  Database& database = CurrentDatabase(app_);
  const int now = database.schema.label_width_adjustment;
  const int wanted = std::clamp(now + step, kNarrowestValues, kWidestValues);
  if (wanted == now) return;
  const auto change = [&] {
    database.schema.label_width_adjustment = static_cast<std::int16_t>(wanted);
    setDirty(database);
  };
  History& history = app_.level().history;
  const std::string* last = history.UndoName(database);
  if (last != nullptr && *last == kWidthStepName) {
    history.Amend(CurrentTarget(app_), change);
  } else {
    history.Perform(CurrentTarget(app_), kWidthStepName, change);
  }
  form_.Place(dialog);
}

// What is known of the record as it is stored.
void EditRecordScreen::ShowDetails(Dialog&) {
  ShowRecordDetails(app_, CurrentDatabase(app_).records[app_.level().current_record].bytes());
}

}  // namespace tabelion
