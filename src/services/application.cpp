#include "services/application.h"

#include <random>

#include "query/record_index.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

RandomSource systemRandom() {
  auto generator = std::make_shared<std::mt19937>(std::random_device{}());
  return [generator] { return static_cast<std::uint32_t>((*generator)()); };
}

}  // namespace

Application::Application(Platform& on)
    : platform(on), engine{.files = on.files, .clock = on.clock, .random = systemRandom()} {
  engine.message = [this](const std::string& text) { ShowEngineMessage(*this, text); };
  engine.steps.refresh = [this](Database& database) {
    refreshRecordIndex(database, QuerySettingsOf(*this, database), nullptr,
                       &level().current_record);
    return 1;
  };
  engine.steps.sort_and_rebuild = [this](Database& database) {
    sortAndRecompute(database, QuerySettingsOf(*this, database));
  };
  engine.steps.restore_current_record = [this](Database&, std::uint32_t number) {
    level().current_record = number;
  };
  LeaveLevel(*this);
}

Database& CurrentDatabase(Application& app) {
  return *app.level().session.database;
}

ChangeTarget CurrentTarget(Application& app) {
  return {CurrentDatabase(app), app.level().current_record};
}

bool IsDatabaseOpen(const Application& app) {
  return app.level().session.open;
}

void PrepareFormats(Application& app) {
  const Database& database = CurrentDatabase(app);
  app.level().encoding = EncodingOf(app, database.schema);
  app.level().formats = QuerySettingsOf(app, database).formats;
}

QuerySettings QuerySettingsOf(const Application& app, const Database& database) {
  QuerySettings settings;
  settings.formats = makeFormatSettings(app.preferences.formats, app.platform.locale.info(),
                                        EncodingOf(app, database.schema).isUtf8());
  settings.now = app.platform.clock.local();
  settings.week_starts_monday = app.preferences.week_starts_monday != 0;
  return settings;
}

void LeaveLevel(Application& app) {
  Level& level = app.level();
  level = Level{};
  level.session.database = std::make_unique<Database>();
  initDatabase(*level.session.database, app.engine);
  PrepareFormats(app);
}

}  // namespace tabelion
