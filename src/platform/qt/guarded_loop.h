// Where the toolkit's loops end when memory runs out.
//
// Nothing may be thrown through the toolkit's own code. So what a handler could not get memory for
// is caught at the event that it was called for, the loop in which that event came ends, and only
// there, in our own code again, it is thrown on: from loop to loop, up to whoever ran the first.
#pragma once

#include <QApplication>
#include <QEventLoop>

namespace tabelion {

class GuardedLoop;

class GuardedApplication final : public QApplication {
 public:
  using QApplication::QApplication;
  bool notify(QObject* receiver, QEvent* event) override;

 private:
  friend class GuardedLoop;
  GuardedLoop* innermost_ = nullptr;
  bool ran_short_ = false;
};

// In an application that is not guarded a plain loop.
class GuardedLoop final : public QEventLoop {
 public:
  // As exec(); throws std::bad_alloc when memory ran out while it ran.
  int run();

 private:
  GuardedLoop* outer_ = nullptr;
};

}  // namespace tabelion
