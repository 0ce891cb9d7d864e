// What the window takes of the processor at the record limit, from a key to the painted list: the
// real program on the toolkit's offscreen platform, driven by keys, at zoom 2.
//
//   window FILE.PDB     the file that make_records describes; a copy of it is worked on
#include <fmt/format.h>

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <ctime>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/program.h"
#include "platform/qt/dialog_screen.h"
#include "platform/qt/list_view.h"
#include "platform/qt/message_screen.h"
#include "platform/qt/screen_probe.h"
#include "platform/std/sole_instance.h"
#include "platform/std/std_clock.h"
#include "platform/std/std_files.h"
#include "query/sort.h"
#include "query/view.h"
#include "records.h"
#include "screens/arrange/sort_screen.h"
#include "screens/kit/screen_numbers.h"
#include "screens/records/record_form.h"
#include "screens/records/record_list.h"

namespace tabelion {
namespace {

constexpr int kRounds = 9;
constexpr int kPages = 200;
constexpr int kLetters = 208;
constexpr int kPopups = 4;  // a round
constexpr char kOtherView[] = "Weights";

double processorMs() {
  return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// What was measured under one name, and what it may take.
struct Samples {
  double most_ms = 0;
  double part = 0.5;  // the percentile that counts
  std::vector<double> ms{};

  double percentile(double of) const {
    std::vector<double> sorted = ms;
    std::sort(sorted.begin(), sorted.end());
    return sorted.empty() ? 0 : sorted[std::size_t(of * double(sorted.size() - 1) + 0.5)];
  }
};

// A walk through the program. Each step waits until its screen is there and ready. A key may open
// a dialog, whose loop then runs inside that key's step; so the next one is due before it begins.
class Walk {
 public:
  explicit Walk(QtDialogs& dialogs) : dialogs_(dialogs), probe_(dialogs.frame()) {}

  void start() { arm(); }
  void plan();
  void print() const;

 private:
  using Ready = std::function<bool()>;
  struct Step {
    int place;
    Ready ready;
    std::function<void()> action;
  };

  void at(int place, std::function<void()> action, Ready ready = {}) {
    steps_.push_back({place, std::move(ready), std::move(action)});
  }
  void press(int place, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    at(place, [this, key, modifiers] { probe_.press(key, modifiers); });
  }
  // Goes through the menu of the right soft key. Time runs from the choice of the last entry.
  void choose(const std::vector<QString>& entries);
  // Time runs from this key.
  void timed(int place, Qt::Key key) {
    at(place, [this, key] {
      began_ = processorMs();
      probe_.press(key);
    });
  }
  // Until the list is painted as it is then.
  void painted(const char* what, Ready ready = {}) {
    at(
        kRecordListScreen,
        [this, what] {
          probe_.list()->viewport()->repaint();
          samples_.at(what).ms.push_back(processorMs() - began_);
        },
        std::move(ready));
  }
  Ready rows(int count) {
    return [this, count] { return probe_.list()->rowCount() == count; };
  }
  Ready fewerRows() {
    return [this] { return probe_.list()->rowCount() < all_; };
  }
  Ready allRows() {
    return [this] { return probe_.list()->rowCount() == all_; };
  }

  void open();
  void pages();
  void letters();
  void sorts();
  void filters();
  void views();
  void popups();
  void deletions();
  void leave();

  void arm() {
    QTimer::singleShot(0, &dialogs_.frame(), [this] { tick(); });
  }
  void tick();

  QtDialogs& dialogs_;
  ScreenProbe probe_;
  std::deque<Step> steps_;
  double began_ = 0;
  int all_ = 0;
  std::map<std::string, Samples> samples_{
      {"open to the painted list", {100}},    {"page down", {4}},
      {"a letter of quick find", {16, 0.99}}, {"OK in the sort dialog", {60}},
      {"OK in the filter dialog", {25}},      {"choose a view with another sort and filter", {80}},
      {"open a pop-up of 60 items", {5}},     {"delete 30,000 records within a filter", {60}},
  };
};

void Walk::tick() {
  if (steps_.empty()) return;
  const Step& next = steps_.front();
  const bool is_there = next.place == 0
                            ? probe_.message() != nullptr
                            : probe_.screen() != nullptr && probe_.message() == nullptr &&
                                  probe_.resource() == next.place;
  if (!is_there || (next.ready && !next.ready())) return arm();
  const Step step = std::move(steps_.front());
  steps_.pop_front();
  arm();
  step.action();
}

void Walk::choose(const std::vector<QString>& entries) {
  press(kRecordListScreen, Qt::Key_F2);
  for (const QString& entry : entries) {
    const bool last = entry == entries.back();
    at(kRecordListScreen, [this, entry, last] {
      while (probe_.markedEntry() != entry) probe_.press(Qt::Key_Down);
      if (last) began_ = processorMs();
      probe_.press(Qt::Key_Return);
    });
  }
}

void Walk::plan() {
  for (int round = 0; round < kRounds; ++round) {
    open();
    if (round == 0) {
      pages();
      letters();
    }
    sorts();
    filters();
    popups();
    views();
    deletions();
    leave();
  }
  at(kChooserScreen, [this] {  // nothing more is to be decided: the files are the walk's own
    const std::vector<Layer*> layers = dialogs_.frame().layers();
    for (Layer* layer : layers) {
      if (auto* screen = dynamic_cast<DialogScreen*>(layer)) screen->end(0);
    }
  });
}

void Walk::open() {
  at(
      kChooserScreen,
      [this] {
        began_ = processorMs();
        probe_.press(Qt::Key_Return);
      },
      [this] { return probe_.list()->rowCount() > 0; });
  painted("open to the painted list", [this] { return probe_.list()->rowCount() > 0; });
  at(kRecordListScreen, [this] { all_ = probe_.list()->rowCount(); });
}

void Walk::pages() {
  for (int page = 0; page < kPages; ++page) {
    timed(kRecordListScreen, Qt::Key_PageDown);
    painted("page down");
  }
}

// Each is the first of a new search: a step of the selection forgets what was typed.
void Walk::letters() {
  for (int i = 0; i < kLetters; ++i) {
    press(kRecordListScreen, i % 2 == 0 ? Qt::Key_Down : Qt::Key_Up);
    at(kRecordListScreen, [this, i] {
      began_ = processorMs();
      probe_.type(QString(QChar('a' + i % 26)));
    });
    painted("a letter of quick find");
  }
}

// The other way round and back, so that the next round begins alike.
void Walk::sorts() {
  for (const int way : {1, 0}) {
    choose({"Tools", "Sort"});
    at(kSortScreen, [this, way] {
      probe_.screen()->control(SortWayChoice(0)).select(way);
      began_ = processorMs();
      probe_.press(Qt::Key_F1);
    });
    painted("OK in the sort dialog");
  }
}

// The first criterion is turned on, and off again.
void Walk::filters() {
  for (const Ready& ready : {fewerRows(), allRows()}) {
    choose({"Tools", "Filter"});
    press(kFilterScreen, Qt::Key_Space);
    timed(kFilterScreen, Qt::Key_F1);
    painted("OK in the filter dialog", ready);
  }
}

// In a record's form, until its menu is painted.
void Walk::popups() {
  press(kRecordListScreen, Qt::Key_Return);
  at(kEditRecordScreen, [this] {
    while (probe_.focus() != FormValue(kKindSlot)) probe_.press(Qt::Key_Down);
  });
  for (int i = 0; i < kPopups; ++i) {
    timed(kEditRecordScreen, Qt::Key_Return);
    at(
        kEditRecordScreen,
        [this] {
          dialogs_.frame().menus().grab();
          samples_.at("open a pop-up of 60 items").ms.push_back(processorMs() - began_);
          probe_.press(Qt::Key_Escape);
        },
        [this] { return probe_.menu().size() > int(kMaxItems); });
  }
  press(kEditRecordScreen, Qt::Key_Escape);
}

void Walk::views() {
  choose({"Views", kOtherView});
  painted("choose a view with another sort and filter", fewerRows());
}

void Walk::deletions() {
  choose({"Delete", "Within Filter"});
  timed(0, Qt::Key_F1);
  painted("delete 30,000 records within a filter", rows(0));
  press(kRecordListScreen, Qt::Key_Z, Qt::ControlModifier);
  at(
      kRecordListScreen, [] {}, [this] { return probe_.list()->rowCount() > 0; });
  choose({"Views", QString::fromUtf8(kDefaultViewName.data())});
  at(
      kRecordListScreen, [] {}, allRows());
}

void Walk::leave() {
  press(kRecordListScreen, Qt::Key_Escape);
  at(kSaveQuestionScreen, [this] {  // it was all taken back, or is to be given up
    probe_.press(Qt::Key_Down);
    probe_.press(Qt::Key_Return);
  });
}

void Walk::print() const {
  for (const auto& [what, samples] : samples_) {
    const double ms = samples.percentile(samples.part);
    fmt::print("| {} | {:.1f} | what it may take | {:.0f} | {:.2f} | 1 | {} |\n", what, ms,
               samples.most_ms, ms / samples.most_ms, ms <= samples.most_ms ? "yes" : "no");
  }
}

// A pop-up has as many items as it can.
void fill(FieldRecord& field) {
  for (std::size_t i = field.items.size(); i < kMaxItems; ++i) {
    PopupItem item{.text = fmt::format("Item {}", i)};
    item.key[0] = static_cast<std::uint8_t>(i);
    field.items.push_back(std::move(item));
  }
}

// A copy with an order, a full pop-up, and a view with another order and a filter.
bool prepare(const std::string& from, const std::string& to) {
  StdFiles files;
  StdClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
  const auto database = std::make_unique<Database>();
  database->path = from;
  if (openDatabase(*database, engine) != 1) return false;
  database->path = to;
  DatabaseRecord& schema = database->schema;
  schema.sort = {SortKey{kTitleSlot, kSortForward}, SortKey{kCountSlot, 0},
                 SortKey{kDaySlot, kSortForward}};
  fill(database->fields[kKindSlot]);
  sortRecords(*database, matchingSettings(LocaleInfo{}));
  viewsMenu(*database);  // makes the default one
  const int view = addView(*database);
  if (view < 0) return false;
  View& other = schema.views[std::size_t(view)];
  setAreaText(other.name, kOtherView);
  other.sort = {SortKey{kDaySlot, kSortForward}, SortKey{kTitleSlot, kSortForward}, SortKey{}};
  setCriterion(*database, 0, kWeightSlot, kLowest, kHighestDeleted);
  other.filters = schema.filters;
  schema.filters[0].enabled = 0;
  schema.views[0].filters = schema.filters;
  return saveDatabase(*database, engine) == 1;
}

int measure(const std::string& file) {
  const QTemporaryDir own;
  const std::string folder = own.path().toStdString();
  if (!QDir(own.path()).mkpath("Tabelion") || !prepare(file, folder + "/Tabelion/Records.PDB")) {
    fmt::print(stderr, "window: {} cannot be copied and prepared\n", file);
    return 1;
  }
  ProgramOptions options;
  options.documents_folder = folder;
  ProgramPlaces places = placesOf(options);
  places.settings.config_folder = folder;
  QtDialogs dialogs(FrameOptions{.zoom = 2});
  Walk walk(dialogs);
  walk.plan();
  walk.start();
  SoleInstance instance;
  const int exit_code = runProgram(options, places, dialogs, instance);
  walk.print();
  return exit_code;
}

}  // namespace
}  // namespace tabelion

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  QApplication::setStyle(QStringLiteral("fusion"));
  QApplication::setQuitOnLastWindowClosed(false);
  if (argc != 2) {
    fmt::print(stderr, "usage: window FILE.PDB\n");
    return 2;
  }
  return tabelion::measure(argv[1]);
}
