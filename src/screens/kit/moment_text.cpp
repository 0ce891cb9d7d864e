#include "screens/kit/moment_text.h"

#include "engine/stored_value.h"
#include "query/field_text.h"
#include "query/field_value.h"
#include "services/message.h"
#include "services/modal.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

FieldDefinition fieldOf(FieldType type) {
  FieldDefinition field;
  field.type = type;
  return field;
}

}  // namespace

Bytes DateBytes(std::uint32_t days) {
  Bytes value(sizeof days);
  storeLe32(value.data(), days);
  return value;
}

Bytes TimeBytes(const TimeValue& time) {
  return {time.second, time.minute, time.hour, time.fourth};
}

std::uint32_t Today(const Application& app) {
  const CalendarTime now = app.platform.clock.local();
  return daysSince1904(now.month, now.day, now.year);
}

std::u16string BoxTextOf(const Application& app, FieldType type, ByteView value) {
  FormatSettings formats = app.level().formats;
  formats.show_date = formats.edit_date;
  formats.show_time = formats.edit_time;
  std::string text;
  appendValueText(text, fieldOf(type), FieldRecord{}, value, formats);
  return ScreenText(app, text);
}

Result<Bytes> ValueOfBoxText(const Application& app, FieldType type, const std::u16string& text,
                             ByteView previous) {
  const Result<std::string> stored = StoredText(app, text);
  if (!stored.ok()) return stored.error();
  return valueOfText(fieldOf(type), FieldRecord{}, *stored, app.level().formats, previous);
}

void MomentBox::Show(Dialog& dialog, ByteView value) const {
  dialog.control(box_).setText(BoxTextOf(app_, type_, value));
}

Result<Bytes> MomentBox::Typed(Dialog& dialog) const {
  return ValueOfBoxText(app_, type_, dialog.control(box_).text(), previous_);
}

void MomentBox::Done(Dialog& dialog) {
  const Result<Bytes> typed = Typed(dialog);
  if (typed.ok()) {
    picked = *typed;
    return dialog.end(kDialogDone);
  }
  ShowMessage(app_, u"\"" + name_ + u"\" " + FromUtf8(typed.error().text) + u".",
              type_ == FieldType::kDate ? u"Choose Date" : u"Choose Time",
              MessageIcon::kExclamation);
  dialog.control(box_).focus();
  dialog.control(box_).selectText();
}

bool MomentBox::OnAutoClose(Dialog& dialog) {
  if (dialog.control(box_).text() == first_text_) return true;
  if (Typed(dialog).ok() || !IsAlone(app_.closing)) {
    Done(dialog);
    return picked.has_value();
  }
  app_.not_stored.push_back(name_);
  return true;
}

}  // namespace tabelion
