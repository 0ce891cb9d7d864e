#include "screens/output/run_report.h"

#include <algorithm>

#include "engine/schema_places.h"
#include "interchange/charts/report_chart.h"
#include "query/report_picture.h"
#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr ControlId kFieldLabel = 1;
constexpr CommandId kRunReportCommand = 40231;
constexpr CommandId kShowPictureCommand = 40232;
constexpr CommandId kFirstPopupCommand = kFirstListedCommand + 1;

constexpr int kTextLines = 15;  // of the longest report, which has a line for its title as well
constexpr int kBoxFrame = 10;   // around the lines of a text box
constexpr int kTextMargin = 28;
constexpr int kFieldWidth = 240;
constexpr int kLeastPicture = 160;
constexpr int kLeastBesides = 240;  // width of a picture beside the text
constexpr int kLeastArea = 60;
constexpr int kHeadRows = 56;  // what the field's label and box need at most

DialogTemplate reportTemplate() {
  DialogTemplate dialog;
  dialog.resource = kRunReportScreen;
  dialog.title = u"Run Report";
  dialog.controls = {
      {.id = kFieldLabel, .kind = ControlKind::kLabel, .text = u"Select field to report on:"},
      {.id = kReportField,
       .kind = ControlKind::kChoice,
       .accessible_name = u"Select field to report on:"},
      {.id = kReportText,
       .kind = ControlKind::kMultiEdit,
       .accessible_name = u"Report",
       .read_only = true},
      {.id = kReportPicture,
       .kind = ControlKind::kCanvas,
       .accessible_name = u"Picture",
       .visible = false,
       .takes_focus = true},
  };
  return dialog;
}

// Where the text and its picture are: a small screen shows one of them at a time.
enum class Arrangement { kInTurn, kBelow, kBeside };

class ReportScreen : public CommandScreen<ReportScreen> {
 public:
  explicit ReportScreen(Application& app)
      : app_(app),
        fields_(reportFields(CurrentDatabase(app).schema)),
        popups_(popupFields(CurrentDatabase(app).schema)) {}

  CommandTable<ReportScreen> Commands(Dialog& dialog);
  void onInit(Dialog& dialog) override;
  void onResize(Dialog& dialog) override { Arrange(dialog); }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override {
    if (control == kReportField && notice == Notice::kEdited) Run(dialog);
  }
  bool onKey(Dialog& dialog, const KeyPress& key) override;
  void onPaintCanvas(Dialog& dialog, ControlId, CanvasPainter& painter) override;
  std::u16string canvasText(Dialog&, ControlId) override {
    const std::string about = title_.empty() ? "" : title_ + ": ";
    return FromUtf8(about + reportPictureInWords(picture_, Texts()));
  }

 private:
  ChartTexts Texts() const {
    return {app_.level().formats, app_.level().encoding, app_.preferences.week_starts_monday != 0};
  }
  std::u16string NameOf(int slot) const {
    return ScreenText(
        app_, fieldName(CurrentDatabase(app_).schema.fields[static_cast<std::size_t>(slot)]));
  }
  bool HasPicture() const { return picture_.kind != PictureKind::kNone; }
  // Of a pop-up field there is a picture alone.
  bool HasText() const { return picture_.kind != PictureKind::kItems; }
  Arrangement ArrangementOf(Dialog& dialog) const;
  int TextWidth(Dialog& dialog) const {
    return dialog.textSize(u"Percentage Not-Checked:", 0).width + kTextMargin;
  }
  int TextHeight(Dialog& dialog) const {
    return kTextLines * dialog.textSize(u"X", 0).height + kBoxFrame;
  }
  void Arrange(Dialog& dialog);
  void Show(Dialog& dialog, int slot);
  void Run(Dialog& dialog);
  void ShowOther(Dialog& dialog);
  void Close(Dialog& dialog) { dialog.end(kDialogClosed); }

  Application& app_;
  const std::vector<int> fields_;
  const std::vector<int> popups_;
  ReportPicture picture_;
  std::string title_;             // of the picture, where no text says what it is of; UTF-8
  bool picture_in_turn_ = false;  // where there is room for one only: not the text
};

CommandTable<ReportScreen> ReportScreen::Commands(Dialog& dialog) {
  using Self = ReportScreen;
  const Command<Self> run{kRunReportCommand, u"Run Report", &Self::Run};
  const bool in_turn = HasPicture() && HasText() && ArrangementOf(dialog) == Arrangement::kInTurn;
  const Command<Self> other{kShowPictureCommand, picture_in_turn_ ? u"Text" : u"Picture",
                            &Self::ShowOther};
  std::vector<Command<Self>> rows;
  if (in_turn) rows.push_back(run);
  std::vector<Command<Self>> popups;
  for (std::size_t i = 0; i < popups_.size(); ++i) {
    const int slot = popups_[i];
    popups.push_back({kFirstPopupCommand + static_cast<CommandId>(i), NameOf(slot),
                      [slot](Self& self, Dialog& on) {
                        on.control(kReportField).select(-1);
                        self.Show(on, slot);
                        on.control(kReportPicture).focus();
                      }});
  }
  if (!popups.empty()) rows.push_back({.text = u"Popup Chart", .rows = std::move(popups)});
  rows.push_back({kBackCommand, u"Close", &Self::Close});
  return {.left = in_turn ? other : run,
          .right = {.text = u"Menu", .rows = std::move(rows)},
          .keys = {{kActionCommand, {}, &Self::Run}}};
}

void ReportScreen::onInit(Dialog& dialog) {
  std::vector<std::u16string> names;
  for (const int slot : fields_) names.push_back(NameOf(slot));
  Control& field = dialog.control(kReportField);
  field.setChoices(names);
  field.select(-1);
  field.setEnabled(!names.empty());
  Arrange(dialog);
  if (!names.empty()) field.focus();
}

Arrangement ReportScreen::ArrangementOf(Dialog& dialog) const {
  const Size size = dialog.screenSize();
  const bool is_wide = size.width >= size.height;
  if (is_wide && size.width >= TextWidth(dialog) + kLeastBesides) return Arrangement::kBeside;
  const int picture = size.height - kHeadRows - TextHeight(dialog);
  return picture >= kLeastPicture ? Arrangement::kBelow : Arrangement::kInTurn;
}

void ReportScreen::Arrange(Dialog& dialog) {
  const Arrangement arrangement = ArrangementOf(dialog);
  const bool in_turn = arrangement == Arrangement::kInTurn;
  const bool shows_picture = HasPicture() && (!in_turn || picture_in_turn_ || !HasText());
  const bool shows_text = HasText() && !(in_turn && shows_picture);
  // A picture that is alone on a small screen needs the label's line more.
  const bool shows_label = !in_turn || shows_text;
  dialog.control(kFieldLabel).setVisible(shows_label);
  dialog.control(kReportText).setVisible(shows_text);
  dialog.control(kReportPicture).setVisible(shows_picture);

  const bool beside = arrangement == Arrangement::kBeside;
  const LayoutCell text{
      .id = kReportText, .kind = CellKind::kArea, .height = kLeastArea, .grow = 1};
  const LayoutCell picture{
      .id = kReportPicture, .kind = CellKind::kArea, .height = kLeastArea, .grow = 1};
  std::vector<LayoutRow> rows = {{.label = shows_label ? kFieldLabel : 0,
                                  .cells = {BoxCell(kReportField, beside ? kFieldWidth : 0)}}};
  if (shows_text && beside) {
    LayoutCell narrow = text;
    narrow.width = TextWidth(dialog);
    narrow.grow = 0;
    rows.push_back({.cells = {narrow, picture}, .takes_rest = true});
  } else if (shows_text && shows_picture) {
    LayoutCell whole = text;
    whole.height = TextHeight(dialog);
    rows.push_back({.cells = {whole}});
    rows.push_back({.cells = {picture}, .takes_rest = true});
  } else {
    rows.push_back({.cells = {shows_text ? text : picture}, .takes_rest = true});
  }
  PlaceRows(dialog, rows, {.widest = dialog.screenSize().width});
  dialog.control(kReportPicture).repaint();
  ShowCommands(dialog);
}

void ReportScreen::Show(Dialog& dialog, int slot) {
  const Database& database = CurrentDatabase(app_);
  PicturedReport report;
  {
    WaitCursor waiting(app_);
    report = picturedReport(database, slot, QuerySettingsOf(app_, database));
  }
  picture_ = std::move(report.picture);
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
  title_ = HasText() ? "" : app_.level().encoding.toUtf8(fieldName(field));
  dialog.control(kReportText)
      .setText(ScreenText(app_, reportText(report.figures, field, app_.level().formats)));
  Arrange(dialog);
}

void ReportScreen::Run(Dialog& dialog) {
  const int chosen = dialog.control(kReportField).selection();
  if (chosen < 0 || chosen >= static_cast<int>(fields_.size())) {
    ShowMessage(app_, FromUtf8(kNoReportFieldText), u"ERROR", MessageIcon::kExclamation);
    return;
  }
  Show(dialog, fields_[static_cast<std::size_t>(chosen)]);
}

void ReportScreen::ShowOther(Dialog& dialog) {
  picture_in_turn_ = !picture_in_turn_;
  Arrange(dialog);
  const ControlId shown = picture_in_turn_ ? kReportPicture : kReportText;
  dialog.control(shown).focus();
}

// From picture to picture, without a way back to the box of fields.
bool ReportScreen::onKey(Dialog& dialog, const KeyPress& key) {
  if (key.control != kReportPicture || (key.key != Key::kLeft && key.key != Key::kRight)) {
    return false;
  }
  Control& field = dialog.control(kReportField);
  const int next = std::clamp(field.selection() + (key.key == Key::kRight ? 1 : -1), 0,
                              std::max(0, static_cast<int>(fields_.size()) - 1));
  if (fields_.empty() || next == field.selection()) return true;
  field.select(next);
  picture_in_turn_ = true;
  Run(dialog);
  return true;
}

void ReportScreen::onPaintCanvas(Dialog& dialog, ControlId, CanvasPainter& painter) {
  const Rect place = dialog.control(kReportPicture).place();
  const TextRoom room{
      .width = [&](const std::u16string& text) { return dialog.textSize(text, 0).width; },
      .height = dialog.textSize(u"X", 0).height};
  paintReportPicture(painter, {place.width, place.height}, picture_, Texts(), room, title_);
}

}  // namespace

int ShowRunReport(Application& app) {
  ReportScreen screen(app);
  return RunModalDialog(app, reportTemplate(), screen);
}

}  // namespace tabelion
