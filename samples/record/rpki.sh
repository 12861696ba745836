#!/bin/bash
# rpki.pcap: routers ask a cache who may announce which prefixes: rtrclient, BIRD and FRR, all data and what changed since,
# a change that the cache tells of, data that it no longer has.
# shellcheck source-path=SCRIPTDIR source=routers.sh
. "$(dirname "$0")/routers.sh"
need stayrtr rtrclient bird birdc vtysh

roas() {   # serial, lines of prefix, longest prefix and AS
  local serial=$1 line rest=
  shift
  for line; do
    # shellcheck disable=SC2086
    set -- $line
    rest="$rest${rest:+,}{\"prefix\":\"$1\",\"maxLength\":$2,\"asn\":\"AS$3\",\"ta\":\"test\",\"expires\":4000000000}"
  done
  printf '{"metadata":{"buildtime":"2026-01-01T00:00:0%sZ"},"roas":[%s],"bgpsec_keys":[{"asn":65001,"ski":"E2F075EC50E9F2EFCED81D44491D25D42A298D89","pubkey":"MFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAE4FxJr0n2bux1uX1Evl+QWwZYvIadPjLuFX2mxqKuAGUhKnr7VLLDgrE++l5p5eH2kWTNVAN22FUU3db/RKpE2w==","ta":"test","expires":4000000000}]}' "$serial" "$rest" >"$work/new.json"
  mv "$work/new.json" "$work/cache.json"
}

connect_hosts
roas 1 '192.0.2.0/24 24 65001' '198.51.100.0/24 28 65002' '2001:db8::/32 48 65001'
record cable "tcp port 323"
start_on "$right" stayrtr -bind 192.0.2.2:323 -cache "$work/cache.json" -refresh 3 -metrics.addr 127.0.0.1:9847 -checktime=false \
  -rtr.refresh 5 -rtr.retry 2 -rtr.expire 600
sleep 2
on "$left" timeout 3 rtrclient tcp -k -p 192.0.2.2 323 >>"$work/log" 2>&1 || true
cat >"$work/bird.conf" <<CONFIG
router id 10.255.0.1;
protocol device {}
roa4 table four;
roa6 table six;
protocol rpki cache { roa4 { table four; }; roa6 { table six; }; remote 192.0.2.2 port 323; refresh 4; retry 2; expire 600; }
CONFIG
start_on "$left" bird -f -c "$work/bird.conf" -s "$work/bird.ctl" -P "$work/bird.pid"
sleep 3
roas 2 '192.0.2.0/24 24 65001' '203.0.113.0/24 24 65003' '2001:db8:5::/48 48 65001'
sleep 6
kill "${started[-1]}"
start_tables
install -d -o frr -g frr "$work/$left"
cat >"$work/$left/bgpd.conf" <<CONFIG
router bgp 65001
rpki
 rpki polling_period 4
 rpki cache 192.0.2.2 323 preference 1
 exit
CONFIG
start_on "$left" "$frr/bgpd" -u frr -g frr -M rpki -f "$work/$left/bgpd.conf" -i "$work/$left/bgpd.pid" -z "$work/$left/zebra.sock" \
  --vty_socket "$work/$left"
sleep 6
keep_as rpki.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
