// What the form's soft keys and menu offer.
#include "screens/kit/screen_numbers.h"
#include "screens/records/edit_record.h"
#include "screens/records/form_layout.h"
#include "screens/records/undo.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

constexpr CommandId kFormDone = kActionCommand;
constexpr CommandId kFormCancel = kDoneCommand;  // the number that Done has elsewhere
constexpr CommandId kRecordDetails = 40010;
constexpr CommandId kChangeSign = 40205;
constexpr CommandId kGoFirst = 40201;
constexpr CommandId kGoPrevious = 40202;
constexpr CommandId kGoNext = 40203;
constexpr CommandId kGoLast = 40204;

}  // namespace

// The menu's order: Popup, the widths, New Record, Delete Record, Encrypt Record, Beam Record,
// Record Details, what this form has beyond that, Cancel. What does not fit the record or is not
// there yet has no entry.
CommandTable<EditRecordScreen> EditRecordScreen::Commands(Dialog& dialog) {
  using Self = EditRecordScreen;
  StepEntry undo = UndoEntry(app_);
  StepEntry redo = RedoEntry(app_);
  if (form_.Changed(dialog)) {  // what was typed and is not stored yet was done last
    undo = {app_.level().new_record ? u"Undo New record" : u"Undo Edit of record", true};
    redo.enabled = false;
  }
  const auto change_width = [](int step) {
    return [step](Self& self, Dialog& on) { self.ChangeWidth(on, step); };
  };
  const auto move = [](Move to) { return [to](Self& self, Dialog& on) { self.MoveTo(on, to); }; };

  std::vector<Command<Self>> menu{
      {kPopupCommand, u"Popup", [](Self& self, Dialog& on) { self.form_.Popup(on); },
       form_.CanPopup(dialog)},
      {kWiderCommand, u"Increase Width", change_width(kWidthStep)},
      {kNarrowerCommand, u"Decrease Width", change_width(-kWidthStep)},
      {kNewRecordCommand, u"New Record", &Self::NewRecord},
      {kDeleteCommand, u"Delete Record", &Self::DeleteEditRecord, copy_.has_value()}};
  if (CurrentDatabase(app_).schema.encryption_mode == kEncryptRecordsByHand) {
    const bool encrypted = copy_ && isRecordEncrypted(copy_->prefix);
    menu.push_back({kEncryptCommand, encrypted ? u"Decrypt Record" : u"Encrypt Record",
                    &Self::ToggleEncryption, copy_.has_value()});
  }
  menu.push_back({kRecordDetails, u"Record Details", &Self::ShowDetails,
                  copy_.has_value() && !app_.level().new_record});
  if (form_.CanChangeSign(dialog)) {
    menu.push_back(
        {kChangeSign, u"Change Sign", [](Self& self, Dialog& on) { self.form_.ChangeSign(on); }});
  }
  menu.push_back({.text = u"Go To",
                  .rows = {{kGoFirst, u"First", move(Move::kFirst)},
                           {kGoPrevious, u"Previous", move(Move::kPrevious)},
                           {kGoNext, u"Next", move(Move::kNext)},
                           {kGoLast, u"Last", move(Move::kLast)}}});
  menu.push_back({kUndoCommand, undo.text, &Self::Undo, undo.enabled});
  menu.push_back({kRedoCommand, redo.text, &Self::Redo, redo.enabled});
  menu.push_back({kFormCancel, u"Cancel", &Self::Cancel});
  return {.resource = 115,
          .left = {kFormDone, u"Done", &Self::Done},
          .right = {.text = u"Menu", .rows = std::move(menu)},
          .keys = {{kBackCommand, {}, &Self::Back}}};
}

}  // namespace tabelion
