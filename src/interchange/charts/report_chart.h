// The picture beside a report: painted through the seam, as an SVG file, and in words.
#pragma once

#include <functional>
#include <string>

#include "interchange/text_encoding.h"
#include "platform/painting.h"
#include "query/format_settings.h"
#include "query/report_picture.h"

namespace tabelion {

// How a database's values are written. Both outlive what is given them.
struct ChartTexts {
  const FormatSettings& formats;
  const TextEncoding& encoding;
  bool week_starts_monday = false;
};

// The room of a text on one line in the font that the painter has.
struct TextRoom {
  std::function<int(const std::u16string&)> width;
  int height = 0;
};

// Nothing is painted outside the size, and nothing lies over anything else, however small it is.
// A `title` (UTF-8) stands above the charts; none in a window that says it anyway.
void paintReportPicture(CanvasPainter& painter, Size size, const ReportPicture& picture,
                        const ChartTexts& texts, const TextRoom& room,
                        const std::string& title = {});

// A whole SVG file in UTF-8.
std::string reportPictureAsSvg(const ReportPicture& picture, const ChartTexts& texts,
                               const std::string& title);

// What the picture shows, in UTF-8: for who cannot see it.
std::string reportPictureInWords(const ReportPicture& picture, const ChartTexts& texts);

}  // namespace tabelion
