#!/bin/bash
# vpn.pcap: tunnels that programs build: WireGuard, with keepalives and a ping; OpenVPN over UDP in the clear, signed and encrypted
# by keys that both know (tls-auth, tls-crypt) and by a key of the client's own (tls-crypt-v2), and over TCP; a ping through each.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need wireguard-go wg openvpn openssl ip ping

# certify NAME: a key and a certificate by the authority that is made first.
certify() {
  openssl req -newkey rsa:2048 -nodes -keyout "$work/$1.key" -subj "/CN=$1.example" -out "$work/$1.csr" 2>/dev/null
  openssl x509 -req -in "$work/$1.csr" -CA "$work/ca.pem" -CAkey "$work/ca.key" -days 3650 -out "$work/$1.pem" 2>/dev/null
}
openssl req -x509 -newkey rsa:2048 -nodes -keyout "$work/ca.key" -subj "/CN=An authority" -days 3650 -out "$work/ca.pem" 2>/dev/null
certify left
certify right
openvpn --genkey secret "$work/shared.key"
openvpn --genkey tls-crypt-v2-server "$work/right.v2"
openvpn --tls-crypt-v2 "$work/right.v2" --genkey tls-crypt-v2-client "$work/left.v2"

# guard HOST NAME ADDRESS: WireGuard over a device of its own.
guard() {
  LOG_LEVEL=error start_on "$1" wireguard-go -f "$2"
  sleep 0.5
  wg genkey >"$work/$2.key"
  wg pubkey <"$work/$2.key" >"$work/$2.pub"
  on "$1" ip address add "$3/24" dev "$2"
  on "$1" ip link set "$2" up mtu 1420
}

# tunnel PROTOCOL OPTIONS-OF-LEFT -- OPTIONS-OF-RIGHT: up, two pings, down.
tunnel() {
  local protocol=$1 mine=(); shift
  while [ "$1" != -- ]; do mine+=("$1"); shift; done
  shift
  local common=(--dev tun --verb 1 --ca "$work/ca.pem" --persist-key --cipher AES-256-GCM --data-ciphers AES-256-GCM)
  local of_server=(--proto "$protocol") of_client=(--proto "$protocol")
  [ "$protocol" = udp ] || { of_server=(--proto "$protocol-server"); of_client=(--proto "$protocol-client"); }
  start_on "$right" openvpn "${common[@]}" "${of_server[@]}" --server 10.9.0.0 255.255.255.0 --topology subnet --dh none \
    --tls-server --cert "$work/right.pem" --key "$work/right.key" "$@"
  local server=$!
  sleep 1
  start_on "$left" openvpn "${common[@]}" "${of_client[@]}" --client --remote 192.0.2.2 1194 --nobind \
    --cert "$work/left.pem" --key "$work/left.key" "${mine[@]}"
  local client=$!
  sleep 3
  on "$left" ping -c 2 -i 0.3 -W 1 10.9.0.1 >/dev/null || true
  kill "$client"; sleep 0.7
  kill "$server"; sleep 0.7
}

connect_hosts
guard "$left" qxwgleft 10.8.0.1
guard "$right" qxwgright 10.8.0.2
on "$right" wg set qxwgright listen-port 51820 private-key "$work/qxwgright.key" peer "$(cat "$work/qxwgleft.pub")" allowed-ips 10.8.0.1/32
record cable 'udp port 51820 or port 1194'
on "$left" wg set qxwgleft listen-port 51821 private-key "$work/qxwgleft.key" peer "$(cat "$work/qxwgright.pub")" \
  allowed-ips 10.8.0.2/32 endpoint 192.0.2.2:51820 persistent-keepalive 2
on "$left" ping -c 2 -i 0.3 -W 1 10.8.0.2 >/dev/null || true
sleep 2.5
on "$left" wg set qxwgleft peer "$(cat "$work/qxwgright.pub")" remove
tunnel udp --explicit-exit-notify 1 --
tunnel udp --tls-auth "$work/shared.key" 1 -- --tls-auth "$work/shared.key" 0
tunnel udp --tls-crypt "$work/shared.key" -- --tls-crypt "$work/shared.key"
tunnel udp --tls-crypt-v2 "$work/left.v2" -- --tls-crypt-v2 "$work/right.v2"
tunnel tcp --
keep_as vpn.pcap
