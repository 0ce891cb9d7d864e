// The socket between a start of the program and the copy that runs already.
//
// One request a connection, in the frame of platform/std/request_frame.h. The answer is one byte,
// 6; after it the connection ends.
#pragma once

#include <QLocalServer>
#include <functional>
#include <string>

#include "platform/instance.h"
#include "platform/result.h"

namespace tabelion {

class RequestServer {
 public:
  // Called for every request, within the socket's code: it has to be short.
  using Taker = std::function<void(const StartRequest&)>;

  explicit RequestServer(Taker taker) : taker_(std::move(taker)) {}
  // Replaces a socket that a copy left behind, so the caller must be the only one who listens. A
  // connection that sends anything but a request is ended, one that sends nothing after a while.
  Status listen(const std::string& socket_path);

 private:
  void serve(QLocalSocket* socket);
  void read(QLocalSocket* socket);

  const Taker taker_;
  QLocalServer server_;
};

enum class Delivery {
  kTaken,
  kNobodyThere,  // nobody listens, or whoever listened ended before the answer
  kNoAnswer,     // not within five seconds; it may still come to be carried out
  kTooLong,      // more than a request may have; nothing was sent
};
Delivery sendRequest(const std::string& socket_path, const StartRequest& request);

}  // namespace tabelion
