#include "screens/program/about.h"

#include "screens/kit/screen_numbers.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

TEST(About, LiesOnItsSideOnOneScreenOnly) {
  const std::pair<Size, bool> cases[] = {
      {{320, 240}, true}, {{240, 320}, false}, {{320, 320}, false}, {{640, 240}, false}};
  for (const auto& [screen, landscape] : cases) {
    PhoneWorld world(screen);
    Application app(world.platform);
    world.phone.at(kAboutScreen)
        .look([landscape = landscape](FakeDialog& dialog) {
          const Rect logo = dialog.fake(kAboutLogo).place();
          const Rect name = dialog.fake(kAboutName).place();
          EXPECT_EQ(name.x >= logo.x + logo.width, landscape);
          EXPECT_EQ(name.y >= logo.y + logo.height, !landscape);
          EXPECT_NE(narrow(dialog.fake(kAboutVersion).text()).find(TABELION_VERSION),
                    std::string::npos);
        })
        .press(landscape ? Key::kBack : Key::kEnter);
    world.phone.play([&] { EXPECT_EQ(ShowAbout(app), kDialogDone); });
  }
}

}  // namespace
}  // namespace tabelion
