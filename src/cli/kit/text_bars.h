// Pictures of reports as bars of characters, a line each, for a terminal.
#pragma once

#include <string>

#include "cli/kit/streams.h"
#include "interchange/charts/report_chart.h"

namespace tabelion {

// In UTF-8; where the terminal shows ASCII alone, that but for the names of items.
std::string reportPictureAsBars(const ReportPicture& picture, const ChartTexts& texts,
                                const TerminalForm& terminal);

}  // namespace tabelion
