#include "screens/kit/type_to_find.h"

#include "engine/ascii.h"

namespace tabelion {
namespace {

bool isFindCharacter(char32_t character) {
  if (character >= 0x80) return character >= 0xA0 && character <= 0xFFFF;
  return character == U' ' || isDigit(character) || isLetter(character);
}

}  // namespace

TypeToFind::Taken TypeToFind::onKey(Dialog& dialog, const KeyPress& key, const Search& search) {
  std::optional<int> row;
  if (key.key == Key::kCharacter && isFindCharacter(key.character)) {
    in_use_ = true;
    if (typed_.size() < kCapacity) {
      typed_.push_back(static_cast<char16_t>(key.character));
      row = search(typed_);
      if (!row) typed_.pop_back();
    }
  } else if (key.key == Key::kBack && in_use_) {
    if (!typed_.empty()) typed_.pop_back();
    if (!typed_.empty()) row = search(typed_);
  } else {
    return {};
  }
  show(dialog);
  dialog.startTimer(kFindTimer, kFindPauseMs);
  return {true, row};
}

void TypeToFind::onTimer(Dialog& dialog, int timer) {
  if (timer == kFindTimer) clear(dialog);
}

void TypeToFind::clear(Dialog& dialog) {
  if (!in_use_) return;
  typed_.clear();
  in_use_ = false;
  dialog.stopTimer(kFindTimer);
  show(dialog);
}

void TypeToFind::setTitle(Dialog& dialog, std::u16string title) {
  title_ = std::move(title);
  show(dialog);
}

void TypeToFind::show(Dialog& dialog) {
  dialog.setTitle(typed_.empty() ? title_ : u"Find: " + typed_);
}

}  // namespace tabelion
