#include "screens/kit/long_work.h"

#include "screens/kit/screen_numbers.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

TEST(LongWork, ShowsHowFarItIsOnceItTakesLongAndCanBeStopped) {
  PhoneWorld world;
  Application app(world.platform);
  int parts = 0;
  bool shown = false;
  LongWork work{.title = u"Counting", .total = 8, .part = [&](int done) {
                  ++parts;
                  return done + 1;
                }};
  world.phone.play([&] { EXPECT_TRUE(DoLongWork(app, work)); });  // no screen comes up
  EXPECT_EQ(parts, 8);
  work.patience_ms = work.turn_ms = 0;
  work.part = [&](int done) {
    ++parts;
    if (done == 4) {
      FakeDialog& dialog = world.phone.open(kLongWorkScreen);
      EXPECT_EQ(dialog.title, u"Counting");
      EXPECT_EQ(dialog.fake(kLongWorkText).text(), u"50 %");
      const Rect half = dialog.fake(kLongWorkBar).paintCanvas().fills.at(1).area;
      EXPECT_EQ(half.width, dialog.fake(kLongWorkBar).place().width / 2);
      shown = true;
    }
    return done + 1;
  };
  world.phone.play([&] { EXPECT_TRUE(DoLongWork(app, work)); });
  EXPECT_TRUE(shown);
  parts = 0;
  work.part = [&](int done) {
    if (++parts == 5) world.phone.open(kLongWorkScreen).press(Key::kBack);
    return done + 1;
  };
  world.phone.play([&] { EXPECT_FALSE(DoLongWork(app, work)); });
  EXPECT_EQ(parts, 5);
  work.total = 0;  // nothing to do
  world.phone.play([&] { EXPECT_TRUE(DoLongWork(app, work)); });
}

}  // namespace
}  // namespace tabelion
