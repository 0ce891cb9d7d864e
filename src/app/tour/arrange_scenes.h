// What the tour does with an open list: it is searched and shown by another view.
#pragma once

#include <QString>

#include "app/tour/tour_driver.h"

namespace tabelion {

// Begins and ends in the record list of a database that has two views or more, and leaves the
// database as it was. `text` is in one of its records.
void searchAndSwitchViews(TourDriver& driver, const QString& text);

}  // namespace tabelion
