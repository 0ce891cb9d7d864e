#include "screens/arrange/edit_views.h"

#include <algorithm>

#include "query/view.h"
#include "screens/arrange/choose_view.h"
#include "screens/arrange/edit_view.h"
#include "screens/arrange/fields_setup.h"
#include "screens/arrange/filter_screen.h"
#include "screens/arrange/sort_screen.h"
#include "screens/kit/commands.h"
#include "screens/kit/row_colors.h"
#include "screens/kit/screen_numbers.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kColumnMargin = 10;

DialogTemplate editViewsTemplate() {
  DialogTemplate dialog;
  dialog.resource = kEditViewsScreen;
  dialog.title = u"Edit Views";
  dialog.controls = {{.id = kViewList, .kind = ControlKind::kList, .accessible_name = u"Views"}};
  return dialog;
}

class EditViewsScreen : public CommandScreen<EditViewsScreen> {
 public:
  explicit EditViewsScreen(Application& app) : app_(app) {}

  CommandTable<EditViewsScreen> Commands(Dialog& dialog) {
    using Self = EditViewsScreen;
    const int view = selected(dialog);
    const bool any = view >= 0;
    const bool can_go = any && viewName(schema(), view) != kDefaultViewName;
    return {.left = {kDoneCommand, u"Done", &Self::Done},
            .right = {.text = u"Menu",
                      .rows = {{kNewViewCommand, u"New", &Self::New},
                               {kCopyViewCommand, u"Copy", &Self::Copy,
                                any && viewCount(schema()) < kViewSlots},
                               {kEditViewCommand, u"Edit View", &Self::Edit, any},
                               {kViewFieldsCommand, u"Fields Setup", &Self::SetupFields, any},
                               {kSortCommand, u"Sort", &Self::Sort, any},
                               {kFilterCommand, u"Filter", &Self::Filter, any},
                               {kDeleteCommand, u"Delete", &Self::Delete, can_go}}},
            .keys = {{kActionCommand, {}, &Self::Edit, any}, {kBackCommand, {}, &Self::Done}}};
  }
  void onInit(Dialog& dialog) override {
    onResize(dialog);
    ShowViews(dialog, schema().current_view);
    ShowCommands(dialog);
  }
  void onResize(Dialog& dialog) override {
    const Size size = dialog.screenSize();
    dialog.control(kViewList).setPlace({0, 0, size.width, size.height});
    dialog.list(kViewList).setColumns({{u"Views", std::max(0, size.width - kColumnMargin)}});
  }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override {
    if (control == kViewList && notice == Notice::kActivated) onCommand(dialog, kActionCommand);
  }
  void onPaintRow(Dialog& dialog, ControlId, int row, ListPainter& painter,
                  const Rect& area) override {
    const RowColors& colors = RowColorsOf(painter.scheme());
    const bool is_selected = selected(dialog) == row;
    painter.fill(area, is_selected ? colors.selected : row % 2 == 0 ? colors.even : colors.odd);
    if (row >= viewCount(schema())) return;
    const Rect cell{area.x + 2, area.y, area.width - 4, area.height};
    painter.text(cell, rowText(dialog, kViewList, row),
                 is_selected ? colors.selected_ink : colors.ink, TextWeight::kNormal);
  }
  std::u16string rowText(Dialog&, ControlId, int row) override {
    if (row < 0 || row >= viewCount(schema())) return {};
    const ViewSettings view = viewSettings(schema(), row);
    std::u16string text = ScreenText(app_, view.name);
    if (row == schema().current_view) text += u" (current)";
    if (view.switches_database) text += u" (Switch DB: " + ScreenText(app_, view.target) + u")";
    return text;
  }

 private:
  const DatabaseRecord& schema() const { return CurrentDatabase(app_).schema; }
  // -1: there is none.
  static int selected(Dialog& dialog) { return dialog.list(kViewList).selectedRow(); }

  void ShowViews(Dialog& dialog, int selected) {
    ListControl& list = dialog.list(kViewList);
    const int count = viewCount(schema());
    list.setRowCount(count);
    list.selectRow(selected < count ? selected : 0);
    list.repaint();
    list.focus();
  }
  void New(Dialog& dialog) {
    if (viewCount(schema()) >= kViewSlots) {
      return ShowMessage(app_, FromUtf8(kTooManyViewsText), u"New View", MessageIcon::kExclamation);
    }
    ShowEditor(dialog, ViewEditing::kNew);
  }
  void Copy(Dialog& dialog) { ShowEditor(dialog, ViewEditing::kCopy); }
  void Edit(Dialog& dialog) { ShowEditor(dialog, ViewEditing::kChange); }
  void ShowEditor(Dialog& dialog, ViewEditing edit) {
    const int stored = ShowEditView(app_, edit, selected(dialog));
    if (stored >= 0) ShowViews(dialog, stored);
  }
  void SetupFields(Dialog& dialog) { ShowFieldsSetup(app_, selected(dialog)); }
  void Sort(Dialog& dialog) { ShowSort(app_, selected(dialog)); }
  void Filter(Dialog& dialog) { ShowFilter(app_, selected(dialog)); }
  void Delete(Dialog& dialog) {
    const int view = selected(dialog);
    const std::u16string name = ScreenText(app_, viewName(schema(), view));
    if (Ask(app_, u"Do you want to delete the view \"" + name + u"\"?", u"Delete?") !=
        Answer::kYes) {
      return;
    }
    app_.level().history.Perform(
        CurrentTarget(app_), "Delete of view", [&] { deleteView(CurrentDatabase(app_), view); },
        SchemaExtent::kWhole);
    ShowViews(dialog, std::min(view, viewCount(schema()) - 1));
  }
  void Done(Dialog& dialog) { dialog.end(kDialogDone); }

  Application& app_;
};

}  // namespace

void ShowEditViews(Application& app) {
  const auto& views = CurrentDatabase(app).schema.views;
  const auto before = views;
  EditViewsScreen screen(app);
  RunModalDialog(app, editViewsTemplate(), screen);
  ApplyCurrentView(app, views == before ? ViewsWere::kLeft : ViewsWere::kChanged);
}

}  // namespace tabelion
