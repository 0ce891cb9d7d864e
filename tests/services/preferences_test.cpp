#include "services/preferences.h"

#include "support/phone_world.h"

namespace tabelion {
namespace {

TEST(Preferences, ReadWhatIsStoredAndKeepTheRest) {
  PhoneWorld world;
  Preferences preferences;
  LoadPreferences(world.platform, preferences);
  EXPECT_FALSE(preferences.auto_save_on_close);
  EXPECT_EQ(preferences.auto_save_period_ms, 0);
  EXPECT_FALSE(preferences.autoCloses());

  world.set("AutoSave", "1");
  world.set("AutoSaveSeconds", "60");
  world.set("AutoCloseOption", "1");
  world.set("AutoCloseMinutes", "300000");
  LoadPreferences(world.platform, preferences);
  EXPECT_TRUE(preferences.auto_save_on_close);
  EXPECT_EQ(preferences.auto_save_period_ms, 60000);
  EXPECT_TRUE(preferences.autoCloses());
  EXPECT_EQ(preferences.auto_close_period_ms, 300000);

  // Five digits do not fit what is read, so the value stays; no number is 0, which is off.
  world.set("AutoSaveSeconds", "12345");
  world.set("AutoCloseMinutes", "soon");
  LoadPreferences(world.platform, preferences);
  EXPECT_EQ(preferences.auto_save_period_ms, 60000);
  EXPECT_FALSE(preferences.autoCloses());
}

TEST(Preferences, FirstStartStoresTheFormatsOfTheLocale) {
  PhoneWorld world;
  world.locale.value.date_separator = ".";
  world.locale.value.short_date_pattern = "dd.MM.yyyy";
  world.locale.value.time_pattern = "HH:mm:ss";
  world.locale.value.decimal_comma = true;
  world.locale.value.is_system_locale = true;
  Preferences preferences;
  LoadPreferences(world.platform, preferences);
  EXPECT_EQ(preferences.formats, (FormatChoices{2, 1, true}));

  // From then on they stay, whatever the locale becomes.
  world.locale.value = LocaleInfo{};
  LoadPreferences(world.platform, preferences);
  EXPECT_EQ(preferences.formats, (FormatChoices{2, 1, true}));
  world.set("DateFormat", "6");
  LoadPreferences(world.platform, preferences);
  EXPECT_EQ(preferences.formats.date_format, 6);
}

TEST(Preferences, SavingWritesTheFourValuesOfAutoClose) {
  PhoneWorld world;
  Preferences preferences;
  preferences.auto_save_on_close = true;
  preferences.auto_close_enabled = true;
  preferences.auto_close_period_ms = 60000;
  preferences.auto_save_period_ms = 30000;
  SavePreferences(world.platform, preferences);
  EXPECT_EQ(world.setting("AutoSave"), "1");
  EXPECT_EQ(world.setting("AutoEncryption"), "0");
  EXPECT_EQ(world.setting("AutoCloseOption"), "1");
  EXPECT_EQ(world.setting("AutoCloseMinutes"), "60000");
  EXPECT_EQ(world.settings.user.size(), 4u);
}

TEST(Preferences, WeekStartIsStoredWhenMissing) {
  PhoneWorld world;
  Preferences preferences;
  preferences.week_starts_monday = 7;
  LoadWeekStart(world.platform, preferences);
  EXPECT_EQ(world.setting("WeekStart"), "1");
  world.set("WeekStart", "0");
  LoadWeekStart(world.platform, preferences);
  EXPECT_EQ(preferences.week_starts_monday, 0);
  preferences.week_starts_monday = 1;
  world.set("WeekStart", "2");
  LoadWeekStart(world.platform, preferences);
  EXPECT_EQ(preferences.week_starts_monday, 0) << "what is no choice is Sunday";
}

}  // namespace
}  // namespace tabelion
