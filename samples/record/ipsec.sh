#!/bin/bash
# ipsec.pcap: security associations set up by IKE version 2 and, in main mode, by version 1, with a secret that both know; a
# proposal that is refused, an aggressive mode that is refused. Two pings go through each, in ESP behind UDP as where an
# address translator is met; each is taken down again.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
charon=/usr/lib/ipsec/charon
need "$charon" swanctl ip ping

# configure NAME ADDRESS PEER INNER THERE: a daemon's configuration; what is protected goes from INNER to THERE.
configure() {
  local name=$1 address=$2 peer=$3 inner=$4 there=$5
  mkdir -p "$work/$name/swanctl"
  cat >"$work/$name/strongswan.conf" <<END
charon {
  load = random nonce openssl kdf curve25519 hmac sha1 sha2 pem pkcs1 x509 pubkey kernel-libipsec kernel-netlink socket-default vici updown
  port = 500
  port_nat_t = 4500
  i_dont_care_about_security_and_use_aggressive_mode_psk = yes
  plugins { vici { socket = unix://$work/$name/vici } kernel-libipsec { allow_peer_ts = yes } }
  filelog { stderr { default = 1 } }
}
END
  {
    echo "connections {"
    connection() {
      cat <<END
  $1 {
    version = $2
    local_addrs = $address
    remote_addrs = $peer
    proposals = $3
    encap = $4
    aggressive = $5
    local {
      auth = psk
      id = $name.example
    }
    remote {
      auth = psk
    }
    children {
      $1 {
        esp_proposals = aes128-sha256
        local_ts = $inner
        remote_ts = $there
      }
    }
  }
END
    }
    if [ "$name" = left ]; then
      connection two 2 aes256-sha256-ecp256 no no
      connection strange 2 3des-md5-modp1024 no no
      connection behind 2 aes128gcm16-prfsha256-x25519 yes no
      connection main 1 aes128-sha1-modp2048 no no
      connection aggressive 1 aes128-sha256-modp2048 no yes
    else
      connection any 2 aes256-sha256-ecp256,aes128gcm16-prfsha256-x25519 no no
      connection main 1 aes128-sha1-modp2048 no no
      connection aggressive 1 aes128-sha256-modp2048 no yes
    fi
    echo "}"
    echo "secrets { ike { secret = \"a secret of both\" } }"
  } >"$work/$name/swanctl.conf"
}

control() {
  local host=$1 name=$2; shift 2
  on "$host" timeout 10 swanctl "$@" --uri "unix://$work/$name/vici" >>"$work/log" 2>&1 || true
}

connect_hosts
on "$left" ip address add 198.51.100.1/32 dev lo
on "$right" ip address add 198.51.100.2/32 dev lo
configure left 192.0.2.1 192.0.2.2 198.51.100.1 198.51.100.2
configure right 192.0.2.2 192.0.2.1 198.51.100.2 198.51.100.1
start_on "$left" env STRONGSWAN_CONF="$work/left/strongswan.conf" unshare -m bash -c "mount -t tmpfs none /run; exec $charon"
start_on "$right" env STRONGSWAN_CONF="$work/right/strongswan.conf" unshare -m bash -c "mount -t tmpfs none /run; exec $charon"
sleep 2
control "$left" left --load-all --file "$work/left/swanctl.conf"
control "$right" right --load-all --file "$work/right/swanctl.conf"
record cable udp or esp
for name in two strange behind main aggressive; do
  control "$left" left --initiate --child "$name"
  on "$left" ping -c 2 -i 0.3 -W 1 -I 198.51.100.1 198.51.100.2 >/dev/null || true
  control "$left" left --terminate --ike "$name"
done
keep_as ipsec.pcap
