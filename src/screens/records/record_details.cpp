#include "screens/records/record_details.h"

#include <string>

#include "engine/packed_record.h"
#include "query/date_text.h"
#include "query/time_text.h"
#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr ControlId kLabels[] = {kDetailCreatedBy, kDetailCreated, kDetailModified};
constexpr char16_t kNotRecorded[] = u"Not recorded";

std::u16string momentText(const Application& app, const CalendarTime& moment) {
  const FormatSettings& formats = app.level().formats;
  TimeValue time;
  time.hour = static_cast<std::uint8_t>(moment.hour);
  time.minute = static_cast<std::uint8_t>(moment.minute);
  return FromUtf8(dateText(CalendarDate{moment.month, moment.day, moment.year}, formats) + "  " +
                  timeText(time, formats));
}

struct RecordDetails {
  std::u16string created_by = kNotRecorded;
  std::u16string created = kNotRecorded;
  std::u16string modified = kNotRecorded;
};

RecordDetails detailsOf(const Application& app, const DatabaseRecord& schema, ByteView record) {
  RecordDetails details;
  if (const std::string author = areaText(schema.author); !author.empty()) {
    details.created_by = ScreenText(app, author);
  }
  const auto stamp = recordStamp(record);
  if (!stamp) return details;
  const CalendarTime now = app.platform.clock.local();
  details.created = momentText(app, stampTime(stampCreated(*stamp), now));
  // A database that keeps no time of changes leaves that of the making in its place.
  if (schema.modification_stamp_option != 0 || stampModified(*stamp) != stampCreated(*stamp)) {
    details.modified = momentText(app, stampTime(stampModified(*stamp), now));
  }
  return details;
}

DialogTemplate detailsTemplate(const RecordDetails& details) {
  const auto label = [](ControlId id, const std::u16string& text) {
    return ControlTemplate{.id = id, .kind = ControlKind::kLabel, .text = text};
  };
  DialogTemplate dialog;
  dialog.resource = kRecordDetailsScreen;
  dialog.title = u"Detail";
  dialog.controls = {label(kDetailCreatedBy, u"Created By:"),
                     label(DetailValue(kDetailCreatedBy), details.created_by),
                     label(kDetailCreated, u"Created On:"),
                     label(DetailValue(kDetailCreated), details.created),
                     label(kDetailModified, u"Last Modified:"),
                     label(DetailValue(kDetailModified), details.modified)};
  return dialog;
}

class RecordDetailsScreen : public CommandScreen<RecordDetailsScreen> {
 public:
  CommandTable<RecordDetailsScreen> Commands(Dialog&) {
    using Self = RecordDetailsScreen;
    return {.left = {kDoneCommand, u"Done", &Self::Done},
            .keys = {{kActionCommand, {}, &Self::Done}, {kBackCommand, {}, &Self::Done}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    onResize(dialog);
  }
  void onResize(Dialog& dialog) override {
    std::vector<LayoutRow> rows;
    for (const ControlId id : kLabels) rows.push_back(LabeledRow(id, {TextCell(DetailValue(id))}));
    PlaceRows(dialog, rows);
  }

 private:
  void Done(Dialog& dialog) { dialog.end(kDialogDone); }
};

}  // namespace

void ShowRecordDetails(Application& app, ByteView record) {
  RecordDetailsScreen screen;
  RunModalDialog(app, detailsTemplate(detailsOf(app, CurrentDatabase(app).schema, record)), screen);
}

}  // namespace tabelion
