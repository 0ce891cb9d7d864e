#!/bin/bash
# Compares whole runs of tabelion-cli at the record limit with plain programs and with SQLite, in
# turns, and prints the medians, the ratios and their targets as Markdown.
#
#   bench/whole_process.sh BUILD_FOLDER [ROUNDS]     (a build with TABELION_BENCH, see the README)
#
# With BENCH_TIME=processor it compares processor times instead of wall times: for a machine that
# others use as well. Waiting for the disk is not in them.
set -euo pipefail

build=${1:?usage: bench/whole_process.sh BUILD_FOLDER [ROUNDS]}
rounds=${2:-11}
time_column=2
if [[ ${BENCH_TIME:-wall} == processor ]]; then time_column=4; fi
cli=$build/bin/tabelion-cli
work=$(mktemp -d "${TMPDIR:-/tmp}/tabelion-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT

"$build/bin/make_records" "$work"
sed -i '$ s/^/amphora /' "$work/records.csv"  # a word that only the last record has
"$cli" create "$work/records.PDB" --schema "$work/records.json" --data "$work/records.csv"
"$cli" create "$work/empty.PDB" --schema "$work/records.json"
tail -n +2 "$work/records.csv" > "$work/rows.csv"
columns='Title text, Place text, Count integer, Weight real, Kind text, Checked integer, Day text,
  Hour text, Note text, Text text, Amount real, Number integer'
sqlite3 "$work/records.db" "CREATE TABLE records ($columns);" ".mode csv" \
  ".import $work/rows.csv records"

compare() { "$build/bin/compare_runs" "$rounds" "$@"; }

# row WHAT OURS THEIRS TARGET: a line of the table from the last comparison in $result.
row() {
  awk -F'\t' -v what="$1" -v ours="$2" -v theirs="$3" -v target="$4" -v column="$time_column" '
    $1 == ours { a = $column } $1 == theirs { b = $column }
    END { r = a / b
          printf "| %s | %.1f | %s | %.1f | %.2f | %s | %s |\n", what, a, theirs, b, r, target,
                 (r <= target ? "yes" : "no") }' <<< "$result"
}

size=$(stat -c %s "$work/records.PDB")
echo "65,000 records of 12 fields, $size bytes; medians of $rounds runs in turns, whole processes;"
echo "$(nproc) cores, $(awk -F': ' '/model name/ { print $2; exit }' /proc/cpuinfo)," \
  "$(awk '/MemTotal/ { printf "%.0f GB", $2 / 1e6 }' /proc/meminfo), $(date +%Y-%m-%d)"
echo
echo "| | Tabelion ms | compared with | ms | ratio | at most | met |"
echo "|---|---|---|---|---|---|---|"

result=$(compare \
  tabelion "" "$cli info $work/records.PDB" \
  "one read() and a walk" "" "$build/bin/plain_read $work/records.PDB" \
  "SQLite into memory" "" \
  "sqlite3 :memory: 'ATTACH \"$work/records.db\" AS f; CREATE TABLE t AS SELECT * FROM f.records;'")
row open tabelion "one read() and a walk" 0.6
row open tabelion "SQLite into memory" 0.55
peak=$(awk -F'\t' '$1 == "tabelion" { print $3 }' <<< "$result")

result=$(compare \
  tabelion "" "$cli rewrite $work/records.PDB $work/saved.PDB" \
  "read, write(), fsync()" "" "$build/bin/plain_write $work/records.PDB $work/plain.PDB" \
  "SQLite VACUUM INTO" "rm -f $work/vacuum.db" \
  "sqlite3 $work/records.db 'VACUUM INTO \"$work/vacuum.db\"'")
row "open and save" tabelion "read, write(), fsync()" 1.1
row "open and save" tabelion "SQLite VACUUM INTO" 1.0

result=$(compare \
  tabelion "" "$cli export $work/records.PDB --format csv >$work/out.csv" \
  "sqlite3 -csv" "" "sqlite3 -csv $work/records.db 'SELECT * FROM records' >$work/sqlite.csv")
row "CSV export" tabelion "sqlite3 -csv" 0.3

result=$(compare \
  tabelion "cp $work/empty.PDB $work/import.PDB" "$cli import $work/import.PDB $work/records.csv" \
  "SQLite .import" "rm -f $work/import.db; sqlite3 $work/import.db 'CREATE TABLE records ($columns);'" \
  "sqlite3 $work/import.db '.mode csv' '.import $work/rows.csv records'")
row "CSV import" tabelion "SQLite .import" 0.45

# A text that only the last record holds.
needle="lantern 65000"
"$cli" set "$work/records.PDB" 65000 "Text=$needle" > /dev/null
sqlite3 "$work/records.db" "UPDATE records SET Text = '$needle' WHERE rowid = 65000"
shown="rowid, Title, Place, Count, Weight, Kind, Checked, Day, Hour, Text, Amount, Number"
order="ORDER BY Title COLLATE NOCASE, Count DESC, Day"
where="WHERE Kind = 'Item 07' AND Weight BETWEEN 20000 AND 60000 AND Text LIKE '%harbour%'"
like="WHERE rowid LIKE '%$needle%'"
for column in ${shown//,/}; do like="$like OR $column LIKE '%$needle%'"; done
echo "SELECT $shown FROM records $order;" > "$work/order.sql"
echo "SELECT $shown FROM records $where;" > "$work/where.sql"
echo "SELECT $shown FROM records $like;" > "$work/like.sql"

result=$(compare \
  tabelion "" "$cli list $work/records.PDB --sort Title,Count:desc,Day --csv >$work/out.csv" \
  "SQLite ORDER BY" "" "sqlite3 -csv $work/records.db '.read $work/order.sql' >$work/sqlite.csv")
row "list in order, as CSV" tabelion "SQLite ORDER BY" 0.3

result=$(compare \
  tabelion "" "$cli list $work/records.PDB --sort Title,Count:desc,Day >$work/out.txt" \
  "SQLite ORDER BY" "" "sqlite3 -column $work/records.db '.read $work/order.sql' >$work/sqlite.txt")
row "list in order, aligned" tabelion "SQLite ORDER BY" 0.3

result=$(compare \
  tabelion "" "$cli list $work/records.PDB --csv --filter 'Kind is Item 07' \
    --filter 'Weight between 20000 and 60000' --filter 'Text contains harbour' >$work/out.csv" \
  "SQLite WHERE" "" "sqlite3 -csv $work/records.db '.read $work/where.sql' >$work/sqlite.csv")
row "list by three conditions" tabelion "SQLite WHERE" 0.6

result=$(compare \
  tabelion "" "$cli find $work/records.PDB '$needle' >$work/out.txt" \
  "SQLite LIKE" "" "sqlite3 -csv $work/records.db '.read $work/like.sql' >$work/sqlite.csv")
row "find in all fields" tabelion "SQLite LIKE" 0.15

for field in Count Amount; do  # in front of the note, behind it
  result=$(compare \
    tabelion "" "$cli report $work/records.PDB $field" \
    "SQLite aggregates" "" \
    "sqlite3 $work/records.db 'SELECT count(*), min($field), max($field), sum($field), avg($field)
       FROM records'")
  row "report on $field" tabelion "SQLite aggregates" 0.5
done

awk -v peak="$peak" -v size="$size" 'BEGIN {
  r = peak * 1024 / size
  printf "| peak memory after open | %.1f MB | the file | %.1f MB | %.2f | 1.5 | %s |\n",
         peak * 1024 / 1e6, size / 1e6, r, (r <= 1.5 ? "yes" : "no") }'

if [[ -x $build/bin/window ]]; then "$build/bin/window" "$work/records.PDB"; fi

echo
echo "In one process:"
echo
"$build/bin/in_process" "$work/records.PDB" --benchmark_min_time=0.3 2>/dev/null | grep -vE '^-'
