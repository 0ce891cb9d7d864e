// What the tour does in the record list of a database that is open.
#pragma once

#include <cstddef>

#include "app/tour/tour_driver.h"

namespace tabelion {

// Opens the first record, looks at its details and leaves it unchanged.
void lookAtDetails(TourDriver& driver);

// Deletes all records and takes that back. `count` is how many there are.
void deleteAndTakeBack(TourDriver& driver, std::size_t count);

}  // namespace tabelion
