#!/bin/sh
# The whole job of `utilkit table` as a user times it, with peak memory:
#   table_e2e.sh TOOL [ROWS] [DIR]
# TOOL is the built tool (e.g. build/release/tools/utilkit), ROWS the rows
# of the generated file (default 10000000), DIR where the file and the
# output go (default /tmp/utilkit_e2e; the file is kept and reused).
# The file has the columns Channel (0..999), Time and Peak (doubles), Name
# (5,000 distinct mixed-case texts) and Flag (0/1), about 36 bytes a row.
# Each job runs three times; the figures are wall seconds and peak resident
# megabytes (GNU time), and the file's size for comparison.
set -eu
tool=$1
rows=${2:-10000000}
dir=${3:-/tmp/utilkit_e2e}
mkdir -p "$dir"
csv=$dir/table_$rows.csv
if [ ! -s "$csv" ]; then
  echo "generating $csv"
  awk -v rows="$rows" 'BEGIN {
    srand(42);
    for (i = 0; i < 5000; i++) {
      name = sprintf("gauge%d", int(rand() * 100000)); out = "";
      for (j = 1; j <= length(name); j++) {
        c = substr(name, j, 1);
        out = out (rand() < 0.5 ? toupper(c) : c);
      }
      names[i] = out;
    }
    print "Channel,Time,Peak,Name,Flag";
    for (i = 0; i < rows; i++) {
      printf "%d,%.2f,%.6f,%s,%d\n", int(rand() * 1000), int(rand() * 1000000) / 100,
             rand() * 1000003 / 7, names[int(rand() * 5000)], int(rand() * 2);
    }
  }' > "$csv"
fi
size_mb=$(( $(wc -c < "$csv") / 1000000 ))
echo "file: $csv, $size_mb MB"

run() {
  label=$1
  shift
  for i in 1 2 3; do
    /usr/bin/time -f "%e %M" -o "$dir/time.txt" "$@" > /dev/null
    read -r seconds kb < "$dir/time.txt"
    echo "$label: $seconds s, $((kb / 1024)) MB peak ($(( kb * 100 / 1024 / size_mb ))% of the file)"
  done
}

run "read, filter, sort, write" "$tool" table "$csv" --quiet --filter 'Peak > 50' \
  --sort Name,Time:desc -o "$dir/out.csv"
run "read only (a filter that keeps nothing)" "$tool" table "$csv" --quiet \
  --filter 'Peak < -1' -o "$dir/none.csv"
