#include "platform/qt/qt_instance.h"

#include <QThread>
#include <algorithm>
#include <utility>

namespace tabelion {
namespace {

constexpr int kAttempts = 5;
constexpr unsigned long kPauseMs = 500;

}  // namespace

QtInstance::QtInstance() = default;
QtInstance::~QtInstance() = default;

Instance::Outcome QtInstance::start(const StartRequest& request) {
  const auto place = findInstancePlace();
  if (!place) return giveUp(place.error().text);
  std::string running;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    auto lock = takeInstanceLock(place->lock_path);
    if (lock) {
      lock_ = std::move(*lock);
      beginFirst(place->socket_path);
      return Outcome::kFirst;
    }
    if (lock.error().kind != ErrorKind::kLocked) return giveUp(lock.error().text);
    running = lock.error().text;
    for (const unsigned long pause : {0ul, kPauseMs}) {
      QThread::msleep(pause);
      switch (sendRequest(place->socket_path, request)) {
        case Delivery::kTaken:
          return Outcome::kHandedOver;
        case Delivery::kNoAnswer:
          return giveUp(running + " but does not answer; it was asked, and may still do so");
        case Delivery::kTooLong:
          return giveUp(running + ", and the command line is too long to be handed over");
        case Delivery::kNobodyThere:
          break;
      }
    }
  }
  return giveUp(running + " but takes no requests");
}

Instance::Outcome QtInstance::giveUp(std::string problem) {
  problem_ = std::move(problem);
  return Outcome::kNobodyAnswers;
}

void QtInstance::beginFirst(const std::string& socket_path) {
  const auto taker = [this](const StartRequest& request) { take(request); };
  server_ = std::make_unique<RequestServer>(taker);
  const Status listening = server_->listen(socket_path);
  if (!listening) {
    qWarning("tabelion: other starts cannot reach this copy. %s", listening.error().text.c_str());
  }
  session_end_ = std::make_unique<SessionEnd>([this] { take({RequestKind::kQuit, {}, {}}); });
  session_end_->watch();
  desktop_ = std::make_unique<DesktopService>(taker);
  desktop_->offer();
}

void QtInstance::listen(Receiver receiver) {
  receiver_ = std::move(receiver);
  if (!receiver_) {
    server_.reset();
    desktop_.reset();
    return;
  }
  for (std::size_t i = 0; i < waiting_.size(); ++i) deliverLater();
}

void QtInstance::take(const StartRequest& request) {
  const auto ends = [](const StartRequest& one) { return one.kind == RequestKind::kQuit; };
  if (ends(request) && std::any_of(waiting_.begin(), waiting_.end(), ends)) return;
  waiting_.push_back(request);
  if (receiver_) deliverLater();
}

// One event a request, so that the next one is not held up by a dialog that this one opens.
void QtInstance::deliverLater() {
  QMetaObject::invokeMethod(
      &context_, [this] { deliver(); }, Qt::QueuedConnection);
}

void QtInstance::deliver() {
  if (!receiver_ || waiting_.empty()) return;
  const StartRequest request = std::move(waiting_.front());
  waiting_.pop_front();
  const Receiver receiver = receiver_;  // which may be replaced while it runs
  receiver(request);
}

}  // namespace tabelion
