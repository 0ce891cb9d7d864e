// A walk through the real program on the sample databases: first start, list, form, save, reopen.
// For machines without a display, and for whoever wants to see that everything works.
#pragma once

#include "app/options.h"

namespace tabelion {

// Works in temporary folders of its own; leaves numbered pictures in `options.tour_folder`. 0 when
// every step did what it should, 1 otherwise. Needs a QApplication.
int runTour(const ProgramOptions& options);

}  // namespace tabelion
