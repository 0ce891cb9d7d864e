// One copy of the program per user, and what reaches the running copy from outside.
#pragma once

#include <functional>
#include <string>

namespace tabelion {

enum class RequestKind {
  kCommandLine,  // another start's command line; an alarm comes this way too
  kOpenFile,     // the file `text` is to be opened
  kActivate,     // the window is to come to the front, nothing else
  kQuit,         // the user's session ends: close everything, and nobody can be asked
};

struct StartRequest {
  RequestKind kind = RequestKind::kCommandLine;
  std::string text;              // UTF-8: the command line, or an absolute path
  std::string activation_token;  // what the desktop gave the sender to raise a window; may be empty
};

class Instance {
 public:
  enum class Outcome {
    kFirst,          // this is the one copy now, until the object is destroyed
    kHandedOver,     // another copy has taken the request; its window comes to the front
    kNobodyAnswers,  // another copy holds the place but does not answer
  };
  using Receiver = std::function<void(const StartRequest&)>;

  virtual ~Instance() = default;
  // Once, before anything else is done with it. Waits for the other copy's answer for ten seconds
  // at most.
  virtual Outcome start(const StartRequest& request) = 0;
  // From now on every request is given to `receiver`, on the user-interface thread and in the event
  // loop of whatever screen is on top; those that came before wait. A sender is answered when its
  // request was taken, not when it was carried out.
  virtual void listen(Receiver receiver) = 0;
};

}  // namespace tabelion
