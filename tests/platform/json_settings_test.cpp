#include "platform/std/json_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "support/temporary_folder.h"

namespace tabelion {
namespace {

using testing::ElementsAre;

constexpr auto kUser = SettingsRoot::kUser;
constexpr auto kMachine = SettingsRoot::kMachine;

class SettingsTest : public testing::Test {
 protected:
  JsonSettings make() {
    return JsonSettings({folder / "user",
                         {folder / "m1", folder / "m2"},
                         [this](const std::string&) { ++warnings; }});
  }
  void putFile(const std::string& place, const std::string& text) {
    std::filesystem::create_directories(folder / (place + "/tabelion"));
    folder.write(place + "/tabelion/settings.json", text);
  }
  std::string file() { return folder.read("user/tabelion/settings.json"); }

  TemporaryFolder folder;
  int warnings = 0;
  const std::string key = "Software\\Tabelion3";
};

TEST_F(SettingsTest, ValuesComeBackAsTheyWere) {
  const std::vector<std::uint8_t> bytes{0, 255, 16, '\\'};
  const std::string not_utf8 = "caf\xe9";
  {
    JsonSettings settings = make();
    EXPECT_FALSE(settings.readText(kUser, key, "AutoSaveSeconds"));
    ASSERT_TRUE(settings.writeText(key, "AutoSaveSeconds", "60").ok());
    ASSERT_TRUE(settings.writeTexts(key, {{"Odd", not_utf8}, {"Even", "2"}}).ok());
    ASSERT_TRUE(settings.writeText(key, "Alarms", "a value named as a key").ok());
    ASSERT_TRUE(settings.writeBinary(key + "\\Alarms\\17", "binary", bytes).ok());
    ASSERT_TRUE(settings.writeText(key + "\\Alarms\\2", "RecNum", "").ok());
    ASSERT_TRUE(settings.writeText(key + "\\Alarms\\17\\deep", "x", "y").ok());
  }
  JsonSettings settings = make();
  EXPECT_EQ(settings.readText(kUser, key, "AutoSaveSeconds"), "60");
  EXPECT_EQ(settings.readText(kUser, key, "Odd"), not_utf8);
  EXPECT_EQ(settings.readText(kUser, key, "Even"), "2");
  EXPECT_EQ(settings.readText(kUser, key + "\\Alarms\\2", "RecNum"), "");
  EXPECT_EQ(settings.readBinary(key + "\\Alarms\\17", "binary"), bytes);
  EXPECT_THAT(settings.subKeys(key), ElementsAre("Alarms"));
  EXPECT_THAT(settings.subKeys(key + "\\Alarms"), ElementsAre("17", "2"));
  ASSERT_TRUE(settings.deleteKey(key + "\\Alarms\\17").ok());
  EXPECT_THAT(settings.subKeys(key + "\\Alarms"), ElementsAre("2"));
  EXPECT_EQ(settings.readText(kUser, key, "Alarms"), "a value named as a key");
}

TEST_F(SettingsTest, ProgramsSeeEachOthersWrites) {
  JsonSettings one = make();
  JsonSettings two = make();
  for (const char* const value : {"1", "2", "3"}) {
    ASSERT_TRUE(one.writeText(key, "a", value).ok());
    EXPECT_EQ(two.readText(kUser, key, "a"), value);
  }
  std::vector<pid_t> children;
  for (int i = 0; i < 4; ++i) {
    const pid_t child = ::fork();
    if (child == 0) {
      JsonSettings mine = make();
      bool ok = true;
      for (int n = 0; n < 10; ++n) {
        ok = ok && mine.writeText(key + "\\" + std::to_string(i), std::to_string(n), "v").ok();
      }
      ::_exit(ok ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  for (int i = 0; i < 40; ++i) {
    EXPECT_EQ(two.readText(kUser, key + "\\" + std::to_string(i / 10), std::to_string(i % 10)),
              "v");
  }
}

TEST_F(SettingsTest, MachineValuesComeFromTheFirstFolderThatHasThem) {
  putFile("m1", R"({"K": {"a": "first"}})");
  putFile("m2", R"({"K": {"a": "second", "b": 7, "c": true}})");
  JsonSettings settings = make();
  EXPECT_EQ(settings.readText(kMachine, "K", "a"), "first");
  EXPECT_EQ(settings.readText(kMachine, "K", "b"), "7");
  EXPECT_EQ(settings.readText(kMachine, "K", "c"), "1");
  EXPECT_FALSE(settings.readText(kUser, "K", "a"));
}

TEST_F(SettingsTest, DamagedFileIsSetAsideAndNeverLost) {
  // The last is nested far deeper than a program's calls may go.
  const std::string nested = "{\"K\": {\"a\": " + std::string(1'000'000, '[');
  for (const std::string& damage :
       {std::string("{\"K\": {\"a\": \"1\""), std::string("[1]"), std::string("{\"K\": 3}"),
        std::string("\xff\xfe"), nested + std::string(1'000'000, ']') + "}}"}) {
    putFile("user", damage);
    JsonSettings settings = make();
    EXPECT_FALSE(settings.readText(kUser, "K", "a"));
    EXPECT_TRUE(settings.subKeys("K").empty());
    EXPECT_TRUE(file() == damage);
    EXPECT_EQ(warnings, 1);
    warnings = 0;
    ASSERT_TRUE(settings.writeText("K", "a", "2").ok());
    EXPECT_EQ(settings.readText(kUser, "K", "a"), "2");
    EXPECT_EQ(warnings, 0);
  }
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(folder / "user/tabelion/settings.json").permissions(),
            perms::owner_read | perms::owner_write);
  EXPECT_EQ(folder.read("user/tabelion/settings.json.damaged"), "{\"K\": {\"a\": \"1\"");
  EXPECT_EQ(folder.read("user/tabelion/settings.json.damaged4"), "\xff\xfe");
}

TEST_F(SettingsTest, SameValueWritesNothing) {
  JsonSettings settings = make();
  ASSERT_TRUE(settings.writeText(key, "a", "1").ok());
  const auto written = std::filesystem::last_write_time(folder / "user/tabelion/settings.json");
  ASSERT_TRUE(settings.writeText(key, "a", "1").ok());
  EXPECT_EQ(std::filesystem::last_write_time(folder / "user/tabelion/settings.json"), written);
}

}  // namespace
}  // namespace tabelion
