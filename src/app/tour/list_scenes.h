// What the tour does with the choices of a record's form.
#pragma once

#include "app/tour/tour_driver.h"

namespace tabelion {

// Begins and ends in the record list of a database with a pop-up and a date, and leaves it as it
// was: adds an item to the pop-up's list and takes that back, picks a date and cancels.
void editListAndPickDate(TourDriver& driver);

}  // namespace tabelion
