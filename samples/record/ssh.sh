#!/bin/bash
# ssh.pcap: sessions whose keys are exchanged in the ways that servers know: by elliptic curves (X25519 alone and with
# sntrup761, NIST's), a group of RFC 4253's, a group that is asked for; host keys of three kinds, ciphers with and without
# their lengths in clear; ends that agree on nothing; over IPv6.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need sshd ssh ssh-keygen

for kind in rsa ecdsa ed25519; do ssh-keygen -q -t $kind -N '' -f "$work/host_$kind"; done
ssh-keygen -q -t ed25519 -N '' -f "$work/user"
mkdir -p /run/sshd
cat >"$work/sshd_config" <<END
HostKey $work/host_rsa
HostKey $work/host_ecdsa
HostKey $work/host_ed25519
AuthorizedKeysFile $work/user.pub
StrictModes no
PermitRootLogin yes
UsePAM no
PidFile none
KexAlgorithms +diffie-hellman-group14-sha1
HostKeyAlgorithms +ssh-rsa
MACs +hmac-sha1-96,hmac-md5
END

connect_hosts
start_on "$right" "$(command -v sshd)" -D -f "$work/sshd_config"
sleep 0.5
record cable 'tcp port 22'
# to HOST KEX HOSTKEY CIPHER MAC
to() {
  on "$left" ssh -F none -i "$work/user" -o StrictHostKeyChecking=no -o UserKnownHostsFile=/dev/null -o LogLevel=QUIET \
    -o KexAlgorithms="$2" -o HostKeyAlgorithms="$3" -o Ciphers="$4" -o MACs="$5" "root@$1" true </dev/null || true
}
to 192.0.2.2 sntrup761x25519-sha512@openssh.com ssh-ed25519 chacha20-poly1305@openssh.com hmac-sha2-256
to 192.0.2.2 curve25519-sha256 ecdsa-sha2-nistp256 aes128-gcm@openssh.com hmac-sha2-256
to 192.0.2.2 ecdh-sha2-nistp256 rsa-sha2-256 aes128-ctr hmac-sha2-256-etm@openssh.com
to 192.0.2.2 diffie-hellman-group14-sha1 ssh-rsa aes256-ctr umac-64@openssh.com
to 2001:db8::2 diffie-hellman-group-exchange-sha256 ssh-ed25519 aes128-ctr hmac-sha2-512
to 192.0.2.2 curve25519-sha256 ssh-ed25519 aes128-cbc hmac-sha2-256
keep_as ssh.pcap
