// How long the record list takes to paint: the first time after a database is opened, and after a
// page down. The real program on the toolkit's offscreen platform, at zoom 2.
//
//   record_list_paint DOCUMENTS     the first database of DOCUMENTS/Tabelion is opened
#include <fmt/format.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <deque>
#include <functional>
#include <vector>

#include "app/program.h"
#include "platform/qt/list_view.h"
#include "platform/qt/screen_probe.h"
#include "platform/std/sole_instance.h"
#include "screens/kit/screen_numbers.h"

namespace tabelion {

namespace {

constexpr int kOpenings = 7;
constexpr int kPages = 200;

struct Samples {
  std::vector<double> ms;
  double percentile(double part) {
    std::sort(ms.begin(), ms.end());
    return ms.empty() ? 0 : ms[static_cast<std::size_t>(part * double(ms.size() - 1))];
  }
};

// Opens the database, pages through it and closes it, again and again; then leaves the program.
class Measurement {
 public:
  explicit Measurement(QtDialogs& dialogs) : dialogs_(dialogs), probe_(dialogs.frame()) {}

  void next() {
    QTimer::singleShot(0, &dialogs_.frame(), [this] { step(); });
  }
  // Lines of the table that whole_process.sh prints: median against what it may take.
  void print() {
    row("first paint of the record list", first_, 4);
    row("page down in the record list", page_, 4);
    fmt::print(stderr,
               "{} rows; opened and shown in {:.1f} ms; slowest first paint {:.2f} ms, "
               "slowest page {:.2f} ms\n",
               rows_, opened_.percentile(0.5), first_.percentile(1), page_.percentile(1));
  }

 private:
  void step() {
    next();
    const ListView* list = probe_.list();
    if (probe_.resource() == kChooserScreen && list->rowCount() > 0) {
      if (int(opened_.ms.size()) == kOpenings) return probe_.press(Qt::Key_Escape);
      clock_.start();
      probe_.press(Qt::Key_Return);
      return;
    }
    if (probe_.resource() != kRecordListScreen || list->rowCount() == 0) return;
    opened_.ms.push_back(elapsed());
    rows_ = list->rowCount();
    clock_.start();
    list->viewport()->repaint();
    first_.ms.push_back(elapsed());
    for (int page = 0; page < kPages; ++page) {
      clock_.start();
      probe_.press(Qt::Key_PageDown);
      list->viewport()->repaint();
      page_.ms.push_back(elapsed());
    }
    probe_.press(Qt::Key_Escape);
  }
  static void row(const char* what, Samples& samples, double most_ms) {
    const double median = samples.percentile(0.5);
    fmt::print("| {} | {:.2f} | what it may take | {:.1f} | {:.2f} | 1 | {} |\n", what, median,
               most_ms, median / most_ms, median <= most_ms ? "yes" : "no");
  }
  double elapsed() const { return double(clock_.nsecsElapsed()) / 1e6; }

  QtDialogs& dialogs_;
  ScreenProbe probe_;
  QElapsedTimer clock_;
  Samples opened_;
  Samples first_;
  Samples page_;
  int rows_ = 0;
};

int measure(const char* documents) {
  const QTemporaryDir own;
  ProgramOptions options;
  options.documents_folder = documents;
  ProgramPlaces places = placesOf(options);
  places.settings.config_folder = own.path().toStdString();
  QtDialogs dialogs(FrameOptions{.zoom = 2});
  Measurement measurement(dialogs);
  measurement.next();
  SoleInstance instance;
  const int exit_code = runProgram(options, places, dialogs, instance);
  measurement.print();
  return exit_code;
}

}  // namespace

}  // namespace tabelion

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  QApplication::setStyle(QStringLiteral("fusion"));
  if (argc != 2) {
    fmt::print(stderr, "usage: record_list_paint DOCUMENTS\n");
    return 2;
  }
  return tabelion::measure(argv[1]);
}
