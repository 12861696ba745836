#!/bin/bash
# Decodes many captures on many machines: GNU parallel over ssh, each machine with qxview and the same folders.
#
#   samples/cluster/decode_captures.sh HOSTS CAPTURES FOLDER COMMAND [ARGUMENT...]
#
#   HOSTS      a machine a line, as `parallel --sshloginfile` takes them: "4/user@host" for four runs at once, ":" for this one
#   CAPTURES   a capture a line, by paths that hold on every machine
#   FOLDER     what comes of it, on a file system that they share; a run that broke off goes on where it was
#   COMMAND    fields, list, decode ... with its options; e.g. fields --format tsv --no-header --prefix-file -e ip.src -e dns.qry.name
#
# The captures are divided into pieces of $PIECE (100). A piece's records are written beside their place and renamed when they
# are whole, so that of a machine that dies nothing is left, nothing is lost and nothing is there twice: another one does its
# pieces. In the end FOLDER has `records` (all pieces in the order of the list) and `unreadable` (what qxview said of captures
# that it could not read to their end). Exit status: 0; 3 where captures were unreadable; 1 where pieces could not be done.
# QXVIEW names the program on the machines, PARALLEL_OPTIONS what else parallel is told.
set -euo pipefail
[ $# -ge 4 ] || { sed -n '2,5p' "$0" >&2; exit 2; }
hosts=$(realpath "$1")
captures=$(realpath "$2")
mkdir -p "$3/pieces"
folder=$(realpath "$3")
shift 3

# The pieces of an earlier run stay, if they are of the same list.
if ! cmp -s "$captures" "$folder/captures"; then
  rm -f "$folder"/pieces/*
  split -l "${PIECE:-100}" -a 6 -d "$captures" "$folder/pieces/list."
  cp "$captures" "$folder/captures"
fi
find "$folder/pieces" -name '*.part' -delete

# On the machine: status 3 is of single captures, which are named; whatever else fails is done again.
printf -v command '%q ' "${QXVIEW:-qxview}" "$@" --keep-going --files-from
do_piece="part={}.\$\$.part; $command {} >\"\$part\" 2>\"\$part.said.part\" </dev/null; status=\$?;
  [ \$status -eq 0 ] || [ \$status -eq 3 ] || { cat \"\$part.said.part\" >&2; exit \$status; };
  mv \"\$part.said.part\" {}.said && mv \"\$part\" {}.records"

todo() {
  for list in "$folder"/pieces/list.??????; do
    [ -e "$list.records" ] || printf '%s\n' "$list"
  done
}
failed=0
if [ -n "$(todo)" ]; then
  # shellcheck disable=SC2086  # several options
  todo | parallel --will-cite --no-run-if-empty --sshloginfile "$hosts" --retries 5 ${PARALLEL_OPTIONS:-} \
    --ssh "ssh -o BatchMode=yes -o ConnectTimeout=5 -o ServerAliveInterval=5 -o ServerAliveCountMax=2" "$do_piece" || failed=1
fi
missing=$(todo)
if [ -n "$missing" ]; then
  printf 'decode_captures: these pieces could not be done; run it again: %s\n' "$(paste -sd' ' <<<"$missing")" >&2
  exit 1
fi
[ $failed -eq 0 ] || echo "decode_captures: some pieces were done at a further try" >&2
cat "$folder"/pieces/list.??????.records >"$folder/records"
cat "$folder"/pieces/list.??????.said >"$folder/unreadable"
[ ! -s "$folder/unreadable" ] || exit 3
