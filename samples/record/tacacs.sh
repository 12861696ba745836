#!/bin/bash
# tacacs.pcap: logins over TACACS+ with the right and a wrong password, by ASCII and PAP, and under another secret. The
# client is Perl's Authen::TacacsPlus; the server is tacacs_server.py, as Debian has none.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need perl python3

connect_hosts
start_on "$right" python3 "$here/tacacs_server.py" sample
await_port 49
record cable port 49

# Secret, password and type of a login.
ask() {
  # shellcheck disable=SC2016   # Perl's own variables
  on "$left" timeout 5 perl -MAuthen::TacacsPlus -e '
    my ($secret, $password, $type) = @ARGV;
    my $client = Authen::TacacsPlus->new(Host => "192.0.2.2", Port => 49, Key => $secret, Timeout => 3) or exit;
    print "$type: ", $client->authen("alice", $password, $type) ? "passed" : Authen::TacacsPlus::errmsg(), "\n";
    $client->close();' "$@" >>"$work/log" 2>&1 || true
}
readonly ascii=1 pap=2
ask sample 'open sesame' $ascii
ask sample 'wrong' $ascii
ask sample 'open sesame' $pap
ask sample 'wrong' $pap
ask another 'open sesame' $pap
keep_as tacacs.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
