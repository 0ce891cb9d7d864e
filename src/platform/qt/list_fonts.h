// The two fonts of list rows with their measures, made once per zoom and not once per cell.
#pragma once

#include <QFont>
#include <QFontMetrics>

#include "platform/qt/theme.h"

namespace tabelion {

struct ListFonts {
  explicit ListFonts(const Scale& scale)
      : normal(theme::font(scale)),
        title(theme::font(scale, theme::kListTitlePixels, TextWeight::kSemiBold)),
        normal_metrics(normal),
        title_metrics(title) {}

  const QFont& font(TextWeight weight) const {
    return weight == TextWeight::kSemiBold ? title : normal;
  }
  const QFontMetrics& metrics(TextWeight weight) const {
    return weight == TextWeight::kSemiBold ? title_metrics : normal_metrics;
  }

  QFont normal;
  QFont title;
  QFontMetrics normal_metrics;
  QFontMetrics title_metrics;
};

}  // namespace tabelion
