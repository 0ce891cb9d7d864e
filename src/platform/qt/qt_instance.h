// One copy of the program per user, and what reaches it: other starts, the desktop, the session.
#pragma once

#include <QObject>
#include <deque>
#include <memory>
#include <string>

#include "platform/instance.h"
#include "platform/qt/desktop_service.h"
#include "platform/qt/request_socket.h"
#include "platform/qt/session_end.h"
#include "platform/std/instance_place.h"

namespace tabelion {

// Who holds a lock that the kernel keeps is the one copy; it listens on a socket beside the lock.
// Needs a QApplication that outlives it; all calls on its thread.
class QtInstance final : public Instance {
 public:
  QtInstance();
  ~QtInstance() override;

  // Takes the lock or hands the request over, five times at most, each with one look at the socket
  // and another half a second later: a copy that begins may not listen yet, one that ends may not
  // have let go. A copy that does not answer in time is not asked again.
  Outcome start(const StartRequest& request) override;
  // An empty receiver ends the listening: whoever asks from then on waits for the place.
  void listen(Receiver receiver) override;

  // Why kNobodyAnswers was the outcome, or why nobody can reach this copy; one sentence, else
  // empty.
  const std::string& problem() const { return problem_; }

 private:
  void beginFirst(const std::string& socket_path);
  Outcome giveUp(std::string problem);
  void take(const StartRequest& request);
  void deliverLater();
  void deliver();

  FileDescriptor lock_;
  Receiver receiver_;
  std::deque<StartRequest> waiting_;
  std::string problem_;
  QObject context_;  // of the deliveries that are due
  std::unique_ptr<RequestServer> server_;
  std::unique_ptr<DesktopService> desktop_;
  std::unique_ptr<SessionEnd> session_end_;
};

}  // namespace tabelion
