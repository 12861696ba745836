#!/bin/bash
# qxview as the mapper of a streaming job: lines that name captures come on standard input, records go to standard output, and
# counters to standard error as "reporter:counter:GROUP,NAME,AMOUNT".
#
#   samples/cluster/mapper.sh COMMAND [ARGUMENT...]
#
#   COMMAND   fields --format tsv --no-header --prefix-file -e ip.src ..., or any other that takes --files-from
#
# Some engines put a position and a tab in front of the line: what stands behind the last tab is the path. A capture that cannot be
# read fails neither the others nor the job: it is counted, and named in the task's log. QXVIEW names the program.
set -euo pipefail
[ $# -ge 1 ] || { sed -n '5p' "$0" >&2; exit 2; }
said=$(mktemp)
lists=$(mktemp)
trap 'rm -f "$said" "$lists"' EXIT
sed 's/.*\t//' >"$lists"
captures=$(grep -c . "$lists" || true)
echo "reporter:status:$captures captures" >&2
status=0
if [ "$captures" -gt 0 ]; then
  "${QXVIEW:-qxview}" "$@" --keep-going --files-from "$lists" 2>"$said" | tee >(wc -l >"$lists.records") || status=$?
fi
wait
cat "$said" >&2
[ $status -eq 0 ] || [ $status -eq 3 ] || exit $status
records=$(cat "$lists.records" 2>/dev/null || echo 0)
rm -f "$lists.records"
unreadable=$(sed -n 's/^qxview: \([0-9]*\) of [0-9]* captures.*/\1/p' "$said" | tail -n 1)
echo "reporter:counter:qxview,captures,$captures" >&2
echo "reporter:counter:qxview,records,$records" >&2
echo "reporter:counter:qxview,unreadable captures,${unreadable:-0}" >&2
