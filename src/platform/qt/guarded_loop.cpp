#include "platform/qt/guarded_loop.h"

#include <new>
#include <utility>

namespace tabelion {

bool GuardedApplication::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (const std::bad_alloc&) {
    if (innermost_ == nullptr) throw;
    ran_short_ = true;
    innermost_->exit(1);
    return true;
  }
}

int GuardedLoop::run() {
  auto* const application = dynamic_cast<GuardedApplication*>(QCoreApplication::instance());
  if (application == nullptr) return exec();
  outer_ = std::exchange(application->innermost_, this);
  const int code = exec();
  application->innermost_ = outer_;
  if (std::exchange(application->ran_short_, false)) throw std::bad_alloc();
  return code;
}

}  // namespace tabelion
