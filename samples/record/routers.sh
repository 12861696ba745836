# shellcheck shell=bash
# FRR's daemons on the two hosts of hosts.sh, each with files and sockets of its own; read in by the recording scripts of
# routing protocols.
. "$(dirname "${BASH_SOURCE[0]}")/hosts.sh"
frr=/usr/lib/frr
[[ -x $frr/zebra ]] || { echo "$0: frr is needed" >&2; exit 1; }

# Starts a daemon with the configuration that stands on standard input: start_router HOST DAEMON.
start_router() {
  local folder=$work/$1
  install -d -o frr -g frr "$folder"   # the daemons give up root
  cat >"$folder/$2.conf"
  start_on "$1" "$frr/$2" -u frr -g frr -f "$folder/$2.conf" -i "$folder/$2.pid" -z "$folder/zebra.sock" \
    --vty_socket "$folder" --log "file:$folder/$2.log"
  local tries
  for ((tries = 0; tries < 50; tries++)); do
    [[ -S $folder/$2.vty ]] && return
    sleep 0.1
  done
  echo "$0: $2 did not start" >&2
  cat "$work/log" >&2
  exit 1
}

# Configures a running daemon: configure HOST DAEMON LINE...
configure() {
  local host=$1 daemon=$2 lines=(-c 'configure terminal') line
  shift 2
  for line; do lines+=(-c "$line"); done
  on "$host" vtysh --vty_socket "$work/$host" -d "$daemon" "${lines[@]}" >>"$work/log" 2>&1
}

# Both hosts' tables of routes, with a network behind each: 10.0.1.0/24 and 10.0.2.0/24.
start_tables() {
  local host number=0
  for host in "$left" "$right"; do
    number=$((number + 1))
    on "$host" ip link add inside type veth peer name station
    on "$host" ip link set inside up
    on "$host" ip link set station up
    start_router "$host" zebra <<CONFIG
hostname router$number
interface inside
 ip address 10.0.$number.1/24
 ipv6 address 2001:db8:$number::1/64
interface lo
 ip address 10.255.0.$number/32
CONFIG
  done
}
