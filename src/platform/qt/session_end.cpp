#include "platform/qt/session_end.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>

#include "platform/std/posix.h"

namespace tabelion {
namespace {

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

// The one thing that a signal handler can reach.
std::atomic<int> signal_counter{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void onSignal(int) {
  const int error = errno;
  const std::uint64_t one = 1;
  (void)!::write(signal_counter.load(), &one, sizeof one);
  errno = error;
}

}  // namespace

struct SessionEnd::Watch {
  FileDescriptor counter{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  QSocketNotifier notifier{QSocketNotifier::Read};
  std::array<struct sigaction, kSignals.size()> before{};
};

SessionEnd::SessionEnd(std::function<void()> ending) : ending_(std::move(ending)) {}

SessionEnd::~SessionEnd() {
  if (!watch_) return;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], &watch_->before[i], nullptr);
  }
  signal_counter = -1;
}

void SessionEnd::watch() {
  watch_ = std::make_unique<Watch>();
  QObject::connect(&watch_->notifier, &QSocketNotifier::activated, &watch_->notifier, [this] {
    std::uint64_t count = 0;
    (void)!::read(watch_->counter.get(), &count, sizeof count);
    ending_();
  });
  QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, &watch_->notifier,
                   [this] { ending_(); });
  watch_->notifier.setSocket(watch_->counter.get());
  watch_->notifier.setEnabled(true);
  signal_counter = watch_->counter.get();
  struct sigaction action {};
  action.sa_handler = onSignal;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], nullptr, &watch_->before[i]);
    if (watch_->before[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
  }
}

}  // namespace tabelion
