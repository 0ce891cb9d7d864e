// What a query takes from outside the database.
#pragma once

#include "engine/calendar.h"
#include "query/field_text.h"
#include "query/format_settings.h"

namespace tabelion {

struct QuerySettings {
  FormatSettings formats;
  CalendarTime now;  // local; read once for a pass, so that no pass runs over midnight
  bool week_starts_monday = false;
  // The texts of lookup fields; none where linked databases are not at hand.
  const LookupText* lookup = nullptr;
};

}  // namespace tabelion
