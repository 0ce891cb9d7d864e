#include "screens/records/edit_record.h"

#include <gmock/gmock.h>

#include "screens/kit/screen_numbers.h"
#include "screens/records/note_text.h"
#include "screens/records/record_details.h"
#include "screens/records/record_list.h"
#include "security/access_rights.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

enum Slot { kName, kCount, kPrice, kKind, kPaid, kNumber, kRemark, kDay, kHour, kLong };

class EditRecord : public testing::Test {
 protected:
  void SetUp() override {
    database = world.make("Things",
                          {{"Name", FieldType::kText, 12},
                           {"Count", FieldType::kInteger},
                           {"Price", FieldType::kFloat},
                           {"Kind", FieldType::kPopup},
                           {"Paid", FieldType::kCheckBox},
                           {"Number", FieldType::kAutoNumber},
                           {"Remark", FieldType::kNote},
                           {"Day", FieldType::kDate},
                           {"Hour", FieldType::kTime},
                           {"Long", FieldType::kLongText}},
                          {});
    for (const char* text : {"Tool", "Hammer", "Toy"}) {
      PopupItem item;
      item.key[0] = static_cast<std::uint8_t>(text[2]);
      item.key[kItemLevelOffset] = text[0] == 'H' ? 1 : 0;
      item.text = text;
      database->fields[kKind].items.push_back(item);
    }
    world.addRow(*database, {"Saw", "3", "12.50", "Tool", "0", "", "line 1\r\nline 2", "2024-02-29",
                             "13:05:09", "a\nb"});
    world.addRow(*database, {"Kite", "-1", "", "Toy", "1", "", "", "", "", ""});
  }

  // Plays the script on the stored database; closing saves what is changed.
  void play() {
    path = world.store(*database);
    before = world.read(path);
    Application app(world.platform);
    open_app = &app;
    app.preferences.auto_save_on_close = true;
    world.phone.play([&] { ShowRecordList(app, path); });
    after = world.read(path);
  }
  ScreenScript form() { return world.phone.at(kEditRecordScreen); }
  ScreenScript list() { return world.phone.at(kRecordListScreen); }
  void open(int row) { list().row(kRecordList, row).press(Key::kEnter); }
  void close() { list().choose({u"Menu", u"Close"}); }

  // The slots of a record whose bytes are others than before.
  std::vector<int> changedSlots(std::uint32_t record) {
    const UnpackedRecord was = unpackRecord(before->records[record].bytes());
    const UnpackedRecord is = unpackRecord(after->records[record].bytes());
    EXPECT_EQ(was.prefix, is.prefix);
    std::vector<int> slots;
    for (int slot = 0; slot < kFieldSlots; ++slot) {
      if (was.slots[static_cast<std::size_t>(slot)] != is.slots[static_cast<std::size_t>(slot)]) {
        slots.push_back(slot);
      }
    }
    return slots;
  }
  std::string text(std::uint32_t record, int slot) {
    return fieldText(*after, after->records[record].bytes(), slot, isoSettings()).text;
  }

  PhoneWorld world;
  Application* open_app = nullptr;  // while the script plays
  std::unique_ptr<Database> database;
  std::unique_ptr<Database> before;
  std::unique_ptr<Database> after;
  std::string path;
};

TEST_F(EditRecord, ShowsEveryValueAndStoresNothingUnchanged) {
  open(0);
  form()
      .look([](FakeDialog& dialog) {
        const auto shown = [&](int slot) { return dialog.fake(FormValue(slot)).text(); };
        EXPECT_EQ(shown(kName), u"Saw");
        EXPECT_EQ(shown(kCount), u"3");
        EXPECT_EQ(shown(kPrice), u"12.50");
        EXPECT_EQ(shown(kNumber), u"1");
        EXPECT_EQ(shown(kRemark), u"line 1…");
        EXPECT_EQ(shown(kDay), u"2/29/2024");
        EXPECT_EQ(shown(kHour), u"1:05:09PM");
        EXPECT_EQ(shown(kLong), u"a…");
        const FakeControl& kind = dialog.fake(FormValue(kKind));
        EXPECT_EQ(kind.choices,
                  (std::vector<std::u16string>{u"Tool", u"Hammer", u"Toy", u"No Value"}));
        EXPECT_EQ(kind.selection(), 0);
        EXPECT_FALSE(dialog.fake(FormValue(kPaid)).checked());
        EXPECT_EQ(dialog.fake(FormValue(kName)).face.accessible_name, u"Name");
        EXPECT_TRUE(dialog.fake(FormValue(kName)).hasFocus());
        EXPECT_EQ(dialog.content_height, 255);
      })
      .choose({u"Done"});
  close();
  play();
  EXPECT_EQ(changedSlots(0), std::vector<int>{});
  EXPECT_EQ(world.files.replaces, 1);  // only the one that made the file
}

TEST_F(EditRecord, StoresExactlyTheSlotsThatChanged) {
  open(1);
  form().write(FormValue(kName), u"Dragon").choose({u"Done"});
  open(0);
  form()
      .tick(FormValue(kPaid))
      .pick(FormValue(kKind), u"Hammer")
      .write(FormValue(kHour), u"1:05 pm")  // the same minute: its seconds stay
      .write(FormValue(kDay), u"12/31/1931")
      .press(Key::kUp)
      .activate(FormValue(kRemark));
  world.phone.at(kNoteScreen)
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.title, u"Remark");
        EXPECT_EQ(dialog.fake(kNoteEdit).text(), u"line 1\nline 2");
      })
      .type(u"\n3")
      .choose({u"Done"});
  form().press(Key::kPageDown).look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.fake(FormValue(kName)).text(), u"Dragon");
  });
  form().choose({u"Done"});
  close();
  play();
  EXPECT_EQ(changedSlots(1), std::vector<int>{kName});
  EXPECT_EQ(changedSlots(0), (std::vector<int>{kKind, kPaid, kRemark, kDay}));
  EXPECT_EQ(text(0, kKind), "Hammer");
  EXPECT_EQ(text(0, kDay), "1931-12-31");
  const UnpackedRecord record = unpackRecord(after->records[0].bytes());
  EXPECT_EQ(storedText(*record.slots[kRemark]), "line 1\r\nline 2\r\n3");
}

TEST_F(EditRecord, DatesAndTimesShowWhatWasUnderstood) {
  const auto day = [](const std::u16string& text) {
    return [text](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kDay)).text(), text); };
  };
  open(1);
  form()
      .look(day(u"NO DATE"))
      .focus(FormValue(kDay))
      .look(day(u""))
      .focus(FormValue(kHour))
      .look(day(u"NO DATE"))
      .focus(FormValue(kName))
      .type(u"!")
      .choose({u"Done"});
  open(0);
  form()
      .write(FormValue(kDay), u"3/4/06")
      .focus(FormValue(kHour))
      .look(day(u"3/4/1906"))
      .focus(FormValue(kDay))
      .write(FormValue(kDay), u"")
      .choose({u"Done"});
  close();
  play();
  EXPECT_EQ(changedSlots(1), std::vector<int>{kName});
  EXPECT_EQ(text(0, kDay), "NO DATE");
}

// Whichever way the form is left, with the focus still in the box.
TEST_F(EditRecord, NoDateIsStoredThatNobodyTypedOrSaw) {
  const auto typed = [](const std::u16string& text) {
    return [text](FakeDialog& d) {
      EXPECT_EQ(d.fake(FormValue(kDay)).text(), text);
      EXPECT_TRUE(d.fake(FormValue(kDay)).hasFocus());
      EXPECT_TRUE(d.fake(FormValue(kDay)).text_selected);
    };
  };
  const std::u16string title = u"Edit Record";
  const std::u16string refusal = u"\"Day\" is not a date from 1904 to 9999 like 12/31/2025.";
  open(0);
  form().write(FormValue(kDay), u"31.12.1999").choose({u"Done"});
  world.phone.says(refusal, title);
  form().look(typed(u"31.12.1999")).type(u"2/30/2000").press(Key::kBack, 9).type(u"2/30/2000");
  form().press(Key::kPageDown);
  world.phone.says(refusal, title);
  form().look(typed(u"2/30/2000")).type(u"5/6/26").choose({u"Menu", u"New Record"});
  world.phone.asks(u"\"Day\" is understood as 5/6/1926. Store it?", title, MessageAnswer::kNo);
  form().look(typed(u"5/6/26")).type(u"5/6/2026").write(FormValue(kHour), u"17:05");
  form().press(Key::kEnter);
  world.phone.asks(u"\"Hour\" is understood as 5:05:00PM. Store it?", title, MessageAnswer::kYes);
  close();
  play();
  EXPECT_EQ(text(0, kDay), "2026-05-06");
  EXPECT_EQ(text(0, kHour), "17:05:00");
  EXPECT_EQ(after->records.count(), 2u);
}

TEST_F(EditRecord, TypingInABoxThatOneArrivesAtReplacesItsText) {
  database->schema.fields[kName].type = FieldType::kUnused;
  database->schema.fields[kCount].type = FieldType::kUnused;
  open(0);
  form().look([](FakeDialog& d) { EXPECT_FALSE(d.fake(FormValue(kPrice)).text_selected); });
  form().type(u"1").focus(FormValue(kHour)).press(Key::kUp).type(u"12/31/2031").choose({u"Done"});
  close();
  play();
  EXPECT_EQ(text(0, kPrice), "12.501");
  EXPECT_EQ(text(0, kDay), "2031-12-31");
}

TEST_F(EditRecord, LeavingByBackSavesAndCancelDoesNot) {
  open(0);
  form().write(FormValue(kName), u"Axe").focus(FormValue(kPaid)).press(Key::kBack);
  open(1);
  form().write(FormValue(kName), u"Lost").choose({u"Menu", u"Cancel"});
  close();
  play();
  EXPECT_EQ(text(0, kName), "Axe");
  EXPECT_EQ(text(1, kName), "Kite");
}

TEST_F(EditRecord, RefusesWhatAFieldCannotHold) {
  open(0);
  form().write(FormValue(kPrice), u"1.5").type(u".");
  world.phone.says(u"Wrong Float Value Entered.", u"ACCESS DENIED");
  form().type(u"-");
  world.phone.says(u"Wrong Float Value Entered.", u"ACCESS DENIED");
  form()
      .look([](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kPrice)).text(), u"1.5"); })
      .write(FormValue(kName), u"Жa€")  // the code page has no Ж
      .look([](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kName)).text(), u"a€"); })
      .write(FormValue(kHour), u"13:75")
      .choose({u"Done"});
  world.phone.says(u"\"Hour\" is not a time like 5:05:00PM.", u"Edit Record");
  form()
      .look([](FakeDialog& dialog) {
        EXPECT_TRUE(dialog.fake(FormValue(kHour)).hasFocus());
        EXPECT_EQ(dialog.fake(FormValue(kName)).text(), u"a€");  // nothing typed is lost
      })
      .write(FormValue(kHour), u"")
      .write(FormValue(kCount), u"many")
      .choose({u"Done"});
  world.phone.says(u"\"Count\" is not a whole number.", u"Edit Record");
  form().write(FormValue(kCount), u"-7").choose({u"Done"});
  close();
  play();
  EXPECT_EQ(text(0, kName), "a\x80");
  EXPECT_EQ(text(0, kCount), "-7");
  EXPECT_EQ(text(0, kPrice), "1.5");
  EXPECT_EQ(text(0, kHour), "No Time");
}

TEST_F(EditRecord, NumberBoxesGetTheirSignFromTheMenu) {
  const std::vector<std::u16string> change_sign{u"Menu", u"Change Sign"};
  const auto price = [](const std::u16string& text) {
    return [text](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kPrice)).text(), text); };
  };
  const auto refused = [this] {
    world.phone.says(u"Wrong Float Value Entered.", u"ACCESS DENIED");
  };
  open(0);
  form()
      .look([](FakeDialog& d) {
        EXPECT_THAT(d.menuTexts({u"Menu"}), testing::Not(testing::Contains(u"Change Sign")));
      })
      .focus(FormValue(kKind))
      .press(Key::kUp)  // the whole price is selected: typing replaces it
      .type(u"-");
  refused();
  form().look(price(u"12.50")).choose(change_sign).look(price(u"-12.50")).type(u"1");
  form().look(price(u"-12.501")).type(u"-");
  refused();
  form().choose({u"Done"});
  open(1);
  form().focus(FormValue(kPrice)).choose(change_sign).choose({u"Done"});  // a sign alone
  world.phone.says(u"\"Price\" is not a number.", u"Edit Record");
  form().type(u"3").choose(change_sign).look(price(u"-3")).choose({u"Done"});
  close();
  play();
  EXPECT_EQ(text(0, kPrice), "-12.501");
  EXPECT_EQ(text(1, kPrice), "-3");
}

TEST_F(EditRecord, DetailsTellWhenTheRecordWasMadeAndChanged) {
  setAreaText(database->schema.author, "Ada");
  ASSERT_TRUE(database->records.replace(1, Bytes{0, 0xFF, 0xFF}));  // without a stamp
  const auto details = [this](const std::u16string& created, const std::u16string& modified) {
    world.phone.at(kRecordDetailsScreen)
        .look([=](FakeDialog& d) {
          EXPECT_EQ(d.fake(DetailValue(kDetailCreatedBy)).text(), u"Ada");
          EXPECT_EQ(d.fake(DetailValue(kDetailCreated)).text(), created);
          EXPECT_EQ(d.fake(DetailValue(kDetailModified)).text(), modified);
        })
        .press(Key::kBack);
  };
  const std::vector<std::u16string> entry{u"Menu", u"Record Details"};
  open(0);
  form().choose(entry);
  details(u"2/29/2024  1:00:00PM", u"Not recorded");
  form()
      .look([this](FakeDialog&) {
        CurrentDatabase(*open_app).schema.modification_stamp_option = 1;
        world.clock.local_now.month = 4;
      })
      .write(FormValue(kName), u"Axe")
      .press(Key::kPageUp)
      .choose(entry);
  details(u"2/29/2024  1:00:00PM", u"4/29/2024  1:00:00PM");
  form().press(Key::kPageDown).choose(entry);
  details(u"Not recorded", u"Not recorded");
  form().choose({u"Menu", u"Cancel"});
  close();
  play();
}

TEST_F(EditRecord, NewRecordsGetNumberStampAndDefaults) {
  setFieldDefaultOption(database->schema.fields[kDay], 2);
  setFieldDefaultOption(database->schema.fields[kHour], 2);
  database->schema.modification_stamp_option = 1;
  list().choose({u"New Record"});
  form().press(Key::kUp).focus(FormValue(kPaid)).press(Key::kBack);  // untouched: nothing stored
  list().choose({u"New Record"});
  form().type(u"Lamp").choose({u"Menu", u"New Record"});
  form()
      .look([](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kName)).text(), u""); })
      .type(u"Rug")
      .choose({u"Done"});
  list().look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.fake(kRecordList).rowCount(), 4);
    EXPECT_EQ(dialog.fake(kRecordList).selectedRow(), 3);
  });
  close();
  play();
  ASSERT_EQ(after->records.count(), 4u);
  EXPECT_EQ(text(2, kName), "Lamp");
  EXPECT_EQ(text(2, kNumber), "3");
  EXPECT_EQ(text(3, kNumber), "4");
  EXPECT_EQ(text(3, kDay), "2024-02-29");
  EXPECT_EQ(text(3, kHour), "13:00:00");
  ASSERT_TRUE(recordStamp(after->records[3].bytes()).has_value());
  EXPECT_EQ(after->schema.current_record_index, 3 + kSchemaRecords);
}

TEST_F(EditRecord, ChangedRecordsGetANewStampTimeWhenTheDatabaseWantsIt) {
  database->schema.modification_stamp_option = 1;
  world.clock.local_now.year = 2025;
  open(1);
  form().write(FormValue(kName), u"Kites").choose({u"Done"});
  close();
  play();
  const HeadBlock stamp = *recordStamp(after->records[1].bytes());
  EXPECT_GT(stampModified(stamp), stampCreated(stamp));
  EXPECT_EQ(*recordStamp(after->records[0].bytes()), *recordStamp(before->records[0].bytes()));
}

TEST_F(EditRecord, MovesThroughTheRecordsAndStaysAtTheEnds) {
  const auto name = [](const std::u16string& text) {
    return [text](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kName)).text(), text); };
  };
  open(0);
  form()
      .press(Key::kPageUp)
      .look(name(u"Saw"))
      .choose({u"Menu", u"Go To", u"Last"})
      .look(name(u"Kite"))
      .press(Key::kPageDown)
      .look(name(u"Kite"))
      .write(FormValue(kName), u"Moved")
      .focus(FormValue(kRemark))
      .press(Key::kPageUp)
      .look(name(u"Saw"))
      .look([](FakeDialog& d) { EXPECT_TRUE(d.fake(FormValue(kRemark)).hasFocus()); })
      .choose({u"Menu", u"New Record"})
      .look([](FakeDialog& d) { EXPECT_TRUE(d.fake(FormValue(kName)).hasFocus()); })
      .choose({u"Menu", u"Cancel"});
  close();
  play();
  EXPECT_EQ(text(1, kName), "Moved");
}

TEST_F(EditRecord, DeletesAfterAQuestion) {
  const std::u16string question = u"Are you sure you want to delete this record?";
  open(1);
  form().choose({u"Menu", u"Delete Record"});
  world.phone.asks(question, u"Confirm Delete", MessageAnswer::kNo);
  form().choose({u"Menu", u"Delete Record"});
  world.phone.asks(question, u"Confirm Delete", MessageAnswer::kYes);
  list().look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.fake(kRecordList).rowCount(), 1);
    EXPECT_EQ(dialog.fake(kRecordList).selectedRow(), 0);
  });
  list().choose({u"New Record"});
  form().type(u"x").choose({u"Menu", u"Delete Record"});  // was never stored
  close();
  play();
  EXPECT_EQ(after->records.count(), 1u);
  EXPECT_EQ(text(0, kName), "Saw");
}

TEST_F(EditRecord, WidthChangesKeepWhatIsTyped) {
  database->schema.label_width_adjustment = 76;
  open(0);
  form()
      .type(u"!")
      .choose({u"Menu", u"Increase Width"})
      .choose({u"Menu", u"Increase Width"})
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(FormValue(kName)).place().width, 158 * 232 / 160);
        EXPECT_EQ(dialog.fake(FormValue(kName)).text(), u"Saw!");
      })
      .choose({u"Menu", u"Decrease Width"})
      .choose({u"Menu", u"Decrease Width"})
      .choose({u"Menu", u"Decrease Width"})
      .choose({u"Menu", u"Cancel"});
  const auto adjustment = [this](int expected) {
    return [=, this](FakeDialog&) {
      EXPECT_EQ(CurrentDatabase(*open_app).schema.label_width_adjustment, expected);
    };
  };
  list()
      .look(adjustment(72))
      .choose({u"Menu", u"Undo Change of width"})
      .look(adjustment(76))
      .press(Key::kRedo)
      .look(adjustment(72));
  close();
  play();
  EXPECT_EQ(after->schema.label_width_adjustment, 72);
  EXPECT_EQ(text(0, kName), "Saw");
}

TEST_F(EditRecord, RecordsThatMayOnlyBeLookedAtTakeNoInput) {
  database->schema.security_word = static_cast<std::uint32_t>(kCodeRestricted)
                                   << (2 * static_cast<int>(Operation::kChange));
  open(0);
  form()
      .look([](FakeDialog& d) {
        EXPECT_EQ(d.title, u"View Record");
        EXPECT_TRUE(d.fake(FormValue(kName)).hasFocus());  // so that keys walk through the record
        EXPECT_TRUE(d.fake(FormValue(kPrice)).face.read_only);
        EXPECT_FALSE(d.fake(FormValue(kPaid)).face.enabled);
      })
      .type(u"x")
      .look([](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kName)).text(), u"Saw"); })
      .activate(FormValue(kRemark));
  world.phone.at(kNoteScreen).type(u"x").choose({u"Done"});
  form().choose({u"Done"});
  list().choose({u"New Record"});  // adding is another right
  form()
      .look([](FakeDialog& d) { EXPECT_EQ(d.title, u"Edit Record"); })
      .type(u"New")
      .choose({u"Done"});
  close();
  play();
  EXPECT_EQ(changedSlots(0), std::vector<int>{});
  EXPECT_EQ(text(2, kName), "New");
}

TEST_F(EditRecord, EncryptedValuesAreShownAsXAndKept) {
  database->schema.fields[kName].encrypt_flag = 1;
  world.markEnciphered(*database, 0);
  open(0);
  form()
      .look([](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kName)).text(), u"XXXX"); })
      .write(FormValue(kName), u"mine")
      .write(FormValue(kCount), u"4")
      .choose({u"Done"});
  close();
  play();
  EXPECT_EQ(changedSlots(0), std::vector<int>{kCount});
}

TEST_F(EditRecord, RecordThatCannotBeStoredStaysInTheForm) {
  const std::u16string full =
      u"This database holds 65,000 records, which is the most that it can. Delete some before you "
      u"add another.";
  list().choose({u"New Record"});
  form().type(u"Late").look([&](FakeDialog&) {
    // Meanwhile the database fills up.
    RecordStore& records = CurrentDatabase(*open_app).records;
    const Bytes record(records[0].bytes().begin(), records[0].bytes().end());
    while (!records.isFull()) records.insert(records.count(), record, {});
  });
  form().choose({u"Done"});
  world.phone.says(full, u"New Record");
  form()
      .look([](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kName)).text(), u"Late"); })
      .look([&](FakeDialog&) { CurrentDatabase(*open_app).records.remove(64999); })
      .choose({u"Done"});
  list().choose({u"New Record"});
  world.phone.says(full, u"New Record");
  close();
  play();
  ASSERT_EQ(after->records.count(), 65000u);
  EXPECT_EQ(text(64999, kName), "Late");
}

}  // namespace
}  // namespace tabelion
