// Drives a scripted walk through the running program: waits for a screen, sends keys, looks at
// what is shown, and says in words what it saw.
//
// A key may open a dialog, whose loop then runs inside the sending of that key. So every step
// stands in a queue of its own, and the next one is due before the present one begins.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>
#include <string>

#include "platform/qt/qt_dialogs.h"
#include "platform/qt/screen_probe.h"

namespace tabelion {

inline constexpr int kAnyQuestion = -1;  // place of a message box

struct Seen {
  bool ok = false;
  std::string what;  // "42 records listed"
};

class TourDriver {
 public:
  TourDriver(QtDialogs& dialogs, std::string picture_folder);

  // Steps. `place` is the resource number of the screen that must be topmost.
  void act(int place, std::function<void()> action);
  void press(int place, Qt::Key key, int times = 1);
  // Opens the menu of the right soft key and chooses the entry with this text, or goes through
  // menus within it.
  void choose(int place, const QString& entry) { choose(place, QStringList{entry}); }
  void choose(int place, const QStringList& path);
  // Looks until the check is content, takes the picture, prints the line.
  void see(int place, const std::string& did, const std::string& picture,
           std::function<Seen()> check);

  // Starts with the first event loop that runs.
  void start();
  // Whether every step was done and every check content; prints the last line.
  bool finish();

  const ScreenProbe& probe() const { return probe_; }

 private:
  struct Step {
    int place;
    std::function<void()> action;  // of an act
    std::string did;               // of a see
    std::string picture;
    std::function<Seen()> check;
  };

  void arm(int delay_ms);
  void tick();
  bool look(const Step& step);  // true when the step is over
  bool isAt(int place) const;
  std::string whereWeAre() const;
  void print(const Step& step, const std::string& what, bool ok);
  void fail(const Step& step, const std::string& what);

  QtDialogs& dialogs_;
  ScreenProbe probe_;
  const std::string folder_;
  std::deque<Step> steps_;
  QElapsedTimer waiting_;
  int number_ = 0;
  int failures_ = 0;
};

}  // namespace tabelion
