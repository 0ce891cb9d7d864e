// The look that the user chose for the whole desktop: light or dark, contrast, size of text.
#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QPalette>
#include <QVariantMap>
#include <functional>

#include "platform/dialogs.h"

namespace tabelion {

// Light or dark by what the platform's palette shows, high contrast by the theme's name; for
// desktops whose settings nobody answers for.
Scheme schemeOf(const QPalette& palette, const QString& theme_name);

// Follows the desktop's settings (org.freedesktop.portal.Settings) while it lives. What they say
// arrives with the event loop, at the start as well as with every change; where nobody answers,
// nothing is told.
class DesktopLook final : public QObject {
  Q_OBJECT

 public:
  struct Told {
    std::function<void(Scheme)> scheme;
    std::function<void(double)> text_scale;  // 1 is the usual size
  };
  // `guess` is the scheme until the settings are there.
  DesktopLook(Scheme guess, Told told);

 private Q_SLOTS:
  void settingChanged(const QDBusMessage& signal);

 private:
  void askAll();
  void take(const QString& group, const QString& key, const QVariant& value);

  Told told_;
  bool dark_;
  bool contrast_;
};

}  // namespace tabelion
