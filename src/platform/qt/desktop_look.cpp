#include "platform/qt/desktop_look.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include "platform/qt/session_bus.h"

namespace tabelion {

namespace {

using SettingGroups = QMap<QString, QVariantMap>;

constexpr char kService[] = "org.freedesktop.portal.Desktop";
constexpr char kPath[] = "/org/freedesktop/portal/desktop";
constexpr char kInterface[] = "org.freedesktop.portal.Settings";
constexpr char kAppearance[] = "org.freedesktop.appearance";
constexpr char kGnome[] = "org.gnome.desktop.interface";

Scheme combined(bool dark, bool contrast) {
  if (contrast) return dark ? Scheme::kDarkContrast : Scheme::kLightContrast;
  return dark ? Scheme::kDark : Scheme::kLight;
}

bool isDark(Scheme scheme) {
  return scheme == Scheme::kDark || scheme == Scheme::kDarkContrast;
}

}  // namespace

Scheme schemeOf(const QPalette& palette, const QString& theme_name) {
  const bool contrast = theme_name.contains(QStringLiteral("contrast"), Qt::CaseInsensitive);
  const bool named_dark = theme_name.contains(QStringLiteral("dark"), Qt::CaseInsensitive) ||
                          theme_name.contains(QStringLiteral("inverse"), Qt::CaseInsensitive);
  const bool shown_dark =
      palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
  return combined(named_dark || shown_dark, contrast);
}

DesktopLook::DesktopLook(Scheme guess, Told told)
    : told_(std::move(told)),
      dark_(isDark(guess)),
      contrast_(guess == Scheme::kLightContrast || guess == Scheme::kDarkContrast) {
  if (!hasSessionBus()) return;
  qDBusRegisterMetaType<SettingGroups>();
  QDBusConnection::sessionBus().connect(
      QString::fromLatin1(kService), QString::fromLatin1(kPath), QString::fromLatin1(kInterface),
      QStringLiteral("SettingChanged"), this, SLOT(settingChanged(QDBusMessage)));
  askAll();
}

void DesktopLook::askAll() {
  QDBusMessage question =
      QDBusMessage::createMethodCall(QString::fromLatin1(kService), QString::fromLatin1(kPath),
                                     QString::fromLatin1(kInterface), QStringLiteral("ReadAll"));
  question << QStringList{QString::fromLatin1(kAppearance), QString::fromLatin1(kGnome)};
  auto* answer =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* done) {
    done->deleteLater();
    const QDBusPendingReply<SettingGroups> reply = *done;
    if (reply.isError()) return;
    const SettingGroups groups = reply.value();
    for (auto group = groups.begin(); group != groups.end(); ++group) {
      for (auto one = group->begin(); one != group->end(); ++one) {
        take(group.key(), one.key(), one.value());
      }
    }
  });
}

// Group, key and value.
void DesktopLook::settingChanged(const QDBusMessage& signal) {
  const QVariantList told = signal.arguments();
  if (told.size() != 3) return;
  take(told[0].toString(), told[1].toString(), told[2].value<QDBusVariant>().variant());
}

void DesktopLook::take(const QString& group, const QString& key, const QVariant& value) {
  if (group == QLatin1String(kGnome) && key == QStringLiteral("text-scaling-factor")) {
    return told_.text_scale(value.toDouble());
  }
  if (group != QLatin1String(kAppearance)) return;
  const bool wanted = value.toUInt() == 1;  // of the scheme: dark, of the contrast: high
  if (key == QStringLiteral("color-scheme")) {
    // 0 is no preference: what the palette shows stands.
    if (value.toUInt() != 0) dark_ = wanted;
  } else if (key == QStringLiteral("contrast")) {
    contrast_ = wanted;
  } else {
    return;
  }
  told_.scheme(combined(dark_, contrast_));
}

}  // namespace tabelion
