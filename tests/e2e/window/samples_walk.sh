#!/usr/bin/env bash
# A walk over the sample databases in the real window, by keys alone: every entry of the record
# list's menu and of the form's is opened and left again, and nothing is changed by that.
#
#   samples_walk.sh TABELION TABELION-CLI SAMPLES PICTURES
# shellcheck source=tests/e2e/window/walk.sh
source "$(dirname "$0")/walk.sh"

# visits NAME KEY… -- KEY…: the first keys show something, the others lead back.
visits() {
  local name=$1 there=()
  shift
  while [[ $1 != -- ]]; do
    there+=("$1")
    shift
  done
  shift
  shows "$name" "${there[@]}"
  shows "$name left" "$@"
}

visit_database() {
  local name=$1 tool
  visits "$name, views" F2 1 -- Escape Escape
  visits "$name, deletions" F2 2 -- Escape Escape
  visits "$name, report" F2 3 -- Escape
  for tool in 1 3 4; do visits "$name, tool $tool" F2 4 "$tool" -- Escape; done
  visits "$name, preferences" F2 5 -- F2
  visits "$name, saved" F2 6 -- Return
  shows "$name, record" Home Return
  visits "$name, delete question" F2 5 -- F2
  visits "$name, details" F2 6 -- Escape
  visits "$name, next record" F2 7 3 -- F2 7 2
  shows "$name, new record" F2 4
  shows "$name, list again" F2 Up Return
  makes "$name, closed" gone "$(lock_of "$databases/$name.PDB")" -- F2 9
}

values_of() {
  local file
  for file in "$databases"/*.PDB; do "$cli" export "$file" --format csv; done
}

mkdir -p "$databases"
for sample in "$samples"/*.PDB; do
  if [[ $sample != */Safe.PDB ]]; then cp "$sample" "$databases/"; fi  # has a walk of its own
done
before=$(values_of)
start
row=0
for file in "$databases"/*.PDB; do
  keys Home
  for ((i = 0; i < row; ++i)); do keys Down; done
  name=$(basename "$file" .PDB)
  makes "$name" held "$file" -- Return
  visit_database "$name"
  row=$((row + 1))
done
[[ $(values_of) == "$before" ]] || fail "a record was changed by looking"
makes "left" ended -- F2 9
wait "$program" || fail "the program ended with $?: $(cat "$work/program.log")"
all_whole
echo "$step pictures in $pictures; every database is whole"
