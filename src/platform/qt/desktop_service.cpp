#include "platform/qt/desktop_service.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QUrl>
#include <QVariantMap>

#include "platform/qt/session_bus.h"

namespace tabelion {
namespace {

constexpr char kObjectPath[] = "/org/tabelion/Tabelion";

std::string activationToken(const QVariantMap& platform_data) {
  const QString token = platform_data.value(QStringLiteral("activation-token")).toString();
  if (!token.isEmpty()) return token.toStdString();
  return platform_data.value(QStringLiteral("desktop-startup-id")).toString().toStdString();
}

// The path's very bytes, which need not be UTF-8; empty for what is no file of this machine.
std::string localPath(const QString& uri) {
  const QUrl url(uri);
  const bool here = url.host().isEmpty() || url.host() == QStringLiteral("localhost");
  if (url.scheme() != QStringLiteral("file") || !here) return {};
  const QByteArray path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
  return path.startsWith('/') && !path.contains('\0') ? path.toStdString() : std::string();
}

class ApplicationAdaptor : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  ApplicationAdaptor(QObject* object, DesktopService::Taker taker)
      : QDBusAbstractAdaptor(object), taker_(std::move(taker)) {}

 public Q_SLOTS:
  void Activate(const QVariantMap& platform_data) {
    taker_({RequestKind::kActivate, {}, activationToken(platform_data)});
  }
  void Open(const QStringList& uris, const QVariantMap& platform_data,
            const QDBusMessage& message) {
    for (const QString& uri : uris) {
      const std::string path = localPath(uri);
      if (path.empty()) continue;
      return taker_({RequestKind::kOpenFile, path, activationToken(platform_data)});
    }
    message.setDelayedReply(true);
    QDBusConnection::sessionBus().send(message.createErrorReply(
        QDBusError::InvalidArgs, QStringLiteral("Tabelion opens files of this machine only")));
  }
  // The desktop entry names no actions, so there is none to carry out.
  void ActivateAction(const QString&, const QVariantList&, const QVariantMap&) {}

 private:
  const DesktopService::Taker taker_;
};

}  // namespace

void DesktopService::offer() {
  if (!hasSessionBus()) return;
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  new ApplicationAdaptor(&object_, taker_);  // the object's child
  // The object first: calls wait for the name only.
  offered_ = bus.registerObject(QString::fromLatin1(kObjectPath), &object_) &&
             bus.registerService(QString::fromLatin1(kApplicationId));
}

DesktopService::~DesktopService() {
  if (!offered_) return;
  QDBusConnection bus = QDBusConnection::sessionBus();
  bus.unregisterService(QString::fromLatin1(kApplicationId));
  bus.unregisterObject(QString::fromLatin1(kObjectPath));
}

}  // namespace tabelion

#include "desktop_service.moc"
