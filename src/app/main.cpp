#include <QIcon>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdlib>

#include "app/options.h"
#include "app/program.h"
#include "app/tour/tour.h"
#include "app/window_memory.h"
#include "platform/qt/desktop_look.h"
#include "platform/qt/guarded_loop.h"
#include "platform/qt/qt_instance.h"
#include "platform/qt/theme.h"
#include "platform/std/core_dumps.h"
#include "shell/run.h"

namespace {

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

constexpr const char* kActivationVariables[] = {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"};

// What the desktop gave us to come to the front with, or to hand on to the copy that runs.
std::string activationToken() {
  for (const char* variable : kActivationVariables) {
    if (isSet(variable)) return std::getenv(variable);
  }
  return {};
}

// It counts once, so what we start ourselves may not have it. The toolkit takes it from the
// environment when it shows the window, which it has done by the first event.
void forgetActivationToken() {
  QTimer::singleShot(0, qApp, [] {
    for (const char* variable : kActivationVariables) qunsetenv(variable);
  });
}

// The toolkit ends the process with a signal where it finds no display; that is no fault of ours
// to leave a memory image of.
void sayOrEnd(QtMsgType type, const QMessageLogContext&, const QString& text) {
  tabelion::sayToTerminal(text.toStdString() + '\n');
  if (type == QtFatalMsg) std::_Exit(tabelion::kExitNotStarted);
}

// The window as it was left the last time on a desktop of this size, unless somebody asks for
// another.
class WindowKeeper {
 public:
  WindowKeeper(const tabelion::ProgramOptions& options, const tabelion::ProgramPlaces& places)
      : settings_(places.settings), asked_(options.screen || options.zoom > 0) {
    const QSize available = QGuiApplication::primaryScreen()->availableSize();
    desktop_ = {available.width(), available.height()};
    frame_ = {.screen = options.screen.value_or(tabelion::kPhoneScreen),
              .zoom = options.zoom,
              .text_scale = QGuiApplication::font().pointSizeF() / kUsualPoints};
    if (asked_) return;
    if (const auto left = tabelion::RememberedWindow(settings_, desktop_)) {
      frame_.screen = left->screen;
      frame_.zoom = left->zoom;
    }
  }
  const tabelion::FrameOptions& options() const { return frame_; }
  void keep(const tabelion::PhoneFrame& frame) {
    if (asked_ || frame.isMaximized() || frame.isFullScreen() || !frame.wasSized()) return;
    tabelion::RememberWindow(settings_, desktop_, {frame.screenSize(), frame.scale().zoom()});
  }

 private:
  static constexpr double kUsualPoints = 10;

  tabelion::JsonSettings settings_;
  const bool asked_;
  tabelion::Size desktop_;
  tabelion::FrameOptions frame_;
};

}  // namespace

int main(int argc, char** argv) {
  tabelion::ParsedOptions parsed = tabelion::parseOptions(argc, argv);
  if (parsed.exit_code) return *parsed.exit_code;
  parsed.options.activation_token = activationToken();
  tabelion::forbidCoreDumps();
  const bool tour = !parsed.options.tour_folder.empty();
  const QTemporaryDir runtime;  // the toolkit wants one, and a machine without a session has none
  if (tour) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!isSet("XDG_RUNTIME_DIR")) qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
  } else if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !isSet("QT_QPA_PLATFORM")) {
    tabelion::sayToTerminal(
        "tabelion: there is no display to open the window on. Try --tour DIR, which needs none.\n");
    return tabelion::kExitNotStarted;
  }
  qInstallMessageHandler(sayOrEnd);
  tabelion::GuardedApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("tabelion"));
  QApplication::setDesktopFileName(QString::fromLatin1(tabelion::kApplicationId));
  QApplication::setWindowIcon(QIcon::fromTheme(QApplication::desktopFileName()));
  QApplication::setStyle(QStringLiteral("fusion"));
  QApplication::setQuitOnLastWindowClosed(false);
  const tabelion::Scheme guess =
      tabelion::schemeOf(QApplication::palette(), qEnvironmentVariable("GTK_THEME"));
  tabelion::theme::setScheme(parsed.options.scheme.value_or(guess));
  if (tour) return tabelion::runTour(parsed.options);
  const tabelion::ProgramPlaces places = tabelion::placesOf(parsed.options);
  WindowKeeper window(parsed.options, places);
  tabelion::QtDialogs dialogs(window.options());
  const tabelion::DesktopLook look(
      guess, {.scheme =
                  [&](tabelion::Scheme scheme) {
                    if (!parsed.options.scheme) dialogs.frame().setScheme(scheme);
                  },
              .text_scale = [&](double scale) { dialogs.frame().followTextScale(scale); }});
  tabelion::QtInstance instance;
  forgetActivationToken();
  const int exit_code = tabelion::runProgram(parsed.options, places, dialogs, instance);
  window.keep(dialogs.frame());
  if (exit_code == tabelion::kExitNoMemory) {
    tabelion::sayToTerminal("tabelion: there is not enough memory to go on.\n");
  }
  if (instance.problem().empty()) return exit_code;
  tabelion::sayToTerminal("tabelion: " + instance.problem() + ".\n");
  return tabelion::kExitNotStarted;
}
