#include "screens/records/edit_record.h"

#include "screens/records/note_text.h"
#include "screens/records/record_details.h"
#include "screens/records/record_screens.h"
#include "security/access_rights.h"

namespace tabelion {
namespace {

enum Slot { kName, kCount, kPrice, kKind, kPaid, kNumber, kRemark, kDay, kHour, kLong };

class EditRecord : public RecordScreens {
 protected:
  void SetUp() override {
    app.preferences.auto_save_on_close = true;
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
};

TEST_F(EditRecord, ShowsEveryValueAndStoresNothingUnchanged) {
  open(0);
  const std::pair<int, std::u16string> values[] = {
      {kName, u"Saw"},       {kCount, u"3"},       {kPrice, u"12.50"},    {kNumber, u"1"},
      {kRemark, u"line 1…"}, {kDay, u"2/29/2024"}, {kHour, u"1:05:09PM"}, {kLong, u"a…"}};
  for (const auto& [slot, value] : values) form().look(shows(slot, value));
  form()
      .look([](FakeDialog& dialog) {
        const FakeControl& kind = dialog.fake(FormValue(kKind));
        EXPECT_EQ(kind.choices,
                  (std::vector<std::u16string>{u"Tool", u"Hammer", u"Toy", u"No Value"}));
        EXPECT_EQ(kind.selection(), 0);
        EXPECT_FALSE(dialog.fake(FormValue(kPaid)).checked());
        EXPECT_EQ(dialog.fake(FormValue(kName)).face.accessible_name, u"Name");
      })
      .look(standsAt(kName))
      .choose({u"Done"});
  closeAndRun();
  EXPECT_EQ(changedSlots(0), std::vector<int>{});
  EXPECT_EQ(world.files.replaces, 1);  // only the one that made the file
}

TEST_F(EditRecord, StoresExactlyTheSlotsThatChanged) {
  change(1, kName, u"Dragon");
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
  form().press(Key::kPageDown).look(shows(kName, u"Dragon")).choose({u"Done"});
  closeAndRun();
  EXPECT_EQ(changedSlots(1), std::vector<int>{kName});
  EXPECT_EQ(changedSlots(0), (std::vector<int>{kKind, kPaid, kRemark, kDay}));
  EXPECT_EQ(text(0, kKind), "Hammer");
  EXPECT_EQ(text(0, kDay), "1931-12-31");
  const UnpackedRecord record = unpackRecord(after->records[0].bytes());
  EXPECT_EQ(storedText(*record.slots[kRemark]), "line 1\r\nline 2\r\n3");
}

TEST_F(EditRecord, DatesAndTimesShowWhatWasUnderstood) {
  open(1);
  form().look(shows(kDay, u"NO DATE")).focus(FormValue(kDay)).look(shows(kDay, u""));
  form().focus(FormValue(kHour)).look(shows(kDay, u"NO DATE"));
  form().focus(FormValue(kName)).type(u"!").choose({u"Done"});
  open(0);
  form().write(FormValue(kDay), u"3/4/06").focus(FormValue(kHour)).look(shows(kDay, u"3/4/1906"));
  form().write(FormValue(kDay), u"").choose({u"Done"});
  closeAndRun();
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
  closeAndRun();
  EXPECT_EQ(text(0, kDay), "2026-05-06");
  EXPECT_EQ(text(0, kHour), "17:05:00");
  EXPECT_EQ(after->records.count(), 2u);
}

TEST_F(EditRecord, TypingInABoxThatOneArrivesAtReplacesItsText) {
  database->schema.fields[kName].type = FieldType::kUnused;
  database->schema.fields[kCount].type = FieldType::kUnused;
  open(0);
  form().type(u"1").focus(FormValue(kHour)).press(Key::kUp).type(u"12/31/2031").choose({u"Done"});
  closeAndRun();
  EXPECT_EQ(text(0, kPrice), "12.501");
  EXPECT_EQ(text(0, kDay), "2031-12-31");
}

TEST_F(EditRecord, LeavingByBackSavesAndCancelDoesNot) {
  open(0);
  form().write(FormValue(kName), u"Axe").focus(FormValue(kPaid)).press(Key::kBack);
  open(1);
  form().write(FormValue(kName), u"Lost").choose({u"Menu", u"Cancel"});
  closeAndRun();
  EXPECT_EQ(text(0, kName), "Axe");
  EXPECT_EQ(text(1, kName), "Kite");
}

TEST_F(EditRecord, RefusesWhatAFieldCannotHold) {
  open(0);
  form().write(FormValue(kPrice), u"1.5").type(u".");
  world.phone.says(u"Wrong Float Value Entered.", u"ACCESS DENIED");
  form().look(shows(kPrice, u"1.5"));
  form().write(FormValue(kName), u"Жa€").look(shows(kName, u"a€"));  // the code page has no Ж
  form().write(FormValue(kHour), u"13:75").choose({u"Done"});
  world.phone.says(u"\"Hour\" is not a time like 5:05:00PM.", u"Edit Record");
  form().look(standsAt(kHour)).look(shows(kName, u"a€"));  // nothing typed is lost
  form().write(FormValue(kHour), u"").write(FormValue(kCount), u"many").choose({u"Done"});
  world.phone.says(u"\"Count\" is not a whole number.", u"Edit Record");
  form().write(FormValue(kCount), u"-7").choose({u"Done"});
  closeAndRun();
  EXPECT_EQ(text(0, kName), "a\x80");
  EXPECT_EQ(text(0, kCount), "-7");
  EXPECT_EQ(text(0, kPrice), "1.5");
  EXPECT_EQ(text(0, kHour), "No Time");
}

TEST_F(EditRecord, NumberBoxesGetTheirSignFromTheMenu) {
  const std::vector<std::u16string> change_sign{u"Menu", u"Change Sign"};
  open(0);
  form()
      .look([](FakeDialog& d) {
        EXPECT_THAT(d.menuTexts({u"Menu"}), testing::Not(testing::Contains(u"Change Sign")));
      })
      .focus(FormValue(kKind))
      .press(Key::kUp)  // the whole price is selected: typing replaces it
      .type(u"-");
  world.phone.says(u"Wrong Float Value Entered.", u"ACCESS DENIED");
  form().look(shows(kPrice, u"12.50")).choose(change_sign).look(shows(kPrice, u"-12.50"));
  form().type(u"1").look(shows(kPrice, u"-12.501")).type(u"-");
  world.phone.says(u"Wrong Float Value Entered.", u"ACCESS DENIED");
  form().choose({u"Done"});
  open(1);
  form().focus(FormValue(kPrice)).choose(change_sign).choose({u"Done"});  // a sign alone
  world.phone.says(u"\"Price\" is not a number.", u"Edit Record");
  form().type(u"3").choose(change_sign).look(shows(kPrice, u"-3")).choose({u"Done"});
  closeAndRun();
  EXPECT_EQ(text(0, kPrice), "-12.501");
  EXPECT_EQ(text(1, kPrice), "-3");
}

TEST_F(EditRecord, DetailsTellWhenTheRecordWasMadeAndChanged) {
  setAreaText(database->schema.author, "Ada");
  ASSERT_TRUE(database->records.replace(1, Bytes{0, 0xFF, 0xFF}));  // without a stamp
  const auto details = [this](const std::u16string& created, const std::u16string& modified) {
    form().choose({u"Menu", u"Record Details"});
    world.phone.at(kRecordDetailsScreen)
        .look([=](FakeDialog& d) {
          EXPECT_EQ(d.fake(DetailValue(kDetailCreatedBy)).text(), u"Ada");
          EXPECT_EQ(d.fake(DetailValue(kDetailCreated)).text(), created);
          EXPECT_EQ(d.fake(DetailValue(kDetailModified)).text(), modified);
        })
        .press(Key::kBack);
  };
  open(0);
  details(u"2/29/2024  1:00:00PM", u"Not recorded");
  form()
      .look([this](FakeDialog&) {
        CurrentDatabase(app).schema.modification_stamp_option = 1;
        world.clock.local_now.month = 4;
      })
      .write(FormValue(kName), u"Axe")
      .press(Key::kPageUp);
  details(u"2/29/2024  1:00:00PM", u"4/29/2024  1:00:00PM");
  form().press(Key::kPageDown);
  details(u"Not recorded", u"Not recorded");
  form().choose({u"Menu", u"Cancel"});
  closeAndRun();
}

TEST_F(EditRecord, NewRecordsGetNumberStampAndDefaults) {
  setFieldDefaultOption(database->schema.fields[kDay], 2);
  setFieldDefaultOption(database->schema.fields[kHour], 2);
  database->schema.modification_stamp_option = 1;
  list().choose({u"New Record"});
  form().press(Key::kUp).focus(FormValue(kPaid)).press(Key::kBack);  // untouched: nothing stored
  list().choose({u"New Record"});
  form().type(u"Lamp").choose({u"Menu", u"New Record"});
  form().look(shows(kName, u"")).type(u"Rug").choose({u"Done"});
  list().look(hasRows(4)).look(selects(3));
  closeAndRun();
  ASSERT_EQ(after->records.count(), 4u);
  EXPECT_EQ(text(2, kName), "Lamp");
  EXPECT_EQ(text(2, kNumber), "3");
  EXPECT_EQ(text(3, kNumber), "4");
  EXPECT_EQ(text(3, kDay), "2024-02-29");
  EXPECT_EQ(text(3, kHour), "13:00:00");
  ASSERT_TRUE(recordStamp(after->records[3].bytes()).has_value());
  EXPECT_EQ(after->schema.current_record_index, 3 + kSchemaRecords);
  EXPECT_EQ(*recordStamp(after->records[0].bytes()), *recordStamp(before->records[0].bytes()));
}

TEST_F(EditRecord, MovesThroughTheRecordsAndStaysAtTheEnds) {
  open(0);
  form().press(Key::kPageUp).look(shows(kName, u"Saw"));
  form().choose({u"Menu", u"Go To", u"Last"}).look(shows(kName, u"Kite"));
  form().press(Key::kPageDown).look(shows(kName, u"Kite")).write(FormValue(kName), u"Moved");
  form().focus(FormValue(kRemark)).press(Key::kPageUp).look(shows(kName, u"Saw"));
  form().look(standsAt(kRemark)).choose({u"Menu", u"New Record"}).look(standsAt(kName));
  form().choose({u"Menu", u"Cancel"});
  closeAndRun();
  EXPECT_EQ(text(1, kName), "Moved");
}

TEST_F(EditRecord, DeletesAfterAQuestion) {
  open(1);
  for (const MessageAnswer answer : {MessageAnswer::kNo, MessageAnswer::kYes}) {
    form().choose({u"Menu", u"Delete Record"});
    world.phone.asks(u"Are you sure you want to delete this record?", u"Confirm Delete", answer);
  }
  list().look(hasRows(1)).look(selects(0)).choose({u"New Record"});
  form().type(u"x").choose({u"Menu", u"Delete Record"});  // was never stored
  closeAndRun();
  EXPECT_EQ(after->records.count(), 1u);
  EXPECT_EQ(text(0, kName), "Saw");
}

TEST_F(EditRecord, WidthChangesKeepWhatIsTyped) {
  database->schema.label_width_adjustment = 76;
  const std::vector<std::u16string> wider{u"Menu", u"Increase Width"};
  const std::vector<std::u16string> narrower{u"Menu", u"Decrease Width"};
  open(0);
  form().type(u"!").choose(wider).choose(wider).look(shows(kName, u"Saw!"));  // 78 is the most
  form().choose(narrower).choose(narrower).choose(narrower).choose({u"Menu", u"Cancel"});
  const auto adjustment = [this](int expected) {
    return [=, this](FakeDialog&) {
      EXPECT_EQ(CurrentDatabase(app).schema.label_width_adjustment, expected);
    };
  };
  list().look(adjustment(72)).choose({u"Menu", u"Undo Change of width"}).look(adjustment(76));
  list().press(Key::kRedo);
  closeAndRun();
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
        EXPECT_TRUE(d.fake(FormValue(kPrice)).face.read_only);
        EXPECT_FALSE(d.fake(FormValue(kPaid)).face.enabled);
      })
      .look(standsAt(kName))  // so that keys walk through the record
      .type(u"x")
      .look(shows(kName, u"Saw"))
      .activate(FormValue(kRemark));
  world.phone.at(kNoteScreen).type(u"x").choose({u"Done"});
  form().choose({u"Done"});
  list().choose({u"New Record"});  // adding is another right
  form().look([](FakeDialog& d) { EXPECT_EQ(d.title, u"Edit Record"); });
  form().type(u"New").choose({u"Done"});
  closeAndRun();
  EXPECT_EQ(changedSlots(0), std::vector<int>{});
  EXPECT_EQ(text(2, kName), "New");
}

TEST_F(EditRecord, EncryptedValuesAreShownAsXAndKept) {
  database->schema.fields[kName].encrypt_flag = 1;
  world.markEnciphered(*database, 0);
  open(0);
  form().look(shows(kName, u"XXXX")).look([](FakeDialog& d) {  // this database wants none
    EXPECT_THAT(d.menuTexts({u"Menu"}), testing::Not(testing::Contains(u"Encrypt Record")));
  });
  form().write(FormValue(kName), u"mine");
  form().write(FormValue(kCount), u"4").choose({u"Done"});
  closeAndRun();
  EXPECT_EQ(changedSlots(0), std::vector<int>{kCount});
}

TEST_F(EditRecord, RecordThatCannotBeStoredStaysInTheForm) {
  const std::u16string full =
      u"This database holds 65,000 records, which is the most that it can. Delete some before you "
      u"add another.";
  list().choose({u"New Record"});
  form().type(u"Late").look([&](FakeDialog&) {
    // Meanwhile the database fills up.
    RecordStore& records = CurrentDatabase(app).records;
    const Bytes record(records[0].bytes().begin(), records[0].bytes().end());
    while (!records.isFull()) records.insert(records.count(), record, {});
  });
  form().choose({u"Done"});
  world.phone.says(full, u"New Record");
  form()
      .look(shows(kName, u"Late"))
      .look([&](FakeDialog&) { CurrentDatabase(app).records.remove(64999); })
      .choose({u"Done"});
  list().choose({u"New Record"});
  world.phone.says(full, u"New Record");
  closeAndRun();
  ASSERT_EQ(after->records.count(), 65000u);
  EXPECT_EQ(text(64999, kName), "Late");
}

}  // namespace
}  // namespace tabelion
