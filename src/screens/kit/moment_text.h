// Dates and times as they are stored, and in boxes, by the rules of the record form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "query/time_text.h"
#include "services/application.h"

namespace tabelion {

// What a record holds of a date (a count of days from 1904-01-01, 0 for none) and of a time.
Bytes DateBytes(std::uint32_t days);
Bytes TimeBytes(const TimeValue& time);
std::uint32_t Today(const Application& app);

// As a box shows a value, so that it reads back. `type` is kDate or kTime.
std::u16string BoxTextOf(const Application& app, FieldType type, ByteView value);
// What a text means that a person sees before it is stored; the error ends a sentence about it. A
// time without seconds keeps those of `previous` where hour and minute are the same.
Result<Bytes> ValueOfBoxText(const Application& app, FieldType type, const std::u16string& text,
                             ByteView previous);

// The box of a screen on which a date or a time is picked: what is typed there is what is taken.
class MomentBox {
 public:
  // `type` is kDate or kTime; `name` says what the value is of. `previous` as above.
  MomentBox(Application& app, FieldType type, ControlId box, std::u16string name, Bytes previous)
      : app_(app), type_(type), box_(box), name_(std::move(name)), previous_(std::move(previous)) {}

  void Show(Dialog& dialog, ByteView value) const;
  // What it says now is what it began with: nobody has taken that by looking at it.
  void Begin(Dialog& dialog) { first_text_ = dialog.control(box_).text(); }
  Result<Bytes> Typed(Dialog& dialog) const;
  // Ends the dialog with the value; of a text that is none, says why, and selects it.
  void Done(Dialog& dialog);
  // For the screen's OnAutoClose. Where nobody is there to be asked, a text that is no value leaves
  // the value as it was.
  bool OnAutoClose(Dialog& dialog);

  std::optional<Bytes> picked;

 private:
  Application& app_;
  const FieldType type_;
  const ControlId box_;
  const std::u16string name_;
  const Bytes previous_;
  std::u16string first_text_;
};

}  // namespace tabelion
