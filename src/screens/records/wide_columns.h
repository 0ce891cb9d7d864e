// The record list's columns on screens wider than a phone's.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "services/application.h"

namespace tabelion {

// Gives what `room` has left beside the columns to those whose headings or texts are cut off, the
// least cut first, so that as many as possible show all they have. None grows beyond its texts, and
// none shrinks. Looks at some records, spread evenly over the list.
void GiveColumnsRoom(Application& app, const std::vector<int>& slots, int room,
                     const std::function<int(const std::u16string&)>& text_width,
                     std::vector<ListColumn>& columns);

}  // namespace tabelion
