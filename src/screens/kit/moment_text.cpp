#include "screens/kit/moment_text.h"

#include "query/field_text.h"
#include "query/field_value.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

FieldDefinition fieldOf(FieldType type) {
  FieldDefinition field;
  field.type = type;
  return field;
}

}  // namespace

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

}  // namespace tabelion
