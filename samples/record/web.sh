#!/bin/bash
# web.pcap: HTTP/2 without TLS: curl that goes over from HTTP/1.1 and with prior knowledge, several streams at once, a body that
# is sent, a range, errors, trailers, a server that gives up; a program of gRPC with its four kinds of calls and an error;
# WebSockets with text, bytes, fragments, pings, compression and both ends' closing.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need nginx curl nghttp nghttpd python3

connect_hosts
record cable "tcp port 80 or tcp port 8080 or tcp port 50051 or tcp port 8765"
mkdir "$work/www"
echo '<html><body>hello</body></html>' >"$work/www/index.html"
head -c 3000 /dev/zero | tr '\0' 'x' >"$work/www/big.txt"
cat >"$work/nginx.conf" <<CONFIG
worker_processes 1; daemon off; pid $work/nginx.pid; error_log $work/error.log; user root;
events {}
http {
  access_log off;
  client_body_temp_path $work/body; proxy_temp_path $work/proxy; fastcgi_temp_path $work/fast; uwsgi_temp_path $work/uwsgi; scgi_temp_path $work/scgi;
  server { listen 80 http2; http2_max_concurrent_streams 8; root $work/www; location /gone { return 410; } location /there { return 302 /index.html; } }
}
CONFIG
start_on "$right" nginx -c "$work/nginx.conf"
start_on "$right" nghttpd --no-tls -d "$work/www" --trailer 'checksum: 123' --echo-upload -m 4 8080
await_port 80
await_port 8080
ask() { on "$left" "$@" >>"$work/log" 2>&1 || true; }
ask curl -s --http2-prior-knowledge http://192.0.2.2/index.html http://192.0.2.2/gone http://192.0.2.2/there -H 'cookie: a=b' -H 'authorization: Basic dXNlcjpwYXNz'
ask curl -s --http2-prior-knowledge -r 5-10 http://192.0.2.2/index.html
ask curl -s --http2 http://192.0.2.2:8080/index.html
ask curl -s --http2-prior-knowledge -d 'name=value&more=1' http://192.0.2.2:8080/index.html
ask nghttp -n -p 200 -W 14 -w 14 --trailer 'x-end: yes' -d "$work/www/index.html" http://192.0.2.2:8080/index.html http://192.0.2.2:8080/big.txt
cat >"$work/grpc_server.py" <<'PYTHON'
import grpc
from concurrent import futures
def one(request, context):
    if request == b"\x0a\x03bad":
        context.abort(grpc.StatusCode.NOT_FOUND, "nobody of that name")
    context.set_trailing_metadata((("x-took", "1ms"),))
    return b"\x0a\x05hello\x10\x96\x01"
def many(request, context):
    for number in range(3):
        yield bytes([0x10, number])
def take(requests, context):
    return bytes([0x10, sum(1 for _ in requests)])
def both(requests, context):
    for request in requests:
        yield request
server = grpc.server(futures.ThreadPoolExecutor(2))
server.add_generic_rpc_handlers((grpc.method_handlers_generic_handler("greeter.Greeter", {
    "Hello": grpc.unary_unary_rpc_method_handler(one), "Count": grpc.unary_stream_rpc_method_handler(many),
    "Sum": grpc.stream_unary_rpc_method_handler(take), "Echo": grpc.stream_stream_rpc_method_handler(both)}),))
server.add_insecure_port("192.0.2.2:50051")
server.start()
server.wait_for_termination()
PYTHON
cat >"$work/grpc_client.py" <<'PYTHON'
import grpc
with grpc.insecure_channel("192.0.2.2:50051") as channel:
    hello = channel.unary_unary("/greeter.Greeter/Hello")
    hello(b"\x0a\x05world", timeout=3, metadata=(("x-request", "7"), ("data-bin", b"\x01\x02")))
    try:
        hello(b"\x0a\x03bad", timeout=3)
    except grpc.RpcError:
        pass
    list(channel.unary_stream("/greeter.Greeter/Count")(b"", timeout=3))
    channel.stream_unary("/greeter.Greeter/Sum")(iter([b"\x10\x01", b"\x10\x02"]), timeout=3)
    list(channel.stream_stream("/greeter.Greeter/Echo")(iter([b"\x0a\x01a", b"\x0a\x01b"]), timeout=3, compression=grpc.Compression.Gzip))
    try:
        channel.unary_unary("/greeter.Greeter/Missing")(b"", timeout=3)
    except grpc.RpcError:
        pass
PYTHON
start_on "$right" /usr/bin/python3 "$work/grpc_server.py"
sleep 3
ask timeout 10 /usr/bin/python3 "$work/grpc_client.py"
cat >"$work/sockets_server.py" <<'PYTHON'
import asyncio, websockets
async def talk(socket):
    async for message in socket:
        await socket.send(message)
        if message == "end":
            await socket.close(1001, "going away")
async def main():
    async with websockets.serve(talk, "192.0.2.2", 8765, subprotocols=["chat"]):
        await asyncio.Future()
asyncio.run(main())
PYTHON
cat >"$work/sockets_client.py" <<'PYTHON'
import asyncio, websockets
async def main():
    for compression in (None, "deflate"):
        async with websockets.connect("ws://192.0.2.2:8765/talk?room=1", subprotocols=["chat"], compression=compression,
                                      extra_headers={"Authorization": "Bearer secret"}) as socket:
            await socket.send("hello hello hello hello")
            await socket.recv()
            await socket.send(bytes(range(140)))
            await socket.recv()
            await socket.send(["in ", "three ", "parts"])
            await socket.recv()
            await (await socket.ping(b"there?"))
            if compression:
                await socket.send("end")
                try:
                    while True:
                        await socket.recv()
                except websockets.ConnectionClosed:
                    pass
asyncio.run(main())
PYTHON
start_on "$right" /usr/bin/python3 "$work/sockets_server.py"
sleep 2
ask timeout 10 /usr/bin/python3 "$work/sockets_client.py"
keep_as web.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
