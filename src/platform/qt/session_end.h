// The end of the user's session, as the system tells it.
#pragma once

#include <functional>
#include <memory>

namespace tabelion {

// From watch() on until its own end, SIGTERM, SIGINT and SIGHUP and the desktop's log-out are a
// call of `ending` in the event loop, where they would have ended the program. A signal that
// whoever started the program wants ignored stays ignored. One object at a time; needs a
// QGuiApplication.
class SessionEnd {
 public:
  explicit SessionEnd(std::function<void()> ending);
  ~SessionEnd();
  SessionEnd(const SessionEnd&) = delete;
  SessionEnd& operator=(const SessionEnd&) = delete;

  void watch();

 private:
  struct Watch;
  const std::function<void()> ending_;
  std::unique_ptr<Watch> watch_;
};

}  // namespace tabelion
