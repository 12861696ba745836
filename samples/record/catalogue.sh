#!/bin/bash
# catalogue.pcap: a library's catalogue (yaz-ztest) and who asks it (yaz-client): searches with operators and attributes, records in
# several syntaxes, terms scanned, results sorted, a database that is not there, a result set deleted, the end.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need yaz-client yaz-ztest

connect_hosts
printf '%s\n' apple compass computer comrade water >"$work/dummy-words"   # what terms are scanned in
start_on "$right" bash -c "cd '$work' && exec yaz-ztest tcp:192.0.2.2:210"
sleep 2
record cable "tcp port 210"
cat >"$work/asks" <<'ASKS'
auth anna secret
open tcp:192.0.2.2:210/Default
find @attr 1=4 computer
show 1+2
format sutrs
show 3
format xml
elements F
show 1
querytype rpn
find @and @attr 1=1003 @attr 4=1 smith @not @attr 1=4 "two words" @attr 1=7 0123
scan @attr 1=4 comp
sort 1=4 i<
base Missing
find water
delete 1
close
quit
ASKS
on "$left" timeout 20 yaz-client -f /dev/null <"$work/asks" >>"$work/log" 2>&1 || true
keep_as catalogue.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
