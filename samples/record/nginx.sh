#!/bin/bash
# http-gzip.pcap: nginx, asked by curl for a page that comes compressed with gzip over many segments, once with a content
# length (compressed beforehand) and once in chunks (compressed on the way), and once in the clear as a short page.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need nginx curl gzip

mkdir "$work/site" "$work/body"
chmod 755 "$work/site"
# A page like a long table: about 100 KB of text that shrinks to some 20 KB, always the same.
awk 'BEGIN {
  print "<!DOCTYPE html>\n<html><head><title>Stations</title></head><body><table>"
  seed = 1
  for (row = 1; row <= 900; row++) {
    line = sprintf("<tr><td>station %04d</td>", row)
    for (column = 0; column < 4; column++) {
      seed = (seed * 16807) % 2147483647
      line = line sprintf("<td>packets %d</td>", seed % 100000)
    }
    print line "</tr>"
  }
  print "</table></body></html>"
}' >"$work/site/table.html"
cp "$work/site/table.html" "$work/site/chunked.html"
gzip -9 -n -k "$work/site/table.html"
echo '<html><body>It works.</body></html>' >"$work/site/index.html"

cat >"$work/nginx.conf" <<CONFIG
worker_processes 1;
daemon off;
pid $work/nginx.pid;
error_log $work/error.log;
events { worker_connections 16; }
http {
  types { text/html html; }
  access_log off;
  server_tokens off;
  client_body_temp_path $work/body;
  proxy_temp_path $work/body;
  fastcgi_temp_path $work/body;
  uwsgi_temp_path $work/body;
  scgi_temp_path $work/body;
  server {
    listen 80;
    root $work/site;
    location = /table.html { gzip_static on; }
    location = /chunked.html { gzip on; gzip_comp_level 6; }
  }
}
CONFIG

connect_hosts
start_on "$right" nginx -c "$work/nginx.conf" -e "$work/error.log"
await_port 80
record cable port 80
on "$left" curl -sS --compressed -o "$work/length.html" http://192.0.2.2/table.html
on "$left" curl -sS --compressed -o "$work/chunked.html" http://192.0.2.2/chunked.html
on "$left" curl -sS --compressed -o "$work/short.html" http://192.0.2.2/
cmp "$work/site/table.html" "$work/length.html"
cmp "$work/site/table.html" "$work/chunked.html"
keep_as http-gzip.pcap
