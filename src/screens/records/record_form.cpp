#include "screens/records/record_form.h"

#include <algorithm>
#include <utility>

#include "query/date_text.h"
#include "query/field_text.h"
#include "query/time_text.h"
#include "screens/records/form_controls.h"
#include "screens/records/note_text.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kFewestOnButton = 10;  // characters, of a phone's narrow button
constexpr int kButtonMargin = 16;

void replaceAll(std::u16string& text, std::u16string_view from, std::u16string_view to) {
  for (std::size_t at = text.find(from); at != std::u16string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// What an empty date or time shows while nobody is in its box; none for other types.
std::u16string placeholderOf(FieldType type) {
  if (type == FieldType::kDate) return FromUtf8(kNoDateText);
  if (type == FieldType::kTime) return FromUtf8(kNoTimeText);
  return {};
}

}  // namespace

const FieldDefinition& RecordForm::Definition(int slot) const {
  return CurrentDatabase(app_).schema.fields[static_cast<std::size_t>(slot)];
}

const FieldRecord& RecordForm::Items(int slot) const {
  return CurrentDatabase(app_).fields[static_cast<std::size_t>(slot)];
}

FormLayout RecordForm::LayOut(Dialog& dialog) const {
  return LayoutEditForm(CurrentDatabase(app_).schema,
                        {dialog.screenSize().width, dialog.textSize(u"X", 0).height,
                         [&](const FieldDefinition& field) {
                           return dialog.textSize(ScreenText(app_, fieldName(field)), 0).width;
                         }});
}

void RecordForm::Show(Dialog& dialog, ByteView record, bool editable) {
  const Field* left_at = FocusedField(dialog);
  const std::optional<int> slot = left_at ? std::optional(left_at->row.slot) : std::nullopt;
  Clear(dialog);
  record_.assign(record.begin(), record.end());
  const FormLayout layout = LayOut(dialog);
  fields_.reserve(layout.rows.size());
  for (const FormRow& row : layout.rows) {
    Field& field = fields_.emplace_back(MakeField(row, record, editable));
    AddControls(dialog, field);
    if (field.kind == ControlKind::kChoice) FillChoice(dialog, field, record);
  }
  dialog.setContentHeight(layout.height);
  FocusField(dialog, slot);
}

// The field of this slot, else the first that takes input, else the first that can be looked at.
void RecordForm::FocusField(Dialog& dialog, std::optional<int> slot) {
  const auto first = [this](auto wanted) {
    return std::find_if(fields_.begin(), fields_.end(), [&](const Field& field) {
      const bool has_text = field.kind == ControlKind::kEdit || field.kind == ControlKind::kButton;
      if (field.kind == ControlKind::kLabel || (field.read_only && !has_text)) return false;
      return wanted(field);
    });
  };
  auto field = first([&](const Field& each) { return each.row.slot == slot; });
  if (field == fields_.end()) field = first([](const Field& each) { return !each.read_only; });
  if (field == fields_.end()) field = first([](const Field&) { return true; });
  if (field == fields_.end()) return;
  dialog.control(FormValue(field->row.slot)).focus();
  OnFocus(dialog, FormValue(field->row.slot), true);  // a screen that opens tells of no focus
}

const RecordForm::Field* RecordForm::FocusedField(Dialog& dialog) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(), [&](const Field& field) {
    return dialog.control(FormValue(field.row.slot)).hasFocus() ||
           (field.has_quick && dialog.control(FormQuick(field.row.slot)).hasFocus());
  });
  return found == fields_.end() ? nullptr : &*found;
}

RecordForm::Field RecordForm::MakeField(const FormRow& row, ByteView record, bool editable) const {
  const FieldDefinition& definition = Definition(row.slot);
  Field field;
  field.row = row;
  field.read_only = !editable || IsShownOnly(row.type) || isMasked(definition, record);
  field.shown = ScreenText(
      app_, editText(CurrentDatabase(app_), record, row.slot, app_.level().formats).text);
  field.kind =
      isMasked(definition, record) ? ControlKind::kEdit : FormControlKind(row.type, field.shown);
  if (field.kind == ControlKind::kButton) {
    field.crlf = field.shown.find(u"\r\n") != std::u16string::npos;
    replaceAll(field.shown, u"\r\n", u"\n");
    replaceAll(field.shown, u"\r", u"\n");
  }
  field.text = field.shown;
  field.max_length = MaxTypedLength(definition);
  field.has_quick = !field.read_only && !placeholderOf(row.type).empty();
  return field;
}

void RecordForm::AddControls(Dialog& dialog, const Field& field) {
  const int slot = field.row.slot;
  const std::u16string name = ScreenText(app_, fieldName(Definition(slot)));
  dialog.addControl(
      {.id = FormLabel(slot), .kind = ControlKind::kLabel, .text = name, .place = field.row.label});
  if (field.row.icon) {
    dialog.addControl({.id = FormIcon(slot),
                       .kind = ControlKind::kIcon,
                       .place = *field.row.icon,
                       .picture = FormIconPicture(field.row.type)});
  }
  ControlTemplate value{
      .id = FormValue(slot), .kind = field.kind, .place = field.row.value, .accessible_name = name};
  value.read_only = field.read_only;
  if (field.kind == ControlKind::kEdit || field.kind == ControlKind::kLabel) {
    value.text = field.shown;
    value.max_length = field.max_length;
  } else if (field.kind == ControlKind::kButton) {
    value.text = ButtonFace(dialog, field);  // stays enabled: it shows what the button leads to
  } else {
    value.enabled = !field.read_only;
    value.opened_by_handler = true;
  }
  Control& control = dialog.addControl(value);
  if (field.has_quick) {
    dialog.addControl({.id = FormQuick(slot),
                       .kind = ControlKind::kChoice,
                       .accessible_name = name + u", choices",
                       .opened_by_handler = true});
    PlaceRow(dialog, field);
  }
  if (field.kind == ControlKind::kCheckBox) control.setChecked(field.shown.starts_with(u'1'));
}

std::u16string RecordForm::ButtonFace(Dialog& dialog, const Field& field) const {
  const int room = field.row.value.width - kButtonMargin;
  const int characters = room / std::max(1, dialog.textSize(u"n", 0).width);
  return ButtonText(field.text, static_cast<std::size_t>(std::max(kFewestOnButton, characters)));
}

// The items in their order, and "No Value" behind them. Keys step through all of them, the menu of
// the pop-up walks their tree.
void RecordForm::FillChoice(Dialog& dialog, Field& field, ByteView record) {
  const FieldRecord& items = Items(field.row.slot);
  std::vector<std::u16string> texts;
  for (const PopupItem& item : items.items) texts.push_back(ScreenText(app_, item.text));
  texts.push_back(FromUtf8(kNoValueText));
  field.choice = static_cast<int>(items.items.size());
  if (const auto stored = slotValue(record, field.row.slot)) {
    if (const PopupItem* item = findItem(items, *stored)) {
      field.choice = static_cast<int>(item - items.items.data());
    }
  }
  Control& control = dialog.control(FormValue(field.row.slot));
  control.setChoices(texts);
  control.select(field.choice);
}

void RecordForm::Place(Dialog& dialog) {
  const FormLayout layout = LayOut(dialog);
  for (const FormRow& row : layout.rows) {
    Field* field = FieldOf(FormValue(row.slot));
    if (field == nullptr) continue;
    field->row = row;
    PlaceRow(dialog, *field);
    if (field->kind == ControlKind::kButton) {
      dialog.control(FormValue(row.slot)).setText(ButtonFace(dialog, *field));
    }
  }
  dialog.setContentHeight(layout.height);
}

void RecordForm::Clear(Dialog& dialog) {
  // Notices that come of the removal find no rows any more.
  const std::vector<Field> fields = std::exchange(fields_, {});
  for (const Field& field : fields) {
    dialog.removeControl(FormLabel(field.row.slot));
    dialog.removeControl(FormValue(field.row.slot));
    if (field.row.icon) dialog.removeControl(FormIcon(field.row.slot));
    if (field.has_quick) dialog.removeControl(FormQuick(field.row.slot));
  }
}

bool RecordForm::IsChanged(Dialog& dialog, const Field& field) const {
  if (field.read_only || field.kind == ControlKind::kLabel) return false;
  if (field.kind == ControlKind::kButton) return field.text != field.shown;
  const Control& control = dialog.control(FormValue(field.row.slot));
  switch (field.kind) {
    case ControlKind::kCheckBox:
      return control.checked() != field.shown.starts_with(u'1');
    case ControlKind::kChoice:
      return control.selection() != field.choice;
    default:
      return TypedText(control, field) != field.shown;
  }
}

// An empty date or time has a text to show, which makes room while somebody types.
std::u16string RecordForm::TypedText(const Control& control, const Field& field) const {
  std::u16string text = control.text();
  return text.empty() ? placeholderOf(field.row.type) : text;
}

bool RecordForm::Changed(Dialog& dialog) const {
  return std::any_of(fields_.begin(), fields_.end(),
                     [&](const Field& field) { return IsChanged(dialog, field); });
}

Result<Bytes> RecordForm::ValueOf(Dialog& dialog, const Field& field, ByteView previous,
                                  InputCare care) const {
  const Control& control = dialog.control(FormValue(field.row.slot));
  const FieldDefinition& definition = Definition(field.row.slot);
  const FieldRecord& items = Items(field.row.slot);
  std::u16string shown =
      field.kind == ControlKind::kButton ? field.text : TypedText(control, field);
  if (field.kind == ControlKind::kCheckBox) shown = control.checked() ? u"1" : u"0";
  if (field.kind == ControlKind::kChoice) {
    const int choice = control.selection();
    if (choice >= 0 && static_cast<std::size_t>(choice) < items.items.size()) {
      const ByteView key = items.items[static_cast<std::size_t>(choice)].valueKey();
      return Bytes(key.begin(), key.end());
    }
    shown = FromUtf8(kNoValueText);
  }
  if (field.crlf) replaceAll(shown, u"\n", u"\r\n");
  const Result<std::string> text = StoredText(app_, shown);
  if (!text.ok()) return text.error();
  return valueOfText(definition, items, *text, app_.level().formats, previous, care);
}

bool RecordForm::Collect(Dialog& dialog, UnpackedRecord& record, Unaccepted unaccepted) {
  UnpackedRecord collected = record;
  for (const Field& field : fields_) {
    if (!IsChanged(dialog, field)) continue;
    auto& slot = collected.slots[static_cast<std::size_t>(field.row.slot)];
    const ByteView previous = slot ? ByteView(*slot) : ByteView();
    Result<Bytes> value = ValueOf(dialog, field, previous, InputCare::kFile);
    if (!value.ok() && unaccepted == Unaccepted::kIsLeftOut) {
      NoteNotStored(dialog, field);
      continue;
    }
    if (!value.ok()) {
      value = ValueOf(dialog, field, previous, InputCare::kPerson);
      if (!value.ok() || !IsUnderstood(field, *value)) {
        if (!value.ok()) SayRefused(field, value.error());
        Control& control = dialog.control(FormValue(field.row.slot));
        control.focus();
        control.selectText();
        return false;
      }
    }
    slot = std::move(*value);
  }
  record = std::move(collected);
  return true;
}

std::u16string RecordForm::QuotedName(const Field& field) const {
  return u"\"" + ScreenText(app_, fieldName(Definition(field.row.slot))) + u"\"";
}

void RecordForm::SayRefused(const Field& field, const Error& error) const {
  ShowMessage(app_, QuotedName(field) + u" " + FromUtf8(error.text) + u".", u"Edit Record",
              MessageIcon::kExclamation);
}

// What a date or time is stored as that was typed in another way than it is shown.
bool RecordForm::IsUnderstood(const Field& field, const Bytes& value) const {
  return Ask(app_,
             QuotedName(field) + u" is understood as " + EditedText(field, value) + u". Store it?",
             u"Edit Record") == Answer::kYes;
}

// The text stays out where the value is kept from others' eyes.
void RecordForm::NoteNotStored(Dialog& dialog, const Field& field) const {
  const Database& database = CurrentDatabase(app_);
  std::u16string note =
      ScreenText(app_, areaText(database.header.name)) + u", " + QuotedName(field);
  if (Definition(field.row.slot).encrypt_flag == 0) {
    const bool has_button = field.kind == ControlKind::kButton;
    note += u": " + (has_button ? field.text : dialog.control(FormValue(field.row.slot)).text());
  }
  app_.not_stored.push_back(std::move(note));
}

// A number box takes digits and one decimal point. A sign that it has stays, and taking characters
// away is always possible, so that a number that came from elsewhere can be changed and cleared.
// Compat: a minus that is typed is refused (EditRecord.NumberBoxesGetTheirSignFromTheMenu).
void RecordForm::OnEdited(Dialog& dialog, ControlId value_control) {
  Field* field = FieldOf(value_control);
  if (field == nullptr || field->row.type != FieldType::kFloat || field->kind != ControlKind::kEdit)
    return;
  Control& control = dialog.control(value_control);
  const std::u16string now = control.text();
  if (IsPartOf(now, field->text) ||
      IsNumberText(now, field->text, app_.level().formats.choices.decimal_comma)) {
    field->text = now;
    return;
  }
  control.setText(field->text);
  ShowMessage(app_, u"Wrong Float Value Entered.", u"ACCESS DENIED", MessageIcon::kExclamation);
}

bool RecordForm::CanChangeSign(Dialog& dialog) const {
  const Field* field = FocusedField(dialog);
  return field != nullptr && field->row.type == FieldType::kFloat &&
         field->kind == ControlKind::kEdit && !field->read_only;
}

void RecordForm::ChangeSign(Dialog& dialog) {
  if (!CanChangeSign(dialog)) return;
  const ControlId id = FormValue(FocusedField(dialog)->row.slot);
  std::u16string text = dialog.control(id).text();
  text.starts_with(u'-') ? text.erase(0, 1) : text.insert(0, 1, u'-');
  dialog.control(id).setText(text);
  FieldOf(id)->text = text;
}

void RecordForm::OnFocus(Dialog& dialog, ControlId value_control, bool gained) {
  const Field* field = FieldOf(value_control);
  if (field == nullptr || field->read_only || placeholderOf(field->row.type).empty()) return;
  Control& control = dialog.control(value_control);
  if (gained) {
    if (control.text() == placeholderOf(field->row.type)) control.setText(u"");
  } else if (!IsChanged(dialog, *field)) {
    control.setText(field->shown);
  } else {
    const auto stored = slotValue(record_, field->row.slot);
    const auto value = ValueOf(dialog, *field, stored.value_or(ByteView()), InputCare::kPerson);
    if (value.ok()) control.setText(EditedText(*field, *value));
  }
}

// How the form shows a value.
std::u16string RecordForm::EditedText(const Field& field, const Bytes& value) const {
  UnpackedRecord record;
  record.slots[static_cast<std::size_t>(field.row.slot)] = value;
  Bytes packed;
  if (!packRecord(record, packed)) return {};
  return ScreenText(
      app_, editText(CurrentDatabase(app_), packed, field.row.slot, app_.level().formats).text);
}

void RecordForm::OnActivated(Dialog& dialog, ControlId control) {
  if (const Field* field = FieldOf(control - kFirstFormQuick + kFirstFormValue);
      field != nullptr && control >= kFirstFormQuick) {
    return ChooseQuickly(dialog, *field, false);
  }
  Field* field = FieldOf(control);
  if (field == nullptr) return;
  if (field->kind == ControlKind::kButton) ShowText(dialog, *field);
  if (field->kind == ControlKind::kChoice) ChooseItem(dialog, *field);
}

void RecordForm::ShowText(Dialog& dialog, Field& field) {
  NoteText note{.title = ScreenText(app_, fieldName(Definition(field.row.slot))),
                .text = field.text,
                .max_length = field.max_length,
                .read_only = field.read_only};
  if (EditNoteText(app_, note) == kDialogClosed || field.read_only) return;
  field.text = note.text;
  dialog.control(FormValue(field.row.slot)).setText(ButtonFace(dialog, field));
}

RecordForm::Field* RecordForm::FieldOf(ControlId value_control) {
  const auto found = std::find_if(fields_.begin(), fields_.end(), [&](const Field& field) {
    return FormValue(field.row.slot) == value_control;
  });
  return found == fields_.end() ? nullptr : &*found;
}

}  // namespace tabelion
