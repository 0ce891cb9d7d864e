// What a screen reader is told: roles, names and states of what the program paints itself. The
// toolkit's own widgets speak for themselves.
#pragma once

namespace tabelion {

class ListView;

// Makes the interfaces of lists, steppers, menus, screens and message panels known; once per
// process, more do no harm.
void installAccessibility();
// The list's number of rows or its columns changed.
void rowsChanged(ListView& view);
// Another row is selected, or the list took the focus.
void announceRow(ListView& view);

}  // namespace tabelion
