#!/bin/bash
# streaming.pcap: a server of RTSP (GStreamer's library) and ffmpeg that plays from it: options, a description, media over UDP with
# its reports and interleaved in the connection, a stream that is not there.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need ffmpeg python3

connect_hosts
record cable "tcp port 8554 or udp"
cat >"$work/server.py" <<'PYTHON'
import gi
gi.require_version("Gst", "1.0")
gi.require_version("GstRtspServer", "1.0")
from gi.repository import GLib, Gst, GstRtspServer
Gst.init(None)
server = GstRtspServer.RTSPServer.new()
server.set_address("192.0.2.2")
factory = GstRtspServer.RTSPMediaFactory.new()
factory.set_launch("( audiotestsrc is-live=true samplesperbuffer=160 ! audio/x-raw,rate=8000,channels=1 ! alawenc ! rtppcmapay name=pay0 pt=8 max-ptime=40000000 min-ptime=40000000 )")
server.get_mount_points().add_factory("/tone", factory)
server.attach(None)
GLib.MainLoop().run()
PYTHON
start_on "$right" /usr/bin/python3 "$work/server.py"
sleep 3
for transport in udp tcp; do
  on "$left" timeout 12 ffmpeg -nostdin -loglevel error -rtsp_transport $transport -i rtsp://192.0.2.2:8554/tone -t 1.2 -f null - >>"$work/log" 2>&1 || true
done
on "$left" timeout 5 ffmpeg -nostdin -loglevel error -i rtsp://192.0.2.2:8554/silence -t 1 -f null - >>"$work/log" 2>&1 || true
keep_as streaming.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
