#!/bin/bash
# http.pcap: Python's http.server, asked by curl: a page, its head, a listing, what is not there, what is not done, and two
# pages over one connection, over both IPv4 and IPv6.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need python3 curl

mkdir -p "$work/site/files"
echo '<html><head><title>Hello</title></head><body><p>A short page.</p></body></html>' >"$work/site/index.html"
printf 'name,packets\nleft,12\nright,14\n' >"$work/site/files/counts.csv"
touch -d '2026-01-02 03:04:05 UTC' "$work/site/index.html" "$work/site/files/counts.csv"

connect_hosts
start_on "$right" python3 -m http.server --directory "$work/site" --bind :: --protocol HTTP/1.1 80
await_port 80
record cable port 80
get() { on "$left" curl -sS -o /dev/null "$@"; }
get http://192.0.2.2/
get -I http://192.0.2.2/index.html
get http://192.0.2.2/missing.html?name=value
get -d 'user=guest&text=a+b' http://192.0.2.2/form
get -H 'Accept-Language: en' -H 'Cookie: session=0123456789abcdef' -e http://192.0.2.2/ \
  http://192.0.2.2/files/ -o /dev/null http://192.0.2.2/files/counts.csv
get -u guest:guest 'http://[2001:db8::2]/'
keep_as http.pcap
