#!/usr/bin/env bash
# Runs the utilkit tool on hostile inputs, each under a time limit and a
# memory limit, and fails on a signal death, a limit overrun or a wrong
# answer. The inputs are made here, in a temporary folder, never committed.
#
#   scripts/hostile-inputs.sh build/release/tools/utilkit
#
# Each case names the exit code it expects (1: a clear refusal on standard
# error, 0: the right answer) and a text the tool's output must hold.
set -uo pipefail

tool=$(realpath "${1:?usage: hostile-inputs.sh PATH-TO-UTILKIT}")
examples=$(realpath "$(dirname "$0")/../examples")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

TIME_LIMIT=${TIME_LIMIT:-30}  # seconds a case may take
MEMORY_KB=${MEMORY_KB:-2097152}  # address space a case may use (2 GiB)
failed=0

# expect NAME CODE TEXT COMMAND...: runs COMMAND (the tool's arguments).
expect() {
  local name=$1 code=$2 text=$3
  shift 3
  local out rc
  out=$( (ulimit -v "$MEMORY_KB"; timeout "$TIME_LIMIT" "$tool" "$@") 2>&1)
  rc=$?
  if [ "$rc" -ne "$code" ] || ! grep -qF -- "$text" <<<"$out"; then
    echo "FAIL $name: exit $rc (expected $code and \"$text\")"
    head -c 600 <<<"$out"
    echo
    failed=1
  else
    echo "ok   $name"
  fi
}

repeat() { python3 -c "import sys; sys.stdout.write(sys.argv[1] * int(sys.argv[2]))" "$1" "$2"; }

# Files where a file is expected, endless streams, oversized ranges.
mkdir -p folder/inner
ln -s .. folder/inner/up
expect "table: a folder" 1 "folder" table folder
expect "table: an endless stream" 1 "/dev/zero" table /dev/zero
expect "table: a row range of 4e9" 1 "at most 100000000 rows" table "$examples/tests_a.csv@1-4000000000"
expect "table: row ranges adding up past the limit" 1 "at most 100000000 rows" \
  table "$examples/tests_a.csv@1-60000000,1-60000000"
expect "calc: an endless stream" 1 "/dev/zero" calc --expr 1 /dev/zero
expect "calc: a folder" 1 "folder" calc --expr 1 folder
expect "tree: json from a folder" 1 "is a directory" tree --from json folder
expect "tree: text from an endless stream" 1 "larger than" tree --from text /dev/zero
expect "tree: a folder linked into itself" 0 "inner" tree -s Name folder
long=$(repeat d 200)
(mkdir -p deep && cd deep && for _ in $(seq 30); do mkdir "$long" && cd "$long"; done && touch f.txt)
expect "tree: paths past the system's limit" 1 "cannot list" tree -s Name deep
expect "xml: an endless stream" 1 "/dev/zero" xml /dev/zero
expect "xml: a folder" 1 "folder" xml folder
expect "props: a folder" 1 "folder" props folder
expect "sections: an endless stream" 1 "/dev/zero" sections /dev/zero
expect "report: an endless stream" 1 "/dev/zero" report show /dev/zero
expect "report: a folder as text" 1 "is a directory" report new out.lxm --title t --page p --text folder
expect "report: an endless stream as text" 1 "larger than" report new out.lxm --title t --page p --text /dev/zero
expect "send: a folder" 1 "is a directory" send --port 9 --file folder
expect "send: an endless stream" 1 "larger than 64 MiB" send --port 9 --file /dev/zero
expect "send: an endless stream as a form part" 1 "larger than 64 MiB" send --port 9 --form a=@/dev/zero
expect "serve: an endless stream as the reply" 1 "larger than 64 MiB" serve --port 0 --reply /dev/zero

# Nesting without end.
printf '(%.0s' $(seq 50000) >parens && printf 'Peak > 1' >>parens && printf ')%.0s' $(seq 50000) >>parens
expect "filter: 50000 parentheses" 1 "nested more than" table -f "$(cat parens)" "$examples/tests_a.csv"
expect "filter: 50000 NOTs" 0 "run-005" table -f "$(repeat '!' 50000)Peak > 20" -c Test "$examples/tests_a.csv"
expect "filter: 8000 ANDs" 0 "run-005" table -f "Peak > 20$(repeat ' AND Peak > 20' 8000)" -c Test "$examples/tests_a.csv"
expect "calc: 50000 parentheses" 1 "nested too deeply" calc --expr "$(repeat '(' 50000)1$(repeat ')' 50000)" "$examples/signals.csv"
expect "calc: 150 parentheses, limit raised" 0 ",12.48,Load cell A,1,12.48" calc --max-depth 160 --expr "$(repeat '(' 150)#Peak#$(repeat ')' 150)" "$examples/signals.csv"
expect "calc: limit raised past the stack" 105 "not in range 1 to 1000" calc --max-depth 100000 --expr 1 "$examples/signals.csv"
expect "table: filter limit raised past the stack" 105 "not in range 1 to 2000" table --max-depth 100000 "$examples/tests_a.csv"
expect "tree: filter parentheses 300 deep" 1 "Filter syntax error" tree -f "$(repeat '(' 300)Name=a$(repeat ')' 300)" folder
repeat '[' 100000 >arrays.json && repeat ']' 100000 >>arrays.json
expect "tree: JSON arrays 100000 deep" 1 "must be a JSON object" tree arrays.json
repeat '{"name":"a","children":[' 20000 >objects.json && repeat ']}' 20000 >>objects.json
expect "tree: JSON nodes 20000 deep" 1 "nested more than 1000" tree objects.json
python3 -c "print('\n'.join(' ' * i + 'n' for i in range(5000)))" >deep.txt
expect "tree: text nodes 5000 deep" 1 "nested more than 1000" tree --from text deep.txt
{ repeat '<a>' 100000; repeat '</a>' 100000; } >deep.xml
expect "xml: elements 100000 deep" 1 "nested more than 1000" xml deep.xml
expect "xml: elements 100000 deep, limit raised past the output" 105 "not in range 1 to 10000" xml --max-depth 100000 deep.xml

# Sizes where quadratic work would show.
python3 - <<'EOF'
with open("props.xml", "w") as f:
    f.write("<Properties>")
    f.writelines('<Property name="p%d" type="long"/>' % i for i in range(100000))
    f.write("</Properties>")
with open("wide.csv", "w") as f:
    f.write(",".join("c%d" % i for i in range(100000)) + "\n")
    f.write(",".join(str(i) for i in range(100000)) + "\n")
EOF
expect "props: 100000 properties" 0 "p99999" props props.xml
expect "table: 100000 columns" 0 "99999" table -c c99999 wide.csv
python3 - <<'EOF'
n = 11000
with open("vars.csv", "w") as f:
    f.write(",".join("v%d" % i for i in range(n)) + "\n" + ",".join("1" * n) + "\n")
with open("vars.txt", "w") as f:
    f.write(" + ".join("#v%d#" % i for i in range(n)))
EOF
expect "calc: 11000 distinct variables" 0 ",11000" calc --expr "$(cat vars.txt)" vars.csv

# Silent wrong answers.
expect "filter: text against numbers" 1 "is not a number" table -f "Peak > abc" "$examples/tests_a.csv"
expect "table: row index at the 64-bit limit" 1 "row-index" table --row-index "No=9223372036854775807" "$examples/tests_a.csv"

exit $failed
