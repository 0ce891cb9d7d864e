#include "screens/arrange/search_database.h"

#include <algorithm>
#include <iterator>

#include "query/find.h"
#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "screens/kit/stored_box.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr ControlId kTextLabel = 1;
constexpr ControlId kFieldLabel = 2;
constexpr ControlId kOptionsLabel = 3;
constexpr int kWaysWidth = 130;  // that their texts need
constexpr char16_t kTitle[] = u"Search Database";

DialogTemplate searchTemplate() {
  DialogTemplate dialog;
  dialog.resource = kSearchScreen;
  dialog.title = kTitle;
  dialog.controls = {
      {.id = kTextLabel, .kind = ControlKind::kLabel, .text = u"Search For:"},
      {.id = kSearchText,
       .kind = ControlKind::kEdit,
       .accessible_name = u"Search For:",
       .max_length = static_cast<int>(kMaxSearchText)},
      {.id = kFieldLabel, .kind = ControlKind::kLabel, .text = u"Search Field:"},
      {.id = kSearchField, .kind = ControlKind::kChoice, .accessible_name = u"Search Field:"},
      {.id = kOptionsLabel, .kind = ControlKind::kLabel, .text = u"Options:"},
      {.id = kSearchCase, .kind = ControlKind::kChoice, .accessible_name = u"Options:"},
      {.id = kSearchMatch, .kind = ControlKind::kChoice, .accessible_name = u"Where in the field"},
  };
  return dialog;
}

class SearchScreen : public CommandScreen<SearchScreen> {
 public:
  explicit SearchScreen(Application& app) : app_(app) {}

  CommandTable<SearchScreen> Commands(Dialog&) {
    return {.left = {kDoneCommand, u"OK", &SearchScreen::Confirm},
            .right = {kCancelCommand, u"Cancel", &SearchScreen::Cancel},
            .keys = {{kActionCommand, {}, &SearchScreen::Confirm},
                     {kBackCommand, {}, &SearchScreen::Cancel}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    const DatabaseRecord& schema = CurrentDatabase(app_).schema;
    const SearchSettings search = searchSettings(schema);
    dialog.control(kSearchText).setText(ScreenText(app_, search.text));
    std::vector<std::u16string> fields;
    for (const std::string& name : searchFieldNames(schema)) {
      fields.push_back(ScreenText(app_, name));
    }
    choose(dialog, kSearchField, fields, search.field + 1);
    choose(dialog, kSearchCase, {u"Case Insensitive", u"Case Sensitive"}, search.case_sensitive);
    choose(dialog, kSearchMatch, {u"Field Contains", u"Field begins with..."}, search.begins);
    onResize(dialog);
    dialog.control(kSearchText).focus();
    dialog.control(kSearchText).selectText();
  }
  void onResize(Dialog& dialog) override {
    PlaceRows(dialog,
              {LabeledRow(kTextLabel, {BoxCell(kSearchText)}),
               LabeledRow(kFieldLabel, {BoxCell(kSearchField)}),
               LabeledRow(kOptionsLabel, {{.id = kSearchCase, .width = kWaysWidth, .grow = 1},
                                          {.id = kSearchMatch, .width = kWaysWidth, .grow = 1}})});
  }
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return CanStore(app_, character);
  }
  bool OnAutoClose(Dialog& dialog) override { return store(dialog) || IsAlone(app_.closing); }

 private:
  static void choose(Dialog& dialog, ControlId id, const std::vector<std::u16string>& texts,
                     int selected) {
    dialog.control(id).setChoices(texts);
    dialog.control(id).select(selected);
  }
  void Confirm(Dialog& dialog) {
    if (store(dialog)) dialog.end(kDialogDone);
  }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }

  // What is the same as before is no step. That somebody searched marks the database all the same;
  // that the dialog was left open does not.
  bool store(Dialog& dialog) {
    const auto text = TextOfBox(app_, dialog, kSearchText, kMaxSearchText, kTitle);
    if (!text) return false;
    const SearchSettings search{.field = dialog.control(kSearchField).selection() - 1,
                                .case_sensitive = dialog.control(kSearchCase).selection() == 1,
                                .begins = dialog.control(kSearchMatch).selection() == 1,
                                .text = *text};
    app_.level().history.Perform(CurrentTarget(app_), "Change of search",
                                 [&] { storeSearchSettings(CurrentDatabase(app_), search); });
    return true;
  }

  Application& app_;
};

}  // namespace

int ShowSearchDatabase(Application& app) {
  SearchScreen screen(app);
  return RunModalDialog(app, searchTemplate(), screen);
}

}  // namespace tabelion
