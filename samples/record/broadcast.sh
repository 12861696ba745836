#!/bin/bash
# broadcast.pcap: a server of RTMP (nginx with its module): ffmpeg publishes a tone and a picture to it, and plays them from it.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need ffmpeg nginx

connect_hosts
record cable "tcp port 1935"
cat >"$work/nginx.conf" <<CONFIG
load_module $(find /usr/lib/nginx -name ngx_rtmp_module.so | head -1);
worker_processes 1;
daemon off;
user root;
pid $work/nginx.pid;
error_log $work/error.log;
events { worker_connections 64; }
rtmp { server { listen 192.0.2.2:1935; chunk_size 512; application live { live on; } } }
CONFIG
start_on "$right" nginx -e "$work/error.log" -c "$work/nginx.conf"
sleep 1.5
publish() { ffmpeg -nostdin -loglevel error -re -f lavfi -i "sine=frequency=440:sample_rate=22050" -f lavfi -i "color=c=blue:s=32x32:r=5" \
  -t "$1" -c:a aac -b:a 16k -c:v flv1 -b:v 8k -metadata title=Tone -f flv rtmp://192.0.2.2/live/tone; }
export -f publish
start_on "$left" bash -c "publish 2"
sleep 1
on "$left" timeout 3 ffmpeg -nostdin -loglevel error -i rtmp://192.0.2.2/live/tone -t 0.2 -f null - >>"$work/log" 2>&1 || true
sleep 1
keep_as broadcast.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work/error.log"
