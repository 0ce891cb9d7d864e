#include <gtest/gtest.h>

#include "interchange/svg_picture.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

constexpr int kWeekScreen = 901;
constexpr ControlId kWeek = 1;
constexpr int kDayWidth = 20;
constexpr Color kInk{0, 0, 0};
constexpr Color kMarked{64, 188, 255};

// A picker: seven days in a row, moved through by keys and chosen by a press.
class WeekScreen : public DialogHandler {
 public:
  bool onKey(Dialog& dialog, const KeyPress& key) override {
    if (key.control != kWeek || (key.key != Key::kLeft && key.key != Key::kRight)) return false;
    choose(dialog, day + (key.key == Key::kRight ? 1 : -1));
    return true;
  }
  void onPaintCanvas(Dialog&, ControlId, CanvasPainter& painter) override {
    painter.fill({day * kDayWidth, 0, kDayWidth, 20}, kMarked);
    for (int i = 0; i < 7; ++i) {
      painter.text({i * kDayWidth, 0, kDayWidth, 20}, i == 0 ? u"<&>" : u"M", kInk,
                   TextWeight::kNormal, TextSide::kMiddle);
    }
    painter.line({0, 19}, {139, 19}, kInk, 1);
  }
  std::u16string canvasText(Dialog&, ControlId) override {
    return u"day " + std::u16string(1, static_cast<char16_t>(u'1' + day));
  }
  void onCanvasPressed(Dialog& dialog, ControlId, Point at) override {
    choose(dialog, at.x / kDayWidth);
  }
  void onCommand(Dialog& dialog, CommandId) override { dialog.end(day); }

  int day = 0;

 private:
  void choose(Dialog& dialog, int wanted) {
    day = wanted;
    dialog.control(kWeek).repaint();
  }
};

TEST(Canvas, PickerIsPaintedSpokenAndMovedByKeysAndPresses) {
  PhoneWorld world;
  WeekScreen screen;
  DialogTemplate dialog{.resource = kWeekScreen};
  dialog.controls = {{.id = kWeek,
                      .kind = ControlKind::kCanvas,
                      .place = {0, 0, 140, 20},
                      .accessible_name = u"Week",
                      .takes_focus = true}};
  world.phone.at(kWeekScreen)
      .press(Key::kRight, 2)
      .look([](FakeDialog& week) {
        const PaintedCanvas painted = week.fake(kWeek).paintCanvas();
        ASSERT_EQ(painted.fills.size(), 1u);
        EXPECT_EQ(painted.fills[0].area.x, 40);
        EXPECT_EQ(painted.texts.size(), 7u);
        EXPECT_EQ(painted.lines.size(), 1u);
        EXPECT_EQ(week.fake(kWeek).spoken(), u"Week, day 3");
        week.handler.onCanvasPressed(week, kWeek, {101, 3});
        EXPECT_EQ(week.fake(kWeek).spoken(), u"Week, day 6");
      })
      .press(Key::kEnter);
  world.phone.play([&] { EXPECT_EQ(world.phone.runModal(dialog, screen), 5); });
}

TEST(Canvas, SvgHasTheSameMarksAndEscapesTexts) {
  PhoneWorld world;
  WeekScreen screen;
  DialogTemplate dialog{.resource = kWeekScreen};
  dialog.controls = {{.id = kWeek, .kind = ControlKind::kCanvas}};
  SvgPicture picture({140, 20}, u"One \"week\" <1>\n");
  world.phone.at(kWeekScreen)
      .look([&](FakeDialog& week) { screen.onPaintCanvas(week, kWeek, picture); })
      .press(Key::kBack);
  world.phone.play([&] { world.phone.runModal(dialog, screen); });
  const std::string file = picture.file();
  EXPECT_EQ(file.find("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"140\" height=\"20\""), 0u);
  EXPECT_NE(file.find("<title>One \"week\" &lt;1&gt; </title>"), std::string::npos);
  EXPECT_NE(file.find("<rect x=\"0\" y=\"0\" width=\"20\" height=\"20\" fill=\"#40bcff\"/>"),
            std::string::npos);
  EXPECT_NE(file.find("text-anchor=\"middle\" fill=\"#000000\">&lt;&amp;&gt;</text>"),
            std::string::npos);
  EXPECT_NE(file.find("<line x1=\"0.5\" y1=\"19.5\" x2=\"139.5\" y2=\"19.5\""), std::string::npos);
  EXPECT_TRUE(file.ends_with("</svg>\n"));
}

}  // namespace
}  // namespace tabelion
