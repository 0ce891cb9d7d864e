// The outside world of a program under test: other starts, and the end of the session.
#pragma once

#include "platform/instance.h"

namespace tabelion {

class FakeInstance : public Instance {
 public:
  Outcome start(const StartRequest& request) override {
    started = request;
    return outcome;
  }
  void listen(Receiver receiver) override { send = std::move(receiver); }

  Outcome outcome = Outcome::kFirst;
  StartRequest started;
  Receiver send;  // what another start says to the program
};

}  // namespace tabelion
