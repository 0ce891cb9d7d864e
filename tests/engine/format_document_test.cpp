// The example in docs/file-format.md: every line of its dump is checked against a file that is made
// here. To see the bytes after a deliberate change, run with TABELION_SHOW_EXAMPLE=1.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "database_fixture.h"

namespace tabelion {
namespace {

class FormatDocument : public DatabaseFixture {
 protected:
  // Films: a title, a pop-up of two items, a check box; one film, seen on disc.
  void makeExample() {
    clock.utc_now = {.year = 2026, .month = 11, .day = 21, .hour = 8, .minute = 30};
    clock.local_now = {.year = 2026, .month = 11, .day = 21, .hour = 9, .minute = 30};
    engine.random = [] { return 0x1234u; };
    initHeader("Films", database.header);
    addField(0, FieldType::kText, "Title");
    addField(1, FieldType::kPopup, "On");
    addField(2, FieldType::kCheckBox, "Seen");
    for (const char* text : {"Tape", "Disc"}) {
      PopupItem item;
      item.key[0] = static_cast<std::uint8_t>(text[0]);
      item.text = text;
      database.fields[1].items.push_back(item);
    }
    UnpackedRecord record = newRecord(database.schema);
    record.slots[0] = Bytes{'T', 'h', 'e', ' ', 'K', 'e', 'y', 0};
    (*record.slots[1])[0] = 'D';
    (*record.slots[2])[0] = 1;
    Bytes packed;
    ASSERT_TRUE(packRecord(record, packed));
    ASSERT_EQ(appendRecord(database, engine, packed, true), 0u);
    save();
  }
};

TEST_F(FormatDocument, HexDumpIsTrue) {
  makeExample();
  const Bytes bytes = file();
  if (std::getenv("TABELION_SHOW_EXAMPLE")) {
    for (std::size_t i = 0; i < bytes.size(); i += 16) {
      std::printf("%05zx:", i);
      for (std::size_t j = i; j < std::min(i + 16, bytes.size()); ++j)
        std::printf(" %02x", bytes[j]);
      std::printf("\n");
    }
  }
  std::ifstream document(TABELION_SOURCE_DIR "/docs/file-format.md");
  ASSERT_TRUE(document);
  // A line of the dump: offset, colon, bytes, two spaces, what they are.
  int checked = 0;
  for (std::string line; std::getline(document, line);) {
    if (line.size() < 10 || line.substr(0, 4) != "    " || line[9] != ':') continue;
    const std::size_t offset = std::stoul(line.substr(4, 5), nullptr, 16);
    std::istringstream words(line.substr(10, line.find("  ", 11) - 10));
    std::size_t at = offset;
    for (std::string byte; words >> byte; ++at) {
      ASSERT_LT(at, bytes.size()) << line;
      EXPECT_EQ(std::stoul(byte, nullptr, 16), bytes[at]) << line;
    }
    ++checked;
  }
  EXPECT_GT(checked, 20);
}

}  // namespace
}  // namespace tabelion
