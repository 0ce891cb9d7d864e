#!/usr/bin/env bash
# A walk through every entry of the chooser's menu in the real window, by keys alone, as a person
# with a keyboard does it; what it does is seen in the files. Along the way the program is killed
# at the worst moments, and every database must be whole after that.
#
#   chooser_walk.sh TABELION TABELION-CLI SAMPLES PICTURES
# shellcheck source=tests/e2e/window/walk.sh
source "$(dirname "$0")/walk.sh"

# First start, in an empty folder: the samples are offered. Killed while they are copied, the
# program offers them again, or shows those that arrived.
start
picture "first start asks"
crash F1
rm -rf "$databases"
start
makes "samples installed" count_is "$databases" "$(find "$samples" -name '*.PDB' | wc -l)" -- F1

# The categories on the left soft key: one of them, then all again.
shows "categories" F1
shows "one category" 2
shows "categories again" F1
shows "all" 1

# Open, and Preferences within: the first database of the list, by the menu and by the action key.
first=$databases/Books.PDB
shows "menu" F2
makes "opened" held "$first" -- 1
shows "preferences" F2 p Return
shows "preferences given up" F2
crash Down Return Down

# A record changed and left; killed while the file is saved, and saved.
start
shows "list" Return
shows "record" Return
keys Z q 7
shows "list changed" F1
crash F2 s Return
start
shows "list after the crash" Return
shows "record again" Return
keys Z q 8
shows "list changed again" F1
makes "saved" contains "$first" Zq8 -- F2 s Return
shows "said so" Return
makes "closed" gone "$(lock_of "$first")" -- Escape

# Info.
shows "info" F2 2
shows "info left" F1

# Beam waits for its day: nothing in its menu can be chosen.
shows "beam" F2 3
shows "beam left" F2

# Copy to the card; once more, with the question what to do; then back, and away again.
copy=$card/Tabelion/Books.PDB
crash F2 5
rm -f "$copy"
start
makes "copied" same "$first" "$copy" -- F2 5
"$cli" set "$copy" 1 Title=Other >/dev/null
shows "copy question" F2 5
shows "copy ignored" Escape
makes "copy deleted" gone "$copy" -- Down F2 4 F1
makes "moved" gone "$first" -- Home F2 6
makes "moved back" gone "$copy" -- Home F2 6
test -e "$first" || fail "the moved database is nowhere"
crash F2 6
if test -e "$copy"; then mv "$copy" "$first"; fi

# A package that was received: Refresh asks.
cp "$first" "$documents/Shelf.TBP"
start
shows "received" F1
test -e "$databases/Shelf.pdb" || fail "the received database did not arrive"
cp "$first" "$documents/Shelf.TBP"
shows "received again" F2 7
shows "replace question" F1
makes "not replaced" gone "$documents/Shelf.TBP" -- F2

# Delete: No, then Yes.
shows "delete question" F2 4
shows "not deleted" F2
crash F2 4 F1

# About, Refresh, Exit.
start
shows "about" F2 8
shows "about left" F1
keys F2 7
settle
picture "refreshed"
makes "left" ended -- F2 9
wait "$program" || fail "the program ended with $?: $(cat "$work/program.log")"
all_whole
echo "$step pictures in $pictures; every database is whole"
