#include "screens/program/ask_password.h"

#include "screens/kit/screen_numbers.h"
#include "support/looks.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

TEST(AskPassword, WrongPasswordIsConfirmedAfterANotice) {
  PhoneWorld world;
  Application app(world.platform);
  Password typed;
  const PasswordQuestion question{.expected = "sesame", .compare = true};
  world.phone.at(kPasswordScreen).type(u"sesame").choose({u"OK"});
  world.phone.at(kPasswordScreen).type(u"guess").choose({u"OK"});
  world.phone.says(u"Invalid Password", u"Error");
  world.phone.at(kPasswordScreen).type(u"sesame").choose({u"Cancel"});
  world.phone.play([&] {
    EXPECT_EQ(AskPassword(app, question, &typed), kPasswordConfirmed);
    EXPECT_EQ(AskPassword(app, question, &typed), kPasswordConfirmed);
    EXPECT_EQ(typed.text(), "guess");
    EXPECT_EQ(AskPassword(app, question, &typed), kPasswordCancelled);
  });
}

TEST(AskPassword, HidesWhatIsTypedAsTheUserWants) {
  PhoneWorld world;
  Application app(world.platform);
  Password typed;
  const auto masked = [](bool expected) {
    return [expected](FakeDialog& dialog) {
      EXPECT_EQ(dialog.fake(kPasswordEdit).face.masked, expected);
      EXPECT_EQ(dialog.fake(kHidePasswordBox).checked(), expected);
    };
  };
  world.phone.at(kPasswordScreen)
      .look([&](FakeDialog&) { EXPECT_EQ(world.setting("HidePassword"), "0"); })
      .look(masked(false))
      .tick(kHidePasswordBox)
      .look(masked(true))
      .focus(kPasswordEdit)
      .press(Key::kBack)  // deletes, even where there is nothing, and never closes
      .type(u"abcdefghijklmnopqrstuvwxyz")
      .press(Key::kBack)
      .choose({u"OK"});
  world.phone.at(kPasswordScreen)
      .look(masked(true))
      .look(reads(kPasswordLabel, u"Enter Encryption Password"))
      .choose({u"OK"});
  world.phone.play([&] {
    AskPassword(app, {}, &typed);
    EXPECT_EQ(typed.text(), "abcdefghijklmnopqrstuvw");
    EXPECT_EQ(world.setting("HidePassword"), "1");
    AskPassword(app, {.for_encryption = true});
  });
}

}  // namespace
}  // namespace tabelion
