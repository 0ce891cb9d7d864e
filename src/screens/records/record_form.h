// The rows of the edit form: a label and a control per field, filled from a record and read back.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/packed_record.h"
#include "query/field_value.h"
#include "screens/records/form_layout.h"
#include "services/application.h"
#include "services/modal.h"

namespace tabelion {

// The controls of a slot's row.
inline constexpr ControlId kFirstFormLabel = 2000;
inline constexpr ControlId kFirstFormValue = 3000;
inline constexpr ControlId kFirstFormIcon = 4000;
inline constexpr ControlId FormLabel(int slot) {
  return kFirstFormLabel + slot;
}
inline constexpr ControlId FormValue(int slot) {
  return kFirstFormValue + slot;
}
inline constexpr ControlId FormIcon(int slot) {
  return kFirstFormIcon + slot;
}
inline constexpr ControlId kFirstFormQuick = 5000;
inline constexpr ControlId FormQuick(int slot) {  // the quick choices beside a date or time box
  return kFirstFormQuick + slot;
}

// What a value does to the others that is not accepted, or that would be stored as another than the
// text shows without anybody having seen it: it is asked about, or stays as it was.
enum class Unaccepted { kIsAsked, kIsLeftOut };

class RecordForm {
 public:
  explicit RecordForm(Application& app) : app_(app) {}

  // Makes the controls anew for a packed record, and stays at the field that has the focus; the
  // first one that takes input when none has. A form that is not editable shows its values and
  // takes none.
  void Show(Dialog& dialog, ByteView record, bool editable);
  // Puts the controls where they belong after the width or the screen changed.
  void Place(Dialog& dialog);
  void Clear(Dialog& dialog);

  // Whether the user changed any value since Show.
  bool Changed(Dialog& dialog) const;
  // Puts the changed values, and only those, into the record. The first value that is not accepted
  // leaves the record as it was; it has the focus then and a message has said what is wrong, or
  // what was understood has been answered No. Or only such values are left as they were, and what
  // was typed is noted among what was not stored.
  bool Collect(Dialog& dialog, UnpackedRecord& record, Unaccepted unaccepted);

  // A number box takes no sign that is typed; this is how it gets one, while it has the focus.
  bool CanChangeSign(Dialog& dialog) const;
  void ChangeSign(Dialog& dialog);

  // The list of the field that has the focus, on a screen of its own: a pop-up's items, the quick
  // choices of a date or time.
  bool CanPopup(Dialog& dialog) const;
  void Popup(Dialog& dialog);

  // Refuses what a number box must not hold.
  void OnEdited(Dialog& dialog, ControlId control);
  // A box of a date or time that is entered while empty makes room for typing; one that is left
  // shows what was understood, before it is stored.
  void OnFocus(Dialog& dialog, ControlId control, bool gained);
  // Opens the text screen of a row that has a button, or the menu of one that has choices.
  void OnActivated(Dialog& dialog, ControlId control);
  // Up and Down go from value to value: quick choices take no step of their own.
  bool OnKey(Dialog& dialog, const KeyPress& key);

 private:
  struct Field {
    FormRow row;
    ControlKind kind = ControlKind::kLabel;
    bool read_only = false;
    std::u16string shown;  // the value's text as it was filled in
    std::u16string text;   // of a number box before the last key; of a button, its text now
    bool crlf = false;     // the stored text's lines end with carriage return and line feed
    int choice = -1;       // of a choice, as it was filled in
    bool has_quick = false;
    int max_length = 0;
  };

  Field MakeField(const FormRow& row, ByteView record, bool editable) const;
  FormLayout LayOut(Dialog& dialog) const;
  void AddControls(Dialog& dialog, const Field& field);
  void FillChoice(Dialog& dialog, Field& field, ByteView record);
  std::u16string ButtonFace(Dialog& dialog, const Field& field) const;
  void PlaceRow(Dialog& dialog, const Field& field) const;
  void ShowText(Dialog& dialog, Field& field);
  void ChooseItem(Dialog& dialog, Field& field);
  void ListItems(Dialog& dialog, Field& field);
  void ChooseQuickly(Dialog& dialog, const Field& field, bool from_list);
  Bytes ValueNow(Dialog& dialog, const Field& field) const;
  bool IsChanged(Dialog& dialog, const Field& field) const;
  std::u16string TypedText(const Control& control, const Field& field) const;
  std::u16string EditedText(const Field& field, const Bytes& value) const;
  Result<Bytes> ValueOf(Dialog& dialog, const Field& field, ByteView previous,
                        InputCare care) const;
  std::u16string QuotedName(const Field& field) const;
  void SayRefused(const Field& field, const Error& error) const;
  bool IsUnderstood(const Field& field, const Bytes& value) const;
  void NoteNotStored(Dialog& dialog, const Field& field) const;
  void FocusField(Dialog& dialog, std::optional<int> slot);
  const Field* FocusedField(Dialog& dialog) const;
  Field* FieldOf(ControlId value_control);
  const FieldDefinition& Definition(int slot) const;
  const FieldRecord& Items(int slot) const;

  Application& app_;
  Bytes record_;  // as it was shown
  std::vector<Field> fields_;
};

}  // namespace tabelion
