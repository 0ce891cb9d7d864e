// A program that stays by itself: it neither looks for another copy nor hears from one.
#pragma once

#include "platform/instance.h"

namespace tabelion {

class SoleInstance : public Instance {
 public:
  Outcome start(const StartRequest&) override { return Outcome::kFirst; }
  void listen(Receiver) override {}
};

}  // namespace tabelion
