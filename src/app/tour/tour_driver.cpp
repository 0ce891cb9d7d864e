#include "app/tour/tour_driver.h"

#include <fmt/format.h>

#include <QTimer>
#include <cstdio>

#include "platform/qt/dialog_screen.h"
#include "platform/qt/message_screen.h"

namespace tabelion {

namespace {

constexpr int kPollMs = 20;
constexpr int kPatienceMs = 10000;
constexpr int kMostMenuEntries = 200;

}  // namespace

TourDriver::TourDriver(QtDialogs& dialogs, std::string picture_folder)
    : dialogs_(dialogs), probe_(dialogs.frame()), folder_(std::move(picture_folder)) {}

void TourDriver::act(int place, std::function<void()> action) {
  steps_.push_back({place, std::move(action), {}, {}, {}});
}

void TourDriver::press(int place, Qt::Key key, int times) {
  for (int i = 0; i < times; ++i) {
    act(place, [this, key] { probe_.press(key); });
  }
}

void TourDriver::choose(int place, const QStringList& path) {
  press(place, Qt::Key_F2);
  for (const QString& entry : path) {
    act(place, [this, entry] {
      for (int i = 0; i < kMostMenuEntries && probe_.markedEntry() != entry; ++i) {
        probe_.press(Qt::Key_Down);
      }
      probe_.press(probe_.markedEntry() == entry ? Qt::Key_Return : Qt::Key_Escape);
    });
  }
}

void TourDriver::see(int place, const std::string& did, const std::string& picture,
                     std::function<Seen()> check) {
  steps_.push_back({place, {}, did, picture, std::move(check)});
}

void TourDriver::start() {
  waiting_.start();
  arm(0);
}

void TourDriver::arm(int delay_ms) {
  QTimer::singleShot(delay_ms, &dialogs_.frame(), [this] { tick(); });
}

void TourDriver::tick() {
  if (steps_.empty()) return;
  const Step step = steps_.front();
  if (!isAt(step.place)) {
    if (waiting_.elapsed() > kPatienceMs) return fail(step, whereWeAre());
    return arm(kPollMs);
  }
  if (step.check) {
    if (!look(step)) return;
    steps_.pop_front();
    waiting_.restart();
    return arm(0);
  }
  steps_.pop_front();
  waiting_.restart();
  arm(0);  // before the action, which may not return until a later step has ended its dialog
  step.action();
}

bool TourDriver::look(const Step& step) {
  const Seen seen = step.check();
  if (!seen.ok && waiting_.elapsed() <= kPatienceMs) {
    arm(kPollMs);
    return false;
  }
  if (!seen.ok) {
    fail(step, seen.what);
    return false;
  }
  print(step, seen.what, true);
  return true;
}

void TourDriver::print(const Step& step, const std::string& what, bool ok) {
  ++number_;
  const std::string name = fmt::format("{:02}-{}.png", number_, step.picture);
  const bool saved = probe_.savePicture(QString::fromStdString(folder_ + "/" + name));
  if (!ok || !saved) ++failures_;
  fmt::print("{}. {}: {} … {} ({})\n", number_, step.did, what, ok ? "ok" : "FAILED",
             saved ? name : name + " could not be written");
  std::fflush(stdout);
}

void TourDriver::fail(const Step& step, const std::string& what) {
  Step shown = step;
  if (shown.did.empty()) shown.did = fmt::format("Waited for screen {}", step.place);
  if (shown.picture.empty()) shown.picture = "failed";
  print(shown, what, false);
  steps_.clear();
  // Nothing more is to be decided; the files are the tour's own.
  const std::vector<Layer*> layers = dialogs_.frame().layers();
  for (Layer* layer : layers) {
    if (auto* message = dynamic_cast<MessageScreen*>(layer)) message->answer(MessageAnswer::kNo);
    if (auto* screen = dynamic_cast<DialogScreen*>(layer)) screen->end(0);
  }
}

bool TourDriver::isAt(int place) const {
  if (place == kAnyQuestion) return probe_.message() != nullptr;
  return probe_.screen() != nullptr && probe_.resource() == place;
}

std::string TourDriver::whereWeAre() const {
  if (probe_.message() != nullptr) {
    return "the program says \"" + probe_.messageText().toStdString() + "\"";
  }
  return fmt::format("the screen is \"{}\" ({})", probe_.title().toStdString(), probe_.resource());
}

bool TourDriver::finish() {
  if (!steps_.empty() && failures_ == 0) {
    ++failures_;
    fmt::print("The program ended before the tour did. FAILED\n");
  }
  fmt::print(
      "{} The pictures are in {}\n",
      failures_ == 0 ? "Everything was as it should be." : "Something was not as it should be.",
      folder_);
  return failures_ == 0;
}

}  // namespace tabelion
