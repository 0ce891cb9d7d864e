// Whether there is a session bus to speak to.
#pragma once

#include <QFileInfo>
#include <QString>

namespace tabelion {

// Without an address the library would start a bus of its own, on which nobody is.
inline bool hasSessionBus() {
  return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
         QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"));
}

}  // namespace tabelion
