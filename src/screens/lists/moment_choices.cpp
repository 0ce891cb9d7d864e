#include "screens/lists/moment_choices.h"

#include <array>
#include <span>
#include <vector>

#include "engine/stored_value.h"
#include "screens/kit/commands.h"
#include "screens/kit/moment_text.h"
#include "screens/kit/pick_date.h"
#include "screens/kit/pick_time.h"
#include "screens/kit/screen_numbers.h"
#include "screens/kit/text_row.h"

namespace tabelion {
namespace {

constexpr int kMenuLeft = 10;
constexpr std::uint32_t kDaysPerWeek = 7;

enum class Choice {
  kToday,
  kTomorrow,
  kOneWeek,
  kNoDate,
  kChooseDate,
  kCurrentTime,
  kNoTime,
  kChooseTime,
};
struct Named {
  Choice choice;
  const char16_t* text;
};
constexpr Named kToday{Choice::kToday, u"Today"};
constexpr Named kTomorrow{Choice::kTomorrow, u"Tomorrow"};
constexpr Named kOneWeek{Choice::kOneWeek, u"One Week"};
constexpr Named kNoDate{Choice::kNoDate, u"No Date"};
constexpr Named kCurrentTime{Choice::kCurrentTime, u"Current Time"};
constexpr Named kNoTime{Choice::kNoTime, u"No Time"};

constexpr std::array kDateMenu{kToday, kTomorrow, kOneWeek, kNoDate,
                               Named{Choice::kChooseDate, u"Choose Date.."}};
constexpr std::array kTimeMenu{kCurrentTime, kNoTime, Named{Choice::kChooseTime, u"Choose Time.."}};
constexpr std::array kDateList{kToday, kNoDate, kTomorrow, kOneWeek};
constexpr std::array kTimeList{kCurrentTime, kNoTime};

std::optional<Bytes> valueOf(Application& app, Choice choice, const MomentField& field) {
  const CalendarTime now = app.platform.clock.local();
  const std::uint32_t today = Today(app);
  TimeValue time = timeOfValue(field.value);
  switch (choice) {
    case Choice::kToday:
      return DateBytes(today);
    case Choice::kTomorrow:
      return DateBytes(today + 1);
    case Choice::kOneWeek:
      return DateBytes(today + kDaysPerWeek);
    case Choice::kNoDate:
      return DateBytes(0);
    case Choice::kChooseDate:
      if (const auto picked = PickDate(app, field.name, numberOfValue(field.value))) {
        return DateBytes(*picked);
      }
      return std::nullopt;
    case Choice::kCurrentTime:
      time.hour = static_cast<std::uint8_t>(now.hour);
      time.minute = static_cast<std::uint8_t>(now.minute);
      time.second = static_cast<std::uint8_t>(now.second);
      return TimeBytes(time);
    case Choice::kNoTime:
      return TimeBytes({.fourth = time.fourth});
    case Choice::kChooseTime:
      if (const auto picked = PickTime(app, field.name, time)) return TimeBytes(*picked);
      return std::nullopt;
  }
  return std::nullopt;
}

class MomentListScreen : public CommandScreen<MomentListScreen> {
 public:
  explicit MomentListScreen(std::span<const Named> choices) : choices_(choices) {}

  CommandTable<MomentListScreen> Commands(Dialog&) {
    return {.resource = 102,
            .left = {kActionCommand, u"Done", &MomentListScreen::Done},
            .right = {kCancelCommand, u"Cancel", &MomentListScreen::Cancel},
            .keys = {{kBackCommand, {}, &MomentListScreen::Cancel}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    onResize(dialog);
    ListControl& list = dialog.list(kMomentItems);
    list.setRowCount(static_cast<int>(choices_.size()));
    list.selectRow(0);
    list.focus();
  }
  void onResize(Dialog& dialog) override {
    const Size size = dialog.screenSize();
    dialog.list(kMomentItems).setPlace({0, 0, size.width, size.height});
    dialog.list(kMomentItems).setColumns({{u"Items", size.width}});
  }
  void onNotice(Dialog& dialog, ControlId, Notice notice) override {
    if (notice == Notice::kActivated) Done(dialog);
  }
  void onPaintRow(Dialog& dialog, ControlId, int row, ListPainter& painter,
                  const Rect& area) override {
    PaintTextRow(painter, area,
                 {.text = TextOf(row), .selected = dialog.list(kMomentItems).selectedRow() == row});
  }
  std::u16string rowText(Dialog&, ControlId, int row) override { return TextOf(row); }

  std::optional<Choice> chosen;

 private:
  std::u16string TextOf(int row) const {
    const auto index = static_cast<std::size_t>(row);
    return row >= 0 && index < choices_.size() ? choices_[index].text : u"";
  }
  void Done(Dialog& dialog) {
    const int row = dialog.list(kMomentItems).selectedRow();
    if (row >= 0) chosen = choices_[static_cast<std::size_t>(row)].choice;
    dialog.end(kDialogDone);
  }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }

  std::span<const Named> choices_;
};

}  // namespace

std::optional<Bytes> ChooseMoment(Application& app, const MomentField& field, int menu_top) {
  const bool is_date = field.type == FieldType::kDate;
  const std::span<const Named> choices =
      is_date ? std::span<const Named>(kDateMenu) : std::span<const Named>(kTimeMenu);
  std::vector<MenuEntry> entries;
  for (const Named& named : choices) {
    entries.push_back({.command = static_cast<CommandId>(entries.size()) + 1, .text = named.text});
  }
  const CommandId chosen = app.platform.dialogs.popupMenu({kMenuLeft, menu_top}, entries);
  if (chosen == 0) return std::nullopt;
  return valueOf(app, choices[static_cast<std::size_t>(chosen) - 1].choice, field);
}

std::optional<Bytes> ShowMomentList(Application& app, const MomentField& field) {
  const bool is_date = field.type == FieldType::kDate;
  MomentListScreen screen(is_date ? std::span<const Named>(kDateList)
                                  : std::span<const Named>(kTimeList));
  DialogTemplate dialog;
  dialog.resource = kMomentListScreen;
  dialog.title = field.name;
  dialog.controls = {
      {.id = kMomentItems, .kind = ControlKind::kList, .accessible_name = field.name}};
  RunModalDialog(app, dialog, screen);
  if (!screen.chosen) return std::nullopt;
  return valueOf(app, *screen.chosen, field);
}

}  // namespace tabelion
