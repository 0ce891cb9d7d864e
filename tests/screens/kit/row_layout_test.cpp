#include "screens/kit/row_layout.h"

#include <gtest/gtest.h>

#include <map>

#include "support/fake_phone.h"

namespace tabelion {
namespace {

constexpr ControlId kName = 1, kNameBox = 2, kLevel = 3, kField = 4, kWay = 5, kTimed = 6,
                    kSeconds = 7, kUnit = 8, kHint = 9, kHits = 10, kFind = 11, kNext = 12;

const std::map<ControlId, std::u16string> kTexts = {
    {kName, u"Name:"},
    {kLevel, u"Second level:"},
    {kTimed, u"Save every database after:"},
    {kUnit, u"Seconds"},
    {kHint, u"A sentence that is longer than the narrow screen is wide, and so has several lines."},
    {kFind, u"Find"},
    {kNext, u"Next"}};

std::map<ControlId, Rect> layOut(const std::vector<LayoutRow>& rows, Size screen,
                                 int* height = nullptr) {
  const RowLayout layout =
      LayoutRows(rows, {.size = screen, .measure = plainTextSize, .text = [](ControlId id) {
                          const auto found = kTexts.find(id);
                          return found == kTexts.end() ? std::u16string() : found->second;
                        }});
  std::map<ControlId, Rect> places;
  for (const PlacedControl& placed : layout.places) places[placed.id] = placed.place;
  if (height != nullptr) *height = layout.height;
  return places;
}

std::vector<LayoutRow> everyKind() {
  return {LabeledRow(kName, {BoxCell(kNameBox)}),
          LabeledRow(kLevel, {BoxCell(kField), BoxCell(kWay, 80)}),
          SentenceRow({CheckCell(kTimed), BoxCell(kSeconds, 46), Glued(TextCell(kUnit))}),
          Spaced(TextRow(kHint)),
          RestRow(kHits, 60),
          ButtonRow({kFind, kNext})};
}

bool overlap(const Rect& a, const Rect& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

TEST(RowLayout, NothingOverlapsOrLeavesTheScreenAtAnySize) {
  for (int width = 120; width <= 800; width += 20) {
    for (const int height : {100, 190, 270, 560}) {
      SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
      int needed = 0;
      const auto places = layOut(everyKind(), {width, height}, &needed);
      EXPECT_EQ(places.size(), 12u);
      for (const auto& [id, place] : places) {
        EXPECT_GE(place.x, 0);
        EXPECT_LE(place.x + place.width, width);
        EXPECT_LE(place.y + place.height, needed);
        EXPECT_GT(place.width, 0);
        EXPECT_GE(place.height, 15);
        for (const auto& [other, taken] : places) {
          EXPECT_TRUE(id == other || !overlap(place, taken)) << id << " and " << other;
        }
      }
      EXPECT_GE(needed, height);  // the list takes what is left
      EXPECT_GE(places.at(kHits).height, 60);
    }
  }
}

TEST(RowLayout, LabelsStandBesideTheirBoxesWhereThereIsRoom) {
  auto places = layOut(everyKind(), {160, 270});
  EXPECT_GT(places[kNameBox].y, places[kName].y + 10);
  for (const int width : {240, 320, 480, 800}) {
    places = layOut(everyKind(), {width, 400});
    EXPECT_EQ(places[kName].y, places[kNameBox].y);
    EXPECT_EQ(places[kNameBox].x, places[kField].x);
    EXPECT_LE(places[kWay].x + places[kWay].width - places[kName].x, 480);
  }
}

TEST(RowLayout, SentencesGoOnInTheNextLineButNeverWithinWhatIsGlued) {
  auto places = layOut(everyKind(), {340, 270});
  EXPECT_EQ(places[kSeconds].y, places[kTimed].y);
  places = layOut(everyKind(), {280, 270});  // the unit alone has no room: its box goes with it
  EXPECT_GT(places[kSeconds].y, places[kTimed].y);
  EXPECT_EQ(places[kUnit].y, places[kSeconds].y);
  EXPECT_EQ(places[kHint].height, layOut(everyKind(), {280, 600})[kHint].height);
  EXPECT_GT(places[kHint].height, 2 * 15);
}

// What stands at the bottom stays there, and what is too high scrolls.
TEST(RowLayout, SpringsKeepTheLastRowsAtTheBottom) {
  int height = 0;
  const std::vector<LayoutRow> rows{TextRow(kHint), SpringRow(), ButtonRow({kFind})};
  auto places = layOut(rows, {240, 270}, &height);
  EXPECT_EQ(height, 270);
  EXPECT_GT(places[kFind].y, 230);
  places = layOut(rows, {240, 60}, &height);
  EXPECT_GT(height, 60);
  EXPECT_GE(places[kFind].y, places[kHint].y + places[kHint].height);
}

}  // namespace
}  // namespace tabelion
