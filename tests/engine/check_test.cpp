#include "engine/check.h"

#include <gmock/gmock.h>

#include <functional>
#include <tuple>

#include "database_fixture.h"

namespace tabelion {
namespace {

class Check : public DatabaseFixture {
 protected:
  Check() {
    addField(0, FieldType::kText, "Name");
    addField(1, FieldType::kDate, "Day");
    database.fields[0].items.resize(2);
    database.fields[0].items[0].text = "one";
    addText("first");
    addText("second");
    save();
    sound = file();
  }

  // What check says of the sound file with one change.
  std::vector<std::string> after(const std::function<void(Bytes&)>& change) {
    Bytes bytes = sound;
    change(bytes);
    std::vector<std::string> lines;
    for (const Deviation& deviation : checkFile(bytes)) {
      lines.push_back(std::to_string(deviation.offset) + ": " + deviation.text);
    }
    return lines;
  }
  std::string at(std::size_t offset, const std::string& text) {
    return std::to_string(offset) + ": " + text;
  }
  std::size_t record(int index) { return recordOffset(sound, index); }

  Bytes sound;
};

using ::testing::Contains;
using ::testing::ElementsAre;

TEST_F(Check, SavedFileIsSound) {
  EXPECT_THAT(after([](Bytes&) {}), ElementsAre());
}

TEST_F(Check, EveryKindOfDamageIsToldWithItsPlace) {
  const std::size_t schema = record(0);
  const std::size_t item = record(1);
  const std::size_t data = record(103);
  const std::tuple<std::size_t, int, std::size_t, std::string> bytes_changed[] = {
      // place of the byte, its new value, place told, text told
      {56, 1, 56, "the sort-info offset is not 0"},
      {60, 'x', 60, "the type is not \"Tbln\""},
      {71, 1, 68, "the unique-ID seed is not 0"},
      {72, 1, 72, "there is a next record list"},
      {36, 0xFF, 36, "the file was created after it was changed"},
      {78 + 8 * 104, 1, 78 + 8 * 104, "the gap behind the record list is not all zeros"},
      {schema - 1, 1, schema - 1, "the info block is not all zeros"},
      {schema + 22, 'x', schema + 22, "the marker is not \"TblnB\""},
      {schema + 630, 99, schema + 630, "field 0 has type 25345, which does not exist"},
      {item, 21, item, "field record 0: it begins with 21, not 22"},
      {item + 23, 61, item, "field record 0: its counts and text offsets do not fit its bytes"},
      {item + 27 + 20 + 19, 0, item + 27 + 20 + 18,
       "field record 0: its counts and text offsets do not fit its bytes"},
      {record(102) - 1, 7, record(102) - 3, "extension record: its closing bytes are not 0, 0, 1"},
      {data + 1, 'x', data + 1, "data record 1: its stamp does not begin with \"pdblb\""},
      {data + 23, 200, data + 23,
       "data record 1: the value at this place runs over the end of the record"},
      {data + 23 + 2 + 6, 'd', data + 25, "data record 1, slot 0: the text has no NUL"},
      {sound.size() - 1, 0, sound.size() - 2,
       "data record 1: the value at this place runs over the end of the record"},
  };
  for (const auto& [place, value, told, text] : bytes_changed) {
    const auto lines = after([&, place = place, value = value](Bytes& bytes) {
      bytes[place] = static_cast<std::uint8_t>(value);
    });
    const std::string expected =
        text.find("counts and text") != text.npos ? at(item, text) : at(told, text);
    EXPECT_THAT(lines, Contains(expected)) << "byte " << place;
  }
}

TEST_F(Check, ListThatDoesNotFitTheFileIsTold) {
  EXPECT_THAT(after([&](Bytes& bytes) { storeBe16(&bytes[76], 101); }),
              Contains(at(76, "101 records do not hold the 102 of the schema")));
  EXPECT_THAT(after([&](Bytes& bytes) { bytes.resize(300); }),
              Contains(at(300, "the file ends in its record list, after 27 of 104 entries")));
  EXPECT_THAT(after([&](Bytes& bytes) { bytes.resize(40); }),
              ElementsAre(at(0, "the file has 40 bytes, fewer than its header")));
  EXPECT_THAT(after([&](Bytes& bytes) { bytes[entryPlace(103)] = 0xFF; }),
              Contains(testing::HasSubstr("record 103 lies at")));
  EXPECT_THAT(after([&](Bytes& bytes) { storeBe16(&bytes[entryPlace(50) + 2], 0); }),
              Contains(testing::HasSubstr("before record 49 at")));
  EXPECT_THAT(after([&](Bytes& bytes) {
                growRecord(bytes, 102, {1, 2});
              }),
              Contains(at(record(103), "data record 0: 2 bytes follow its end marker")));
  EXPECT_THAT(after([&](Bytes& bytes) { growRecord(bytes, 3, Bytes(9, 0)); }),
              Contains(at(record(4), "field record 2: it has 40 bytes; its parts take 31")));
}

TEST_F(Check, SettingsThatPointNowhereAreTold) {
  database.schema.display_order[3] = 4;
  database.schema.sort[1].field = 120;
  database.schema.view_count = 1;
  database.schema.current_view = 7;
  database.schema.views[2].field_order[0] = 9;
  database.schema.encryption_mode = 4;
  database.schema.current_record_index = 500;
  database.schema.fields[5].name.fill('x');
  database.schema.category.fill('x');
  save();
  std::vector<std::string> texts;
  for (const Deviation& deviation : checkFile(file())) texts.push_back(deviation.text);
  EXPECT_THAT(texts,
              testing::UnorderedElementsAre(
                  "the display order does not name every field slot once",
                  "the sort goes by field 120", "the current view 7 does not exist",
                  "the order of view 2 does not name every field slot once",
                  "encryption mode 4 does not exist", "the current record 500 does not exist",
                  "the name of field 5 has no NUL", "the category has no NUL"));
}

}  // namespace
}  // namespace tabelion
