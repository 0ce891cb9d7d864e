#!/usr/bin/env bash
# A walk through every entry of the record list's menu and of the form's, in the real window, by
# keys alone, on a database with a field of every type; what it does is seen in the file.
#
#   records_walk.sh TABELION TABELION-CLI SAMPLES PICTURES
# shellcheck source=tests/e2e/window/walk.sh
source "$(dirname "$0")/walk.sh"

here=$(dirname "$0")
kinds=$databases/Kinds.PDB
mkdir -p "$databases"
"$cli" create "$kinds" --schema "$here/kinds.json" --data "$here/kinds.csv" >/dev/null

# What the file holds, as saved last: lists_as ORDER and texts, and how many records.
lists_as() { [[ $("$cli" export "$kinds" --format csv --fields Text | tail -n +2 | paste -sd' ') == "$1" ]]; }
count_of() { [[ $("$cli" info "$kinds" | grep -c "^records: *$1$") == 1 ]]; }
has() { "$cli" export "$kinds" --format csv | grep -qF -- "$1"; }
described() { "$cli" schema "$kinds" | grep -qF -- "$1"; }
# saves NAME TEST…: Save, and "File Saved" left.
saves() {
  local name=$1
  shift
  makes "$name" "$@" -- F2 6
  shows "$name, said so" Return
}

start
shows "list" Return

# Views: another one, its editor whole, and back.
shows "views menu" F2 1
shows "other view" 2
shows "edit views" F2 1 3
shows "new view" F2 1
xdotool type Third
shows "new view made" F1
shows "copied view" F2 2
shows "copied view named" C F1
shows "view edited" Return
shows "view left" F2
shows "fields setup" F2 4
shows "fields setup left" Escape
shows "view's sort" F2 5
shows "view's sort left" Escape
shows "view's filter" F2 6
shows "view's filter left" Escape
shows "delete view asked" F2 7
shows "delete view done" F1
shows "views done" F1
saves "views saved" described '"Third"'

# Find, find again, sort, filter.
shows "find" F2 4 1
xdotool type cedar
shows "found" F1
shows "not found again" F2 4 2
shows "not found left" Return
shows "sort" F2 4 3
shows "other field" Down
shows "sorted" F1
shows "filter" F2 4 4
shows "filter on" space
shows "filter's text" Down Down Down Down Down i r
shows "filtered" F1
saves "arranged" described '"enabled": true'

# Deleting in groups: no, then yes, and taken back.
shows "delete within asked" F2 2 1
shows "delete within refused" F2
shows "delete outside asked" F2 2 2
shows "delete outside done" F1
shows "undone" F2 7
shows "redone" F2 8
shows "undone again" ctrl+z
shows "delete all asked" F2 2 3
shows "delete all done" F1
saves "all deleted" count_of 0
shows "undone after the save" F2 7
shows "filter again" F2 4 4
shows "filter turned off" F2 1
shows "all records" F1
saves "all back" lists_as 'Alder Cedar Birch'

# Reports, Preferences.
shows "report" F2 3
shows "report left" Escape
shows "preferences" F2 5
shows "preferences left" F2

# The form: its width, the record's details, the way through the records.
shows "form" Home Return
shows "wider" F2 2
shows "narrower" F2 3
shows "details" F2 6
shows "details left" Escape
shows "last record" F2 7 4
shows "record before" F2 7 2
shows "next record" F2 7 3
shows "first record" F2 7 1

# Its boxes: a sign, a pop-up value and its list, a check, a note, a date and a time.
shows "amount" Down Down
shows "sign changed" F2 7
shows "pop-up values" Down space
shows "pop-up value" n Return
shows "pop-up list" F2 1
shows "new item" F2 6
xdotool type Seed
shows "item made" F1
shows "rename" F2 7
xdotool type Stone
shows "item renamed" F1
shows "item moved up" F2 2
shows "item moved down" F2 3
shows "item demoted" F2 4
shows "item promoted" F2 5
shows "item's deletion" F2 8
shows "taken back" ctrl+z
shows "pop-up list left" F1
shows "checked" Down space
shows "note" Down Down Return
shows "note written" S e e n F1
shows "date choices" Down Tab space
shows "a month" c Return
shows "a week later" Down
shows "date chosen" F1
shows "time choices" Down Tab space
shows "a time" c Return
shows "an hour later" Right
shows "time chosen" F1
shows "change stored" F1
saves "changed" has Seen
has '-1.5' || fail "the sign is not in the file"
has '2024-03-07' || fail "the date is not in the file"
has "08:30" || fail "the time is not in the file"
described '"Stone"' || fail "the item is not in the file"

# A new record given up, a new one made, one deleted and taken back.
shows "new given up" F1
shows "cancel" X F2 Up Return
shows "new again" F1
xdotool type Dogwood
shows "new made" F1
saves "new there" has Dogwood
shows "form of the last" End Return
shows "delete asked" F2 5
shows "deleted" F1
saves "gone" lists_as 'Alder Cedar Birch'
shows "brought back" F2 7

# Close: stay, then save.
shows "close asked" F2 9
shows "stayed" Escape
shows "close asked again" Escape
makes "closed" gone "$(lock_of "$kinds")" -- F1
has Dogwood || fail "what was brought back is not in the file"
makes "left" ended -- F2 9
wait "$program" || fail "the program ended with $?: $(cat "$work/program.log")"
all_whole
echo "$step pictures in $pictures; every database is whole"
