#include "screens/arrange/fields_setup.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "query/view.h"
#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "screens/kit/stored_box.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr ControlId kFieldLabel = 1;
constexpr ControlId kInListLabel = 2;
constexpr ControlId kWidthLabel = 3;
constexpr ControlId kInRecordLabel = 4;
constexpr int kWidthDigits = 5;
constexpr char16_t kTitle[] = u"Fields Setup";

DialogTemplate fieldsSetupTemplate() {
  DialogTemplate dialog;
  dialog.resource = kFieldsSetupScreen;
  dialog.title = kTitle;
  dialog.controls = {
      {.id = kFieldLabel, .kind = ControlKind::kLabel, .text = u"Field:"},
      {.id = kSetupField, .kind = ControlKind::kChoice, .accessible_name = u"Field:"},
      {.id = kSetupPlace, .kind = ControlKind::kLabel},
      {.id = kInListLabel, .kind = ControlKind::kLabel, .text = u"In ListView:"},
      {.id = kSetupInList, .kind = ControlKind::kChoice, .accessible_name = u"In ListView:"},
      {.id = kSetupWidth,
       .kind = ControlKind::kEdit,
       .accessible_name = u"Pixels Wide",
       .right_aligned = true,
       .max_length = kWidthDigits},
      {.id = kWidthLabel, .kind = ControlKind::kLabel, .text = u"Pixels Wide"},
      {.id = kInRecordLabel, .kind = ControlKind::kLabel, .text = u"In Record View:"},
      {.id = kSetupInRecord, .kind = ControlKind::kChoice, .accessible_name = u"In Record View:"},
      {.id = kSetupExport, .kind = ControlKind::kChoice, .accessible_name = u"Export and print"},
  };
  return dialog;
}

// The dialog changes a copy of the view's fields; OK stores what is another in it.
class FieldsSetupScreen : public CommandScreen<FieldsSetupScreen> {
 public:
  FieldsSetupScreen(Application& app, int view)
      : app_(app), view_(view), order_(viewFields(schema(), view)) {
    for (int slot = 0; slot < kFieldSlots; ++slot) {
      fields_[static_cast<std::size_t>(slot)] = viewFieldSettings(schema(), view, slot);
    }
  }

  CommandTable<FieldsSetupScreen> Commands(Dialog&) {
    using Self = FieldsSetupScreen;
    const auto move = [](int step) {
      return [step](Self& self, Dialog& on) { self.Move(on, step); };
    };
    return {.left = {kDoneCommand, u"OK", &Self::Confirm},
            .right = {.text = u"Menu",
                      .rows = {{kMoveUpCommand, u"Move Up", move(-1), at_ > 0},
                               {kMoveDownCommand, u"Move Down", move(1), at_ + 1 < order_.size()},
                               {kCancelCommand, u"Cancel", &Self::Cancel}}},
            .keys = {{kActionCommand, {}, &Self::Confirm}, {kBackCommand, {}, &Self::Cancel}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    for (const ControlId id : {kSetupInList, kSetupInRecord}) {
      dialog.control(id).setChoices({u"Not Visible", u"Visible"});
    }
    dialog.control(kSetupExport).setChoices({u"Do Not Export", u"Export/Print"});
    for (const ControlId id : {kSetupField, kSetupInList, kSetupInRecord, kSetupExport}) {
      dialog.control(id).setEnabled(!order_.empty());
    }
    ShowFields(dialog);
    dialog.control(kSetupField).focus();
  }
  void onResize(Dialog& dialog) override {
    std::vector<LayoutCell> in_list{BoxCell(kSetupInList)};
    if (hasWidth(dialog)) {
      in_list.insert(in_list.end(), {BoxCell(kSetupWidth, 50), Glued(TextCell(kWidthLabel))});
    }
    PlaceRows(dialog,
              {LabeledRow(kFieldLabel, {BoxCell(kSetupField)}), TextRow(kSetupPlace),
               LabeledRow(kInListLabel, in_list),
               LabeledRow(kInRecordLabel, {BoxCell(kSetupInRecord)}), BoxRow(kSetupExport)});
  }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override {
    if (notice != Notice::kEdited) return;
    if (control == kSetupField) {
      Show(dialog, static_cast<std::size_t>(dialog.control(kSetupField).selection()));
    }
    if (control == kSetupInList) ShowWidth(dialog);
  }
  // From field to field, wherever the focus is.
  bool onKey(Dialog& dialog, const KeyPress& key) override {
    const bool back = key.key == Key::kPageUp;
    if (!back && key.key != Key::kPageDown) return false;
    if (back ? at_ > 0 : at_ + 1 < order_.size()) Show(dialog, back ? at_ - 1 : at_ + 1);
    return true;
  }
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return character >= U'0' && character <= U'9';
  }
  bool OnAutoClose(Dialog& dialog) override {
    const bool taken = Take(dialog);
    if (!taken && !IsAlone(app_.closing)) return false;
    Store();
    return true;
  }

 private:
  const DatabaseRecord& schema() const { return CurrentDatabase(app_).schema; }
  int slot() const { return order_[at_]; }
  ViewFieldSettings& field() { return fields_[static_cast<std::size_t>(slot())]; }
  const FieldDefinition& definition() const {
    return schema().fields[static_cast<std::size_t>(slot())];
  }
  bool canBeListed() const { return traitsOf(definition().type).lists; }
  static bool hasWidth(Dialog& dialog) { return dialog.control(kSetupInList).selection() == 1; }

  void ShowFields(Dialog& dialog) {
    std::vector<std::u16string> names;
    for (const int slot : order_) {
      names.push_back(ScreenText(app_, fieldName(schema().fields[static_cast<std::size_t>(slot)])));
    }
    dialog.control(kSetupField).setChoices(names);
    ShowField(dialog);
  }

  // A field without a text for lists is in none, whatever width is stored for it.
  void ShowField(Dialog& dialog) {
    if (!order_.empty()) {
      const ViewFieldSettings& shown = field();
      dialog.control(kSetupField).select(static_cast<int>(at_));
      dialog.control(kSetupPlace)
          .setText(FromUtf8(fmt::format("Field {} of {}", at_ + 1, order_.size())));
      dialog.control(kSetupInList).select(canBeListed() && shown.in_list ? 1 : 0);
      dialog.control(kSetupInList).setEnabled(canBeListed());
      dialog.control(kSetupWidth).setText(FromUtf8(std::to_string(shown.column_width)));
      dialog.control(kSetupInRecord).select(shown.in_record_view ? 1 : 0);
      dialog.control(kSetupExport).select(shown.exported ? 1 : 0);
    }
    ShowWidth(dialog);
  }
  void ShowWidth(Dialog& dialog) {
    for (const ControlId id : {kSetupWidth, kWidthLabel}) {
      dialog.control(id).setVisible(hasWidth(dialog));
    }
    onResize(dialog);
  }

  // What the controls say into the copy. False, after saying so, when the width is none; it is
  // what it was then.
  bool Take(Dialog& dialog) {
    if (order_.empty()) return true;
    ViewFieldSettings& taken = field();
    taken.in_record_view = dialog.control(kSetupInRecord).selection() == 1;
    taken.exported = dialog.control(kSetupExport).selection() == 1;
    if (!canBeListed()) return true;
    taken.in_list = hasWidth(dialog);
    if (!taken.in_list) return true;
    int width = 0;
    for (const char16_t digit : dialog.control(kSetupWidth).text()) {
      width = width * 10 + (digit - u'0');
    }
    if (width < 1 || width > kWidestColumn) {
      RefuseBox(app_, dialog, kSetupWidth,
                FromUtf8(fmt::format("A column is 1 to {} pixels wide.", kWidestColumn)), kTitle);
      return false;
    }
    taken.column_width = width;
    return true;
  }

  void Show(Dialog& dialog, std::size_t at) {
    if (!Take(dialog)) return dialog.control(kSetupField).select(static_cast<int>(at_));
    at_ = at;
    ShowField(dialog);
  }
  void Move(Dialog& dialog, int step) {
    if (!Take(dialog)) return;
    const std::size_t to = step < 0 ? at_ - 1 : at_ + 1;
    std::swap(order_[at_], order_[to]);
    at_ = to;
    ShowFields(dialog);
  }
  void Confirm(Dialog& dialog) {
    if (!Take(dialog)) return;
    Store();
    dialog.end(kDialogDone);
  }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }

  void Store() {
    std::vector<int> changed;
    for (const int slot : order_) {
      const ViewFieldSettings now = viewFieldSettings(schema(), view_, slot);
      if (fields_[static_cast<std::size_t>(slot)] != now) changed.push_back(slot);
    }
    const bool moved = order_ != viewFields(schema(), view_);
    if (changed.empty() && !moved) return;
    const auto change = [&] {
      Database& database = CurrentDatabase(app_);
      for (const int slot : changed) {
        storeViewFieldSettings(database, view_, slot, fields_[static_cast<std::size_t>(slot)]);
      }
      if (moved) storeViewOrder(database, view_, order_);
    };
    app_.level().history.Perform(CurrentTarget(app_), "Setup of fields", change,
                                 SchemaExtent::kWhole);
  }

  Application& app_;
  const int view_;
  std::vector<int> order_;  // the slots of all fields
  std::size_t at_ = 0;      // of the one that is shown
  std::array<ViewFieldSettings, kFieldSlots> fields_{};
};

}  // namespace

void ShowFieldsSetup(Application& app, int view) {
  FieldsSetupScreen screen(app, view);
  RunModalDialog(app, fieldsSetupTemplate(), screen);
}

}  // namespace tabelion
