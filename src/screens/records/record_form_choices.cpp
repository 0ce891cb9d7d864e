// The choices of the form: the items of pop-ups, and what dates and times mostly are.
#include <algorithm>

#include "query/field_text.h"
#include "screens/lists/choose_popup_value.h"
#include "screens/lists/moment_choices.h"
#include "screens/lists/popup_list.h"
#include "screens/records/record_form.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kNarrowestWithQuick = 60;  // below it the box keeps all of the row

}  // namespace

void RecordForm::PlaceRow(Dialog& dialog, const Field& field) const {
  const FormRow& row = field.row;
  dialog.control(FormLabel(row.slot)).setPlace(row.label);
  if (row.icon) dialog.control(FormIcon(row.slot)).setPlace(*row.icon);
  Rect box = row.value;
  if (field.has_quick) {
    Control& quick = dialog.control(FormQuick(row.slot));
    const bool has_room = box.width >= kNarrowestWithQuick;
    quick.setVisible(has_room);
    if (has_room) {
      box.width -= box.height;
      quick.setPlace({box.x + box.width, box.y, box.height, box.height});
    }
  }
  dialog.control(FormValue(row.slot)).setPlace(box);
}

bool RecordForm::CanPopup(Dialog& dialog) const {
  const Field* field = FocusedField(dialog);
  return field != nullptr && !field->read_only &&
         (field->has_quick || field->kind == ControlKind::kChoice);
}

void RecordForm::Popup(Dialog& dialog) {
  if (!CanPopup(dialog)) return;
  Field& field = *FieldOf(FormValue(FocusedField(dialog)->row.slot));
  field.has_quick ? ChooseQuickly(dialog, field, true) : ListItems(dialog, field);
}

// The value that the controls show now; empty when it is not accepted as it stands.
Bytes RecordForm::ValueNow(Dialog& dialog, const Field& field) const {
  const auto stored = slotValue(record_, field.row.slot);
  const Result<Bytes> value =
      ValueOf(dialog, field, stored.value_or(ByteView()), InputCare::kPerson);
  return value.ok() ? *value : Bytes();
}

void RecordForm::ChooseItem(Dialog& dialog, Field& field) {
  PopupValue value{popupKey(ValueNow(dialog, field)), {}};
  Control& control = dialog.control(FormValue(field.row.slot));
  const PopupMenu menu{.slot = field.row.slot,
                       .allow_no_value = true,
                       .allow_edit = MayEditPopups(app_),
                       .menu_top = control.bottomOnScreen()};
  const int result = ChoosePopupValue(app_, CurrentDatabase(app_), menu, value);
  if (result == kPopupEditList) return ListItems(dialog, field);
  if (result == kPopupDismissed) return;
  const FieldRecord& items = Items(field.row.slot);
  const PopupItem* item = result == kPopupChosen ? findItem(items, value.key) : nullptr;
  control.select(item == nullptr ? static_cast<int>(items.items.size())
                                 : static_cast<int>(item - items.items.data()));
}

// The items may be others afterwards; what was chosen before stays chosen, whatever its place.
void RecordForm::ListItems(Dialog& dialog, Field& field) {
  PopupValue value{popupKey(ValueNow(dialog, field)), {}};
  const int result = ShowPopupList(app_, field.row.slot, value);
  FillChoice(dialog, field, record_);
  const FieldRecord& items = Items(field.row.slot);
  const PopupItem* item = result == kPopupNoValue ? nullptr : findItem(items, value.key);
  Control& control = dialog.control(FormValue(field.row.slot));
  control.select(item == nullptr ? static_cast<int>(items.items.size())
                                 : static_cast<int>(item - items.items.data()));
  control.focus();
}

void RecordForm::ChooseQuickly(Dialog& dialog, const Field& field, bool from_list) {
  Control& box = dialog.control(FormValue(field.row.slot));
  const MomentField moment{.type = field.row.type,
                           .name = ScreenText(app_, fieldName(Definition(field.row.slot))),
                           .value = ValueNow(dialog, field)};
  const auto value =
      from_list ? ShowMomentList(app_, moment) : ChooseMoment(app_, moment, box.bottomOnScreen());
  if (value) box.setText(EditedText(field, *value));
  box.focus();
  OnFocus(dialog, FormValue(field.row.slot), true);
  box.selectText();
}

bool RecordForm::OnKey(Dialog& dialog, const KeyPress& key) {
  const Field* here = FocusedField(dialog);
  if (here == nullptr || (key.key != Key::kUp && key.key != Key::kDown)) return false;
  const auto takesFocus = [](const Field& field) {
    if (field.kind == ControlKind::kLabel) return false;
    return !field.read_only || field.kind == ControlKind::kEdit ||
           field.kind == ControlKind::kButton;
  };
  const std::size_t count = fields_.size();
  auto at = static_cast<std::size_t>(here - fields_.data());
  do {
    at = (at + (key.key == Key::kDown ? 1 : count - 1)) % count;
  } while (!takesFocus(fields_[at]));
  Control& control = dialog.control(FormValue(fields_[at].row.slot));
  control.focus();
  control.selectText();
  return true;
}

}  // namespace tabelion
