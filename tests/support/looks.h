// What a person sees on a screen, for a script to look at:
//   phone.at(kSearchScreen).look(reads(kSearchText, u"Ash")).look(selects(kSearchField, 0));
#pragma once

#include <gtest/gtest.h>

#include "support/fake_phone.h"

namespace tabelion {

using Look = std::function<void(FakeDialog&)>;
using Texts = std::vector<std::u16string>;

inline Look titled(const std::u16string& text) {
  return [=](FakeDialog& dialog) { EXPECT_EQ(narrow(dialog.title), narrow(text)); };
}
inline Look reads(ControlId id, const std::u16string& text) {
  return [=](FakeDialog& dialog) { EXPECT_EQ(narrow(dialog.fake(id).text()), narrow(text)); };
}
inline Look speaks(ControlId canvas, const std::u16string& text) {
  return [=](FakeDialog& dialog) { EXPECT_EQ(narrow(dialog.fake(canvas).spoken()), narrow(text)); };
}
inline Look selects(ControlId id, int index) {
  return [=](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(id).selection(), index); };
}
inline Look choosesFrom(ControlId id, const Texts& choices) {
  return [=](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(id).choices, choices); };
}
inline Look takesFocus(ControlId id, bool expected) {
  return [=](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(id).takesFocus(), expected); };
}
inline Look hasFocus(ControlId id) {
  return [=](FakeDialog& dialog) { EXPECT_TRUE(dialog.fake(id).hasFocus()); };
}
inline Look visible(const std::vector<ControlId>& ids, bool expected) {
  return [=](FakeDialog& dialog) {
    for (const ControlId id : ids) EXPECT_EQ(dialog.fake(id).face.visible, expected) << id;
  };
}
// The entries under a path of a soft-key menu; a disabled one starts with "-", a checked one
// with "*".
inline Look offers(const Texts& path, const Texts& entries) {
  return [=](FakeDialog& dialog) { EXPECT_EQ(dialog.menuTexts(path), entries); };
}

}  // namespace tabelion
