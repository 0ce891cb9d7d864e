// Tests of what begins in a database's record list and ends with its Close.
#pragma once

#include "screens/kit/screen_numbers.h"
#include "screens/records/record_list.h"
#include "support/looks.h"
#include "support/phone_world.h"

namespace tabelion {

class ListTest : public testing::Test {
 protected:
  // Stores the database, plays the script, and reads again what was saved in the end.
  void play() {
    const std::string path = world.store(*database);
    app.preferences.auto_save_on_close = true;
    list().choose({u"Menu", u"Close"});
    world.phone.play([&] { ShowRecordList(app, path); });
    database = world.read(path);
  }
  ScreenScript list() { return world.phone.at(kRecordListScreen); }
  ScreenScript form() { return world.phone.at(kEditRecordScreen); }

  PhoneWorld world;
  Application app{world.platform};
  std::unique_ptr<Database> database;
};

}  // namespace tabelion
