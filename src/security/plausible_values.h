// How much the deciphered values of a record look like values.
//
// The checksum of a record lets one wrong password in 256 pass, and what that makes of the values
// is noise. Noise is told from values by what values are like: texts have letters and end where
// they end, numbers have digits, dates lie in our time, keys of pop-ups are those of the list.
#pragma once

#include "engine/database.h"

namespace tabelion {

// For the flagged values of a record in clear: how many bits speak for values (above 0) or for
// noise (below). 0 when nothing can be said, for instance when all of them are empty. The
// logarithm, to base 2, of how much more often values look like this than noise does.
double plausibility(const Database& database, ByteView record);

}  // namespace tabelion
