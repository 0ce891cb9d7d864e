#include "app/tour/tour.h"

#include <fmt/format.h>

#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <algorithm>
#include <vector>

#include "app/file_reader.h"
#include "app/program.h"
#include "app/tour/arrange_scenes.h"
#include "app/tour/list_scenes.h"
#include "app/tour/record_scenes.h"
#include "app/tour/sort_filter_scenes.h"
#include "app/tour/tour_driver.h"
#include "platform/qt/list_view.h"
#include "platform/std/sole_instance.h"
#include "screens/kit/screen_numbers.h"
#include "screens/output/run_report.h"
#include "screens/records/record_form.h"
#include "screens/records/record_list.h"

namespace tabelion {

namespace {

constexpr char kMark[] = "Zq7";               // typed into a record; no sample holds it
constexpr char kNoteMark[] = "Seen today. ";  // and into a note
constexpr double kTourZoom = 2;
constexpr char kSafeName[] = "Safe";  // the sample that is kept enciphered
constexpr char kSafePassword[] = "sesame";
constexpr char kReportedName[] = "Expenses";  // and the one that a report is run on
constexpr char kReportedField[] = "Amount";
constexpr std::size_t kWantedSamples = 7;
constexpr int kSidewaysPresses = 3;
constexpr int kMostFields = 100;

QString qt(const std::string& text) {
  return QString::fromStdString(text);
}

class Tour {
 public:
  Tour(TourDriver& driver, const std::string& documents, std::vector<StoredDatabase> samples)
      : driver_(driver),
        probe_(driver.probe()),
        databases_(documents + "/Tabelion"),
        samples_(std::move(samples)) {}

  // False, after saying so, when the samples do not allow the walk.
  bool plan();

 private:
  bool pickSamples();
  void offerSamples();
  void browse();
  void changeRecord();
  void writeNote();
  void saveAndReopen();
  void arrange();
  void showOtherLetters();
  void openSafe();
  void runReport();
  void lookAtPreferences();
  void manageFiles();

  void selectDatabase(const StoredDatabase& database);  // and open it
  void markDatabase(const StoredDatabase& database);
  void typePassword(const QString& password);
  void moveToControl(std::function<bool()> wanted);
  Seen sampleList() const;
  Seen recordList(const StoredDatabase& database) const;
  Seen storedOnDisk() const;
  Seen safeOnDisk() const;
  bool onTextField() const;

  TourDriver& driver_;
  const ScreenProbe& probe_;
  const std::string databases_;
  const std::vector<StoredDatabase> samples_;
  const StoredDatabase* main_ = nullptr;    // with a note and a text field
  const StoredDatabase* second_ = nullptr;  // with letters beyond ASCII
  const StoredDatabase* reported_ = nullptr;
  const StoredDatabase* safe_ = nullptr;  // whose flagged fields are enciphered
};

bool Tour::plan() {
  if (!pickSamples()) return false;
  offerSamples();
  browse();
  changeRecord();
  writeNote();
  saveAndReopen();
  arrange();
  showOtherLetters();
  openSafe();
  runReport();
  manageFiles();
  driver_.choose(kChooserScreen, "Exit");
  return true;
}

bool Tour::pickSamples() {
  for (const StoredDatabase& sample : samples_) {
    if (main_ == nullptr && sample.has_note && !sample.text_slots.empty()) main_ = &sample;
  }
  for (const StoredDatabase& sample : samples_) {
    if (second_ == nullptr && &sample != main_ && sample.hasLettersBeyondAscii()) second_ = &sample;
  }
  for (const StoredDatabase& sample : samples_) {
    if (sample.name == kSafeName) safe_ = &sample;
    if (sample.name == kReportedName) reported_ = &sample;
  }
  if (samples_.size() >= kWantedSamples && main_ && second_ && safe_ && reported_) return true;
  fmt::print(
      "The tour needs at least {} sample databases, one with a note field, another with letters "
      "beyond ASCII, one called Safe and one called Expenses; {} were found. FAILED\n",
      kWantedSamples, samples_.size());
  return false;
}

void Tour::offerSamples() {
  driver_.see(kAnyQuestion, "First start with no databases", "sample-question", [this] {
    return Seen{probe_.messageText() == "Install Sample Database? (Y/N)",
                "the program asks \"" + probe_.messageText().toStdString() + "\""};
  });
  driver_.press(kAnyQuestion, Qt::Key_F1);
  driver_.see(kChooserScreen, "Answered Yes", "chooser", [this] { return sampleList(); });
}

Seen Tour::sampleList() const {
  std::size_t listed = 0;
  const ListView* list = probe_.list();
  for (const StoredDatabase& sample : samples_) {
    for (int row = 0; row < list->rowCount(); ++row) {
      if (list->rowText(row) == qt(sample.name)) ++listed;
    }
  }
  return {listed == samples_.size() && list->rowCount() == int(listed),
          fmt::format("{} of {} sample databases listed, {} rows", listed, samples_.size(),
                      list->rowCount())};
}

void Tour::selectDatabase(const StoredDatabase& database) {
  markDatabase(database);
  driver_.press(kChooserScreen, Qt::Key_Return);
}

void Tour::markDatabase(const StoredDatabase& database) {
  driver_.press(kChooserScreen, Qt::Key_Home);
  driver_.act(kChooserScreen, [this, name = qt(database.name)] {
    const ListView* list = probe_.list();
    for (int i = 0; i < list->rowCount() && list->rowText(list->selectedRow()) != name; ++i) {
      probe_.press(Qt::Key_Down);
    }
  });
}

Seen Tour::recordList(const StoredDatabase& database) const {
  const ListView* list = probe_.list();
  const QStringList rows = probe_.visibleRows();
  const bool filled = !rows.isEmpty() && std::none_of(rows.begin(), rows.end(), [](auto& row) {
    return row.trimmed().isEmpty();
  });
  return {probe_.text(kNameLabel) == qt(database.name) && filled &&
              list->rowCount() == int(database.record_count),
          fmt::format("{} records listed in {} columns, first \"{}\"", list->rowCount(),
                      list->columns().size(), rows.value(0).toStdString())};
}

void Tour::browse() {
  selectDatabase(*main_);
  driver_.see(kRecordListScreen, "Opened " + main_->name, "list",
              [this] { return recordList(*main_); });
  driver_.press(kRecordListScreen, Qt::Key_Right, kSidewaysPresses);
  driver_.press(kRecordListScreen, Qt::Key_PageDown);
  driver_.see(kRecordListScreen, "Scrolled sideways and a page down", "list-scrolled", [this] {
    const ListView* list = probe_.list();
    return Seen{list->selectedRow() > 0 && (list->sideways() > 0 || list->sidewaysRoom() == 0),
                fmt::format("row {} selected, {} pixels to the right", list->selectedRow() + 1,
                            list->sideways())};
  });
  driver_.press(kRecordListScreen, Qt::Key_F2);
  driver_.see(kRecordListScreen, "Opened the menu with F2", "menu", [this] {
    const QStringList menu = probe_.menu();
    return Seen{menu.contains("Save") && menu.contains("Close"),
                fmt::format("it offers {}", menu.join(", ").toStdString())};
  });
  driver_.press(kRecordListScreen, Qt::Key_Escape);
  driver_.press(kRecordListScreen, Qt::Key_Home);
}

bool Tour::onTextField() const {
  return std::any_of(main_->text_slots.begin(), main_->text_slots.end(),
                     [this](int slot) { return probe_.focus() == FormValue(slot); });
}

// Down through the form until the focused control is the wanted one.
void Tour::moveToControl(std::function<bool()> wanted) {
  driver_.act(kEditRecordScreen, [this, wanted = std::move(wanted)] {
    for (int i = 0; i < kMostFields && !wanted(); ++i) probe_.press(Qt::Key_Down);
  });
}

void Tour::changeRecord() {
  driver_.press(kRecordListScreen, Qt::Key_Return);
  driver_.see(kEditRecordScreen, "Opened the first record with Enter", "record", [this] {
    const QStringList texts = probe_.texts();
    return Seen{probe_.focus() != 0 && texts.size() > 2 && probe_.softKey(SoftKey::kLeft) == "Done",
                fmt::format("a form with {} texts, the first \"{}\"", texts.size(),
                            texts.value(0).toStdString())};
  });
  moveToControl([this] { return onTextField(); });
  // Three characters give way, so that the text is sure to fit its field.
  driver_.press(kEditRecordScreen, Qt::Key_End);
  driver_.press(kEditRecordScreen, Qt::Key_Backspace, 3);
  driver_.act(kEditRecordScreen, [this] { probe_.type(kMark); });
  driver_.see(kEditRecordScreen, "Changed a text", "record-changed", [this] {
    const QString text = probe_.text(probe_.focus());
    return Seen{onTextField() && text.endsWith(kMark),
                "the box reads \"" + text.toStdString() + "\""};
  });
}

void Tour::writeNote() {
  moveToControl(
      [this] { return dynamic_cast<QPushButton*>(probe_.widget(probe_.focus())) != nullptr; });
  driver_.press(kEditRecordScreen, Qt::Key_Return);
  driver_.act(kNoteScreen, [this] { probe_.type(kNoteMark); });
  driver_.see(kNoteScreen, "Opened its note and wrote into it", "note", [this] {
    QString text;
    for (const QString& one : probe_.texts()) {
      if (one.contains(kNoteMark)) text = one;
    }
    return Seen{!text.isEmpty(), fmt::format("{} characters", text.size())};
  });
  driver_.press(kNoteScreen, Qt::Key_F1);
  driver_.press(kEditRecordScreen, Qt::Key_F1);
  driver_.see(kRecordListScreen, "Done with note and record", "list-changed", [this] {
    const QStringList rows = probe_.visibleRows().filter(kMark);
    return Seen{rows.size() == 1, "the list shows \"" + rows.value(0).toStdString() + "\""};
  });
}

Seen Tour::storedOnDisk() const {
  for (const StoredDatabase& stored : readStoredDatabases(databases_)) {
    if (stored.name != main_->name) continue;
    const bool ok = stored.record_count == main_->record_count && stored.count(kMark) == 1 &&
                    stored.count(kNoteMark) == 1;
    return {ok, fmt::format("\"{}\"; the file holds {} records and the new text and note {} and {} "
                            "times",
                            probe_.messageText().toStdString(), stored.record_count,
                            stored.count(kMark), stored.count(kNoteMark))};
  }
  return {false, "the file of " + main_->name + " cannot be read"};
}

void Tour::saveAndReopen() {
  driver_.choose(kRecordListScreen, "Save");
  driver_.see(kAnyQuestion, "Chose Save", "saved", [this] {
    Seen seen = storedOnDisk();
    seen.ok = seen.ok && probe_.messageText() == "File Saved";
    return seen;
  });
  driver_.press(kAnyQuestion, Qt::Key_Return);
  driver_.choose(kRecordListScreen, "Close");
  driver_.see(kChooserScreen, "Closed the database", "chooser-again",
              [this] { return sampleList(); });
  selectDatabase(*main_);
  driver_.act(kRecordListScreen, [this] {
    const ListView* list = probe_.list();
    probe_.press(Qt::Key_Home);
    for (int i = 0; i < list->rowCount(); ++i) {
      if (list->rowText(list->selectedRow()).contains(kMark)) break;
      probe_.press(Qt::Key_Down);
    }
  });
  driver_.press(kRecordListScreen, Qt::Key_Return);
  moveToControl([this] { return onTextField(); });
  driver_.see(kEditRecordScreen, "Opened it again, and the record", "reopened", [this] {
    const QStringList texts = probe_.texts().filter(kMark);
    return Seen{texts.size() == 1, "the box reads \"" + texts.value(0).toStdString() + "\""};
  });
  driver_.press(kEditRecordScreen, Qt::Key_Escape);
  driver_.press(kRecordListScreen, Qt::Key_Escape);
}

void Tour::arrange() {
  selectDatabase(*main_);
  driver_.see(kRecordListScreen, "Opened it to search in it", "list-again",
              [this] { return recordList(*main_); });
  editListAndPickDate(driver_);
  searchAndSwitchViews(driver_, kMark);
  tourSort(driver_);
  tourFilter(driver_);
  driver_.press(kRecordListScreen, Qt::Key_Escape);
}

void Tour::showOtherLetters() {
  selectDatabase(*second_);
  driver_.see(kRecordListScreen, "Opened " + second_->name, "letters", [this] {
    Seen seen = recordList(*second_);
    const QString shown = probe_.visibleRows().join(' ');
    const auto letter = std::find_if(shown.begin(), shown.end(),
                                     [](QChar c) { return c.unicode() >= 0x80 && c.isLetter(); });
    if (letter == shown.end()) return Seen{false, seen.what + "; no letter beyond ASCII is seen"};
    seen.what += "; among the letters \"" + QString(*letter).toStdString() + "\"";
    return seen;
  });
  lookAtPreferences();
  lookAtDetails(driver_);
  deleteAndTakeBack(driver_, second_->record_count);
  driver_.press(kRecordListScreen, Qt::Key_Escape);
}

void Tour::typePassword(const QString& password) {
  driver_.act(kPasswordScreen, [this, password] { probe_.type(password); });
  driver_.press(kPasswordScreen, Qt::Key_F1);
}

// Another program finds no password in the file, and all of its records.
Seen Tour::safeOnDisk() const {
  const auto stored = readStoredDatabase(databases_ + "/" + kSafeName + ".PDB");
  if (!stored) return {false, "the file cannot be read"};
  const std::size_t hidden = stored->count("XXX");
  return {stored->record_count == safe_->record_count && hidden == safe_->count("XXX"),
          fmt::format("the file holds {} records with {} enciphered values", stored->record_count,
                      hidden)};
}

void Tour::openSafe() {
  const auto listWith = [this](const QString& wanted) {
    return [this, wanted] {
      Seen seen = recordList(*safe_);
      const QStringList rows = probe_.visibleRows().filter(wanted);
      if (rows.isEmpty()) return Seen{false, seen.what + "; nothing shows " + wanted.toStdString()};
      seen.what += "; \"" + rows.first().toStdString() + "\"";
      return seen;
    };
  };
  selectDatabase(*safe_);
  driver_.see(kPasswordScreen, "Opened Safe, whose fields are enciphered", "password", [this] {
    return Seen{probe_.texts().contains("Enter Encryption Password"), "it asks for its password"};
  });
  driver_.press(kPasswordScreen, Qt::Key_F2);
  driver_.see(kRecordListScreen, "Gave none", "enciphered", listWith("XXXX"));
  driver_.press(kRecordListScreen, Qt::Key_Escape);
  selectDatabase(*safe_);
  typePassword("guess");
  driver_.see(kAnyQuestion, "Guessed", "wrong-password", [this] {
    return Seen{probe_.messageText().contains("does not properly decrypt"),
                "the program says \"" + probe_.messageText().toStdString() + "\""};
  });
  driver_.press(kAnyQuestion, Qt::Key_Return);
  typePassword(kSafePassword);
  driver_.see(kRecordListScreen, "Typed the right one", "deciphered", listWith("Wren-Lantern-83"));
  driver_.press(kRecordListScreen, Qt::Key_Escape);
  typePassword(kSafePassword);
  driver_.see(kChooserScreen, "Closed it with the password", "closed-safe",
              [this] { return safeOnDisk(); });
}

void Tour::runReport() {
  selectDatabase(*reported_);
  driver_.see(kRecordListScreen, "Opened " + reported_->name, "reported",
              [this] { return recordList(*reported_); });
  driver_.choose(kRecordListScreen, "Reports");
  driver_.act(kRunReportScreen, [this] { probe_.type(QString(kReportedField).left(1)); });
  driver_.see(kRunReportScreen, "Chose Reports and a field by its first letter", "report", [this] {
    const QString text = probe_.text(kReportText);
    return Seen{text.startsWith("Report for " + QString(kReportedField)),
                fmt::format("it says \"{}\"", text.simplified().toStdString())};
  });
  driver_.press(kRunReportScreen, Qt::Key_F1);
  driver_.see(kRunReportScreen, "Looked at its picture", "report-picture", [this] {
    const QWidget* picture = probe_.widget(kReportPicture);
    return Seen{picture != nullptr && picture->isVisible(), "the picture is shown"};
  });
  driver_.press(kRunReportScreen, Qt::Key_Escape);
  driver_.press(kRecordListScreen, Qt::Key_Escape);
}

void Tour::lookAtPreferences() {
  driver_.choose(kRecordListScreen, "Preferences");
  driver_.see(kPreferencesScreen, "Chose Preferences", "preferences", [this] {
    const QStringList texts = probe_.texts();
    return Seen{texts.contains("Auto Save Database When Closed"),
                fmt::format("a form with {} texts", texts.size())};
  });
  driver_.press(kPreferencesScreen, Qt::Key_F2);
}

// Info, a copy on the card and what becomes of it, About.
void Tour::manageFiles() {
  const auto rowsAre = [this](std::size_t wanted, const std::string& what) {
    return [this, wanted, what] {
      const auto rows = static_cast<std::size_t>(probe_.list()->rowCount());
      return Seen{rows == wanted, fmt::format("{}; {} rows", what, rows)};
    };
  };
  markDatabase(*second_);
  driver_.choose(kChooserScreen, "Info");
  driver_.see(kDatabaseInfoScreen, "Chose Info", "info", [this] {
    const QString count = QString::number(second_->record_count);
    const QStringList texts = probe_.texts();
    return Seen{texts.contains(qt(second_->name)) && texts.contains(count),
                "it says \"" + texts.join("\", \"").toStdString() + "\""};
  });
  driver_.press(kDatabaseInfoScreen, Qt::Key_F1);
  driver_.choose(kChooserScreen, "Copy to Card");
  driver_.see(kChooserScreen, "Chose Copy to Card", "copied",
              rowsAre(samples_.size() + 1, "a copy is listed"));
  driver_.press(kChooserScreen, Qt::Key_Down);
  driver_.choose(kChooserScreen, "Delete");
  driver_.see(kAnyQuestion, "Chose Delete", "delete", [this] {
    return Seen{probe_.messageText() == qt(second_->name),
                "it asks \"" + probe_.messageText().toStdString() + "\""};
  });
  driver_.press(kAnyQuestion, Qt::Key_F1);
  driver_.see(kChooserScreen, "Answered Yes", "deleted",
              rowsAre(samples_.size(), "the copy is gone"));
  driver_.choose(kChooserScreen, "About");
  driver_.see(kAboutScreen, "Chose About", "about", [this] {
    return Seen{probe_.texts().filter(TABELION_VERSION).size() > 0, "version " TABELION_VERSION};
  });
  driver_.press(kAboutScreen, Qt::Key_F1);
}

}  // namespace

int runTour(const ProgramOptions& options) {
  const QTemporaryDir own;
  const std::string pictures = QDir(qt(options.tour_folder)).absolutePath().toStdString();
  if (!own.isValid() || !QDir().mkpath(qt(pictures))) {
    fmt::print("The folder {} cannot be made. FAILED\n", pictures);
    return 1;
  }
  ProgramPlaces places = placesOf(options);
  const std::string home = own.path().toStdString();
  places.files = {home + "/documents", home + "/card"};
  places.settings.config_folder = home + "/config";
  places.settings.machine_folders = {home + "/machine"};
  QtDialogs dialogs(
      {options.screen.value_or(kPhoneScreen), options.zoom > 0 ? options.zoom : kTourZoom});
  TourDriver driver(dialogs, pictures);
  Tour tour(driver, places.files.documents_folder, readStoredDatabases(places.samples_folder));
  if (!tour.plan()) return 1;
  driver.start();
  SoleInstance instance;
  const int exit_code = runProgram(options, places, dialogs, instance);
  return driver.finish() && exit_code == 0 ? 0 : 1;
}

}  // namespace tabelion
