#include <QApplication>
#include <QIcon>
#include <QTemporaryDir>
#include <cstdlib>
#include <iostream>

#include "app/options.h"
#include "app/program.h"
#include "app/tour.h"
#include "platform/std/sole_instance.h"

namespace {

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

int main(int argc, char** argv) {
  const tabelion::ParsedOptions parsed = tabelion::parseOptions(argc, argv);
  if (parsed.exit_code) return *parsed.exit_code;
  const bool tour = !parsed.options.tour_folder.empty();
  const QTemporaryDir runtime;  // the toolkit wants one, and a machine without a session has none
  if (tour) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!isSet("XDG_RUNTIME_DIR")) qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
  } else if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !isSet("QT_QPA_PLATFORM")) {
    std::cerr << "tabelion: there is no display to open the window on. Try --tour DIR, which "
                 "needs none.\n";
    return 1;
  }
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("tabelion"));
  QApplication::setDesktopFileName(QStringLiteral("tabelion"));
  QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("org.tabelion.Tabelion")));
  QApplication::setStyle(QStringLiteral("fusion"));
  QApplication::setQuitOnLastWindowClosed(false);
  if (tour) return tabelion::runTour(parsed.options);
  tabelion::QtDialogs dialogs({parsed.options.screen, parsed.options.zoom});
  tabelion::SoleInstance instance;
  return tabelion::runProgram(parsed.options, tabelion::placesOf(parsed.options), dialogs,
                              instance);
}
