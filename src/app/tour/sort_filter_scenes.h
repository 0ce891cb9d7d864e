// The tour's scenes of sorting and filtering.
#pragma once

#include "app/tour/tour_driver.h"

namespace tabelion {

// From the record list of a database with a sort and a text field, and back to it; every step is
// taken back in the end.
void tourSort(TourDriver& driver);
void tourFilter(TourDriver& driver);

}  // namespace tabelion
