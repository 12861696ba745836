# shellcheck shell=bash
# Two hosts of our own, each in a network namespace, with a cable between them; read in by the recording scripts.
#
#   left   192.0.2.1  2001:db8::1  02:00:00:00:00:01      the client, where the recording is made
#   right  192.0.2.2  2001:db8::2  02:00:00:00:00:02      the server
#
# Needs root, iproute2, ethtool and tcpdump. No packet leaves the namespaces. Everything is taken down at the end, whatever
# the end is.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd -P)
samples=$(dirname "$here")
work=$(mktemp -d)
chmod 755 "$work"   # servers that give up root read in it
left=qxleft$$
right=qxright$$
started=()

take_down() {
  local pid
  for pid in "${started[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait
  ip netns delete "$left" 2>/dev/null || true
  ip netns delete "$right" 2>/dev/null || true
  rm -rf "$work"
}
trap take_down EXIT

# For servers whose own helpers outlive them.
take_down_all() {
  local host
  for host in "$left" "$right"; do
    # shellcheck disable=SC2046
    kill -KILL $(ip netns pids "$host") 2>/dev/null || true
  done
  take_down 2>/dev/null
}

# Says what has to be installed when a program is not there.
need() {
  local program
  for program; do
    command -v "$program" >/dev/null || { echo "$0: $program is needed" >&2; exit 1; }
  done
}

on() { local host=$1; shift; ip netns exec "$host" "$@"; }

# Starts a program on a host in the background; it is ended with the script. Its pid is in $!.
start_on() {
  local host=$1; shift
  ip netns exec "$host" "$@" >>"$work/log" 2>&1 &
  started+=($!)
}

# Waits, five seconds at most, until a TCP port of the right host accepts.
await_port() {
  local tries
  for ((tries = 0; tries < 50; tries++)); do
    on "$right" bash -c ": </dev/tcp/127.0.0.1/$1" 2>/dev/null && return
    sleep 0.1
  done
  echo "$0: nothing listens on port $1" >&2
  cat "$work/log" >&2
  exit 1
}

# The cable, MTU 1500, with checksums and segments made in software, so that the capture shows them as on a real wire.
lay_cable() {
  need ip ethtool tcpdump
  ip netns add "$left"
  ip netns add "$right"
  ip link add cable netns "$left" address 02:00:00:00:00:01 type veth \
    peer name cable netns "$right" address 02:00:00:00:00:02
  local host
  for host in "$left" "$right"; do
    on "$host" ethtool -K cable tx off tso off gso off gro off >/dev/null
    on "$host" ip link set lo up
  done
  on "$left" ip address add 192.0.2.1/24 dev cable
  on "$right" ip address add 192.0.2.2/24 dev cable
  on "$left" ip address add 2001:db8::1/64 dev cable nodad
  on "$right" ip address add 2001:db8::2/64 dev cable nodad
}

# Before they are plugged in: the hosts have no addresses and speak no IPv6, so that only what a script starts is heard.
silence_hosts() {
  local host interface
  for host in "$left" "$right"; do
    on "$host" ip address flush dev cable
    for interface in all default cable; do
      on "$host" bash -c "echo 1 >/proc/sys/net/ipv6/conf/$interface/disable_ipv6"
    done
  done
}

plug_in() {
  on "$left" ip link set cable up
  on "$right" ip link set cable up
}

# Both ends up, and the first chatter of IPv6 over.
connect_hosts() {
  lay_cable
  plug_in
  sleep 2.5
}

# Records what an interface of the left host sees: record INTERFACE [FILTER].
record() {
  local interface=$1; shift
  ip netns exec "$left" tcpdump -Z root --immediate-mode -U -n -s 65535 -i "$interface" -w "$work/recorded.pcap" "$@" \
    2>"$work/tcpdump.log" &
  recorder=$!
  started+=("$recorder")
  local tries
  for ((tries = 0; tries < 50; tries++)); do
    grep -qs 'listening on' "$work/tcpdump.log" && return
    sleep 0.1
  done
  echo "$0: tcpdump did not start" >&2
  exit 1
}

# Ends the recording and puts it into samples/ under this name.
keep_as() {
  sleep 0.5
  kill -INT "$recorder"
  wait "$recorder" || true
  cp "$work/recorded.pcap" "$samples/$1"
  echo "$1: $(stat -c %s "$samples/$1") bytes, $(tcpdump -n -r "$samples/$1" 2>/dev/null | wc -l) packets"
}
