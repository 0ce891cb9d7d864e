#include "screens/arrange/edit_view.h"

#include <algorithm>
#include <utility>

#include "query/view.h"
#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "screens/kit/stored_box.h"
#include "services/folders.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr ControlId kNameLabel = 1;
constexpr ControlId kActionLabel = 2;
constexpr ControlId kTargetLabel = 3;
constexpr char16_t kTitle[] = u"Edit View";

DialogTemplate editViewTemplate() {
  DialogTemplate dialog;
  dialog.resource = kEditViewScreen;
  dialog.title = kTitle;
  dialog.controls = {
      {.id = kNameLabel, .kind = ControlKind::kLabel, .text = u"Name:"},
      {.id = kViewName,
       .kind = ControlKind::kEdit,
       .accessible_name = u"Name:",
       .max_length = static_cast<int>(kMostViewName)},
      {.id = kActionLabel, .kind = ControlKind::kLabel, .text = u"Action:"},
      {.id = kViewAction, .kind = ControlKind::kChoice, .accessible_name = u"Action:"},
      {.id = kTargetLabel, .kind = ControlKind::kLabel, .text = u"To Database:"},
      {.id = kViewTarget, .kind = ControlKind::kChoice, .accessible_name = u"To Database:"},
      {.id = kViewLiveUpdate,
       .kind = ControlKind::kChoice,
       .accessible_name = u"When the sort changes"},
  };
  return dialog;
}

// What the dialog begins with.
ViewSettings settingsOf(const DatabaseRecord& schema, ViewEditing edit, int view) {
  if (edit != ViewEditing::kNew) return viewSettings(schema, view);
  ViewSettings settings;
  settings.name = kNewViewName;
  return settings;
}

const char* stepName(ViewEditing edit) {
  switch (edit) {
    case ViewEditing::kNew:
      return "New view";
    case ViewEditing::kCopy:
      return "Copy of view";
    case ViewEditing::kChange:
      break;
  }
  return "Edit of view";
}

class EditViewScreen : public CommandScreen<EditViewScreen> {
 public:
  EditViewScreen(Application& app, ViewEditing edit, int view)
      : app_(app),
        edit_(edit),
        view_(view),
        settings_(settingsOf(CurrentDatabase(app).schema, edit, view)) {}

  CommandTable<EditViewScreen> Commands(Dialog&) {
    return {.left = {kDoneCommand, u"OK", &EditViewScreen::Confirm},
            .right = {kCancelCommand, u"Cancel", &EditViewScreen::Cancel},
            .keys = {{kActionCommand, {}, &EditViewScreen::Confirm},
                     {kBackCommand, {}, &EditViewScreen::Cancel}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    dialog.control(kViewName).setText(ScreenText(app_, settings_.name));
    dialog.control(kViewAction).setChoices({u"Adjust View", u"Switch DB"});
    dialog.control(kViewAction).select(settings_.switches_database ? 1 : 0);
    dialog.control(kViewLiveUpdate).setChoices({u"No Live Update", u"Live Update"});
    dialog.control(kViewLiveUpdate).select(settings_.live_update ? 1 : 0);
    listDatabases();
    dialog.control(kViewTarget).setChoices(names_);
    const auto target = std::find(targets_.begin(), targets_.end(), settings_.target);
    dialog.control(kViewTarget)
        .select(target == targets_.end() ? 0 : static_cast<int>(target - targets_.begin()));
    onResize(dialog);
    dialog.control(kViewName).focus();
    dialog.control(kViewName).selectText();
  }
  void onResize(Dialog& dialog) override {
    std::vector<LayoutRow> rows{LabeledRow(kNameLabel, {BoxCell(kViewName)}),
                                LabeledRow(kActionLabel, {BoxCell(kViewAction)})};
    const bool switches = dialog.control(kViewAction).selection() == 1;
    for (const ControlId id : {kTargetLabel, kViewTarget}) {
      dialog.control(id).setVisible(switches);
    }
    if (switches) rows.push_back(LabeledRow(kTargetLabel, {BoxCell(kViewTarget)}));
    rows.push_back(BoxRow(kViewLiveUpdate));
    PlaceRows(dialog, rows);
  }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override {
    if (control == kViewAction && notice == Notice::kEdited) onResize(dialog);
  }
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return CanStore(app_, character);
  }
  // A name that is not accepted is told later; what else was changed in the view is stored.
  bool OnAutoClose(Dialog& dialog) override {
    if (store(dialog)) return true;
    if (!IsAlone(app_.closing)) return false;
    if (edit_ == ViewEditing::kChange) {
      dialog.control(kViewName).setText(ScreenText(app_, settings_.name));
      store(dialog);
    }
    return true;
  }

  int stored = -1;

 private:
  // The databases whose names this one can hold, each once; the stored one also when it is gone.
  void listDatabases() {
    std::vector<std::u16string> names;
    for (const DatabaseFile& file : ListDatabases(app_, kAllCategories).files) {
      names.push_back(file.name);
    }
    names.push_back(ScreenText(app_, settings_.target));
    for (std::u16string& name : names) {
      Result<std::string> target = StoredText(app_, name);
      if (!target.ok() || target->empty() || target->size() > kMostViewName) continue;
      if (std::find(targets_.begin(), targets_.end(), *target) != targets_.end()) continue;
      targets_.push_back(std::move(target).value());
      names_.push_back(std::move(name));
    }
  }

  void Confirm(Dialog& dialog) {
    if (store(dialog)) dialog.end(kDialogDone);
  }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }

  bool store(Dialog& dialog) {
    const auto name = TextOfBox(app_, dialog, kViewName, kMostViewName, kTitle);
    if (!name) return false;
    if (name->find_first_not_of(' ') == std::string::npos) {
      RefuseBox(app_, dialog, kViewName, u"A view needs a name.", kTitle);
      return false;
    }
    ViewSettings settings{.name = *name,
                          .switches_database = dialog.control(kViewAction).selection() == 1,
                          .target = settings_.target,
                          .live_update = dialog.control(kViewLiveUpdate).selection() == 1};
    const auto target = static_cast<std::size_t>(dialog.control(kViewTarget).selection());
    if (settings.switches_database && target < targets_.size()) settings.target = targets_[target];
    const std::string refusal = keep(settings);
    if (!refusal.empty()) RefuseBox(app_, dialog, kViewName, FromUtf8(refusal), u"Message");
    return refusal.empty();
  }

  // What refuses the name, with nothing changed; else empty. A view as it was is not stored again.
  std::string keep(const ViewSettings& settings) {
    Database& database = CurrentDatabase(app_);
    const bool free = viewOfName(database.schema, settings.name) == view_;
    if (edit_ == ViewEditing::kChange && settings == settings_ && free) return {};
    std::string refusal;
    int view = view_;
    const auto change = [&] {
      if (edit_ == ViewEditing::kNew) view = addView(database);
      if (edit_ == ViewEditing::kCopy) view = copyView(database, view_);
      refusal = storeViewSettings(database, view, settings);
      return refusal.empty();
    };
    const bool kept = app_.level().history.Attempt(CurrentTarget(app_), stepName(edit_), change,
                                                   SchemaExtent::kWhole);
    if (kept) stored = view;
    return refusal;
  }

  Application& app_;
  const ViewEditing edit_;
  const int view_;
  const ViewSettings settings_;
  std::vector<std::string> targets_;   // in the list's order, as the view stores them
  std::vector<std::u16string> names_;  // the same as they are shown
};

}  // namespace

int ShowEditView(Application& app, ViewEditing edit, int view) {
  EditViewScreen screen(app, edit, view);
  RunModalDialog(app, editViewTemplate(), screen);
  return screen.stored;
}

}  // namespace tabelion
