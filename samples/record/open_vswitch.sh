# shellcheck shell=bash disable=SC2154 # what stands in hosts.sh
# A switch of Open vSwitch on a host, in user space; read in behind hosts.sh by the scripts that need one.
need ovs-vswitchd ovsdb-server ovsdb-tool ovs-vsctl ovs-ofctl

vsctl() { OVS_RUNDIR=$work/$1 ovs-vsctl --db="unix:$work/$1/db.sock" --timeout=10 "${@:2}" >>"$work/log"; }

await_file() { for _ in $(seq 50); do [ -e "$1" ] && return; sleep 0.1; done; }

# Starts it on this host, with a database, sockets and pid files of its own.
start_open_vswitch() {
  local folder=$work/$1
  mkdir "$folder"
  ovsdb-tool create "$folder/conf.db" /usr/share/openvswitch/vswitch.ovsschema
  OVS_RUNDIR=$folder start_on "$1" ovsdb-server --remote="punix:$folder/db.sock" --pidfile="$folder/db.pid" \
    --unixctl="$folder/db.ctl" "$folder/conf.db"
  await_file "$folder/db.sock"
  vsctl "$1" --no-wait init
  OVS_RUNDIR=$folder start_on "$1" ovs-vswitchd "unix:$folder/db.sock" --pidfile="$folder/switch.pid" \
    --unixctl="$folder/switch.ctl" --disable-system
}
