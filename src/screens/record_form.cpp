#include "screens/record_form.h"

#include <algorithm>

#include "query/field_text.h"
#include "query/field_value.h"
#include "screens/note_text.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr std::size_t kButtonCharacters = 10;

bool isText(int type) {
  return type == kText || type == kLongText || type == kTextVariant || type == kText254 ||
         type == kNote;
}

bool hasLineBreak(const std::u16string& text) {
  return text.find_first_of(u"\n\r") != std::u16string::npos;
}

ControlKind kindOf(int type, const std::u16string& text) {
  switch (type) {
    case kPopup:
      return ControlKind::kChoice;
    case kCheckBox:
      return ControlKind::kCheckBox;
    case kNote:
      return ControlKind::kButton;
    case kExternal:
      return ControlKind::kLabel;
    default:
      return isText(type) && hasLineBreak(text) ? ControlKind::kButton : ControlKind::kEdit;
  }
}

// What nobody types: numbers that the program gives, results, and links, which are followed.
bool isShownOnly(int type) {
  return type == kAutoNumber || type == kCalculated || type == kLookup || type == kLinkedField ||
         type == kLinkField || type == kExternal;
}

Picture pictureOf(int type) {
  switch (type) {
    case kInteger:
    case kFloat:
      return Picture::kFieldNumber;
    case kPopup:
      return Picture::kFieldPopup;
    case kDate:
      return Picture::kFieldDate;
    case kTime:
      return Picture::kFieldTime;
    default:
      return Picture::kFieldText;
  }
}

// The longest text that can be typed, in characters; how many bytes they take is checked when the
// value is stored.
int maxLength(const FieldDefinition& field) {
  switch (field.type) {
    case kText:
    case kTextVariant:
      return std::max(1, field.width);
    case kLongText:
      return static_cast<int>(kLongTextSize) - 1;
    case kText254:
      return static_cast<int>(kText254Size) - 1;
    case kNote:
      return static_cast<int>(kNoteSize) - 1;
    case kFloat:
      return static_cast<int>(kNumberTextSize) - 1;
    case kInteger:
      return 11;
    default:
      return 0;
  }
}

void replaceAll(std::u16string& text, std::u16string_view from, std::u16string_view to) {
  for (std::size_t at = text.find(from); at != std::u16string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// On a button: the first words of its text.
std::u16string buttonText(const std::u16string& text) {
  if (text.empty()) return u"Note…";
  const std::size_t line = std::min(text.find(u'\n'), text.size());
  if (line == text.size() && line <= kButtonCharacters) return text;
  std::size_t length = std::min(line, kButtonCharacters - 1);
  if (length > 0 && (text[length - 1] & 0xFC00) == 0xD800) --length;  // half a character
  return text.substr(0, length) + u"…";
}

bool isNumberText(const std::u16string& text, bool decimal_comma) {
  int points = 0;
  for (const char16_t c : text) {
    if (c == u'.' || (decimal_comma && c == u',')) {
      ++points;
    } else if (c < u'0' || c > u'9') {
      return false;
    }
  }
  return points <= 1;
}

}  // namespace

const FieldDefinition& RecordForm::Definition(int slot) const {
  return CurrentDatabase(app_).schema.fields[static_cast<std::size_t>(slot)];
}

const FieldRecord& RecordForm::Items(int slot) const {
  return CurrentDatabase(app_).fields[static_cast<std::size_t>(slot)];
}

void RecordForm::Show(Dialog& dialog, ByteView record, bool editable) {
  Clear(dialog);
  const FormLayout layout = LayoutEditForm(CurrentDatabase(app_).schema, dialog.screenSize().width);
  fields_.reserve(layout.rows.size());
  for (const FormRow& row : layout.rows) {
    Field& field = fields_.emplace_back(MakeField(row, record, editable));
    AddControls(dialog, field);
    if (field.kind == ControlKind::kChoice) FillChoice(dialog, field, record);
  }
  dialog.setContentHeight(layout.height);
  const auto first = std::find_if(fields_.begin(), fields_.end(), [](const Field& field) {
    return field.kind != ControlKind::kLabel && !field.read_only;
  });
  if (first != fields_.end()) dialog.control(FormValue(first->row.slot)).focus();
}

RecordForm::Field RecordForm::MakeField(const FormRow& row, ByteView record, bool editable) const {
  const FieldDefinition& definition = Definition(row.slot);
  Field field;
  field.row = row;
  field.read_only = !editable || isShownOnly(row.type) || isMasked(definition, record);
  field.shown =
      ScreenText(app_, editText(CurrentDatabase(app_), record, row.slot, app_.formats).text);
  field.kind = isMasked(definition, record) ? ControlKind::kEdit : kindOf(row.type, field.shown);
  if (field.kind == ControlKind::kButton) {
    field.crlf = field.shown.find(u"\r\n") != std::u16string::npos;
    replaceAll(field.shown, u"\r\n", u"\n");
    replaceAll(field.shown, u"\r", u"\n");
  }
  field.text = field.shown;
  field.max_length = maxLength(definition);
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
                       .picture = pictureOf(field.row.type)});
  }
  ControlTemplate value{
      .id = FormValue(slot), .kind = field.kind, .place = field.row.value, .accessible_name = name};
  value.read_only = field.read_only;
  if (field.kind == ControlKind::kEdit || field.kind == ControlKind::kLabel) {
    value.text = field.shown;
    value.max_length = field.max_length;
  } else if (field.kind == ControlKind::kButton) {
    value.text = buttonText(field.shown);  // stays enabled: it shows what the button leads to
  } else {
    value.enabled = !field.read_only;
  }
  Control& control = dialog.addControl(value);
  if (field.kind == ControlKind::kCheckBox) control.setChecked(field.shown.starts_with(u'1'));
}

// The items in their order, each indented by its level, and "No Value" behind them.
void RecordForm::FillChoice(Dialog& dialog, Field& field, ByteView record) {
  const FieldRecord& items = Items(field.row.slot);
  std::vector<std::u16string> texts;
  for (const PopupItem& item : items.items) {
    const auto indent = static_cast<std::size_t>(std::min(item.level(), 5)) * 2;
    texts.push_back(std::u16string(indent, u' ') + ScreenText(app_, item.text));
  }
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
  const FormLayout layout = LayoutEditForm(CurrentDatabase(app_).schema, dialog.screenSize().width);
  for (const FormRow& row : layout.rows) {
    Field* field = FieldOf(FormValue(row.slot));
    if (field == nullptr) continue;
    field->row = row;
    dialog.control(FormLabel(row.slot)).setPlace(row.label);
    dialog.control(FormValue(row.slot)).setPlace(row.value);
    if (row.icon) dialog.control(FormIcon(row.slot)).setPlace(*row.icon);
  }
  dialog.setContentHeight(layout.height);
}

void RecordForm::Clear(Dialog& dialog) {
  for (const Field& field : fields_) {
    dialog.removeControl(FormLabel(field.row.slot));
    dialog.removeControl(FormValue(field.row.slot));
    if (field.row.icon) dialog.removeControl(FormIcon(field.row.slot));
  }
  fields_.clear();
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
      return control.text() != field.shown;
  }
}

bool RecordForm::Changed(Dialog& dialog) const {
  return std::any_of(fields_.begin(), fields_.end(),
                     [&](const Field& field) { return IsChanged(dialog, field); });
}

Result<Bytes> RecordForm::ValueOf(Dialog& dialog, const Field& field, ByteView previous) const {
  const Control& control = dialog.control(FormValue(field.row.slot));
  const FieldDefinition& definition = Definition(field.row.slot);
  const FieldRecord& items = Items(field.row.slot);
  std::u16string shown = field.kind == ControlKind::kButton ? field.text : control.text();
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
  return valueOfText(definition, items, *text, app_.formats, previous);
}

bool RecordForm::Collect(Dialog& dialog, UnpackedRecord& record) {
  UnpackedRecord collected = record;
  for (const Field& field : fields_) {
    if (!IsChanged(dialog, field)) continue;
    auto& slot = collected.slots[static_cast<std::size_t>(field.row.slot)];
    Result<Bytes> value = ValueOf(dialog, field, slot ? ByteView(*slot) : ByteView());
    if (!value.ok()) {
      const std::u16string name = ScreenText(app_, fieldName(Definition(field.row.slot)));
      ShowMessage(app_, u"\"" + name + u"\" " + FromUtf8(value.error().text) + u".", u"Edit Record",
                  MessageIcon::kExclamation);
      dialog.control(FormValue(field.row.slot)).focus();
      return false;
    }
    slot = std::move(*value);
  }
  record = std::move(collected);
  return true;
}

// A number box takes digits and one decimal point; taking characters away is always possible, so
// that a number that came from elsewhere can be cleared.
void RecordForm::OnEdited(Dialog& dialog, ControlId value_control) {
  Field* field = FieldOf(value_control);
  if (field == nullptr || field->row.type != kFloat || field->kind != ControlKind::kEdit) return;
  Control& control = dialog.control(value_control);
  const std::u16string now = control.text();
  if (now.size() < field->text.size() || isNumberText(now, app_.formats.choices.decimal_comma)) {
    field->text = now;
    return;
  }
  control.setText(field->text);
  ShowMessage(app_, u"Wrong Float Value Entered.", u"ACCESS DENIED", MessageIcon::kExclamation);
}

int RecordForm::OnActivated(Dialog& dialog, ControlId value_control) {
  Field* field = FieldOf(value_control);
  if (field == nullptr || field->kind != ControlKind::kButton) return 0;
  NoteText note{.title = ScreenText(app_, fieldName(Definition(field->row.slot))),
                .text = field->text,
                .max_length = field->max_length,
                .read_only = field->read_only};
  const int result = EditNoteText(app_, dialog, note);
  if (result != kDialogClosed && !field->read_only) {
    field->text = note.text;
    dialog.control(value_control).setText(buttonText(note.text));
  }
  return result;
}

RecordForm::Field* RecordForm::FieldOf(ControlId value_control) {
  const auto found = std::find_if(fields_.begin(), fields_.end(), [&](const Field& field) {
    return FormValue(field.row.slot) == value_control;
  });
  return found == fields_.end() ? nullptr : &*found;
}

}  // namespace tabelion
