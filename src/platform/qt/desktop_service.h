// The program as the desktop starts and calls it: org.freedesktop.Application on the session bus.
#pragma once

#include <QObject>
#include <functional>

#include "platform/instance.h"

namespace tabelion {

// The bus name; the object's path is the same with slashes.
inline constexpr char kApplicationId[] = "org.tabelion.Tabelion";

class DesktopService {
 public:
  using Taker = std::function<void(const StartRequest&)>;

  explicit DesktopService(Taker taker) : taker_(std::move(taker)) {}
  ~DesktopService();
  DesktopService(const DesktopService&) = delete;
  DesktopService& operator=(const DesktopService&) = delete;

  // Activate and Open become requests. Of several files the first one is opened, since the window
  // shows one database. Without a bus, or when the name is taken there, nothing happens.
  void offer();

 private:
  const Taker taker_;
  QObject object_;
  bool offered_ = false;
};

}  // namespace tabelion
