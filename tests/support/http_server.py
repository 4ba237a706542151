#!/usr/bin/python3
"""A web server for tests, that answers as a good one does and as bad ones do.

    http_server.py FOLDER

Listens on free ports of the loopback address and writes them into FOLDER/ports: that of the server,
one that nobody listens on, and one that takes no connection (a client waits there until it gives up).
Each request is kept as FOLDER/requests/000001 and so on, as it came: request line, headers, body.
It ends when FOLDER/ports is gone, and leaves a file FOLDER/ended. When there is a FOLDER/hang-up it
takes that away and ends all connections, and lets in whoever waits at the third port.

How it answers is told by the path, or, for any other path, by the next line of FOLDER/script (the
last line stays; the first one, a number, makes a new script known). DATA is in hexadecimal digits.

    text/DATA             200, with its length
    chunked/DATA          in chunks of three bytes
    until-close/DATA      without a length; the end of the connection ends it
    pieces/MS/DATA        with its length, in two halves with a pause between them
    size/N                N bytes: 0123456789012...
    late/MS/DATA          after a pause, before the first byte
    status/CODE/DATA      another status
    redirect/CODE/DATA    to the address in DATA
    loop                  to itself, again and again
    cookie/DATA           sets cookies, one of them for good
    cacheable/DATA        may be kept for a day
    auth/DATA             asks for a name and a password
    short/DATA            promises ten times as much, and closes
    reset/DATA            the same, and resets the connection
    close                 closes at once
    raw/DATA              these bytes in the place of a reply
    silent                nothing at all, and the connection stays
    drip-headers/MS       headers without end, a byte every MS milliseconds
    drip-body/MS          a body without end, likewise
    endless               a body without end, as fast as it is taken
    endless-headers       headers without end, a thousand bytes every five milliseconds
"""
import asyncio
import os
import socket
import struct
import sys

from aiohttp import web

POLL_SECONDS = 0.1
LONGEST_LIFE_SECONDS = 900


# What stands between a kind and its DATA.
WITH_ARGUMENT = ("pieces", "late", "status", "redirect")


def parse(spec):
    """The parts of a line or path, and the bytes that its DATA stands for (b'' if none)."""
    parts = spec.lstrip("/").split("/")
    place = 2 if parts[0] in WITH_ARGUMENT else 1
    try:
        data = bytes.fromhex(parts[place]) if place < len(parts) else b""
    except ValueError:
        data = b""
    return parts, data


class Raw:
    """Writes past the library, for replies that are none."""

    open = set()  # all that may last; see Server.hang_up

    def __init__(self, request):
        self.transport = request.transport
        self.open.add(self)

    def is_open(self):
        return self.transport is not None and not self.transport.is_closing()

    async def write(self, data):
        self.transport.write(data)
        while self.is_open() and self.transport.get_write_buffer_size() > 1 << 16:
            await asyncio.sleep(0.005)

    async def repeat(self, data, seconds):
        while self.is_open():
            await self.write(data)
            await asyncio.sleep(seconds)

    async def hold(self):
        while self.is_open():
            await asyncio.sleep(POLL_SECONDS)

    def close(self):
        self.open.discard(self)
        if self.transport is not None:
            self.transport.close()

    def reset(self):
        if self.transport is None:
            return
        self.transport.get_extra_info("socket").setsockopt(
            socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self.transport.abort()


HEAD = b"HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n"


async def broken(parts, data, raw):
    """The replies that the library would not send. False if it is none of them."""
    kind = parts[0]
    if kind in ("short", "reset"):
        await raw.write(HEAD + b"Content-Length: %d\r\n\r\n" % (len(data) * 10 + 10) + data)
        await asyncio.sleep(0.05)  # so that the part is read before the connection goes
        if kind == "reset":
            raw.reset()
    elif kind == "until-close":
        await raw.write(HEAD + b"Connection: close\r\n\r\n" + data)
    elif kind == "close":
        pass
    elif kind == "raw":
        await raw.write(data)
    elif kind == "silent":
        await raw.hold()
    elif kind == "drip-headers":
        await raw.write(HEAD + b"X-Drip: ")
        await raw.repeat(b"a", int(parts[1]) / 1000)
    elif kind == "drip-body":
        await raw.write(HEAD + b"Content-Length: 1000000\r\n\r\n")
        await raw.repeat(b"a", int(parts[1]) / 1000)
    elif kind == "endless":
        await raw.write(HEAD + b"Connection: close\r\n\r\n")
        await raw.repeat(b"a" * 4096, 0.001)
    elif kind == "endless-headers":
        await raw.write(HEAD)
        await raw.repeat(b"X-Endless: " + b"a" * 1000 + b"\r\n", 0.005)
    else:
        return False
    raw.close()
    return True


async def good(request, parts, data, loops):
    """loops: how often all of them were ended."""
    kind = parts[0]
    if kind == "text":
        return web.Response(body=data)
    if kind == "size":
        digits = b"0123456789"
        size = int(parts[1])
        return web.Response(body=(digits * (size // 10 + 1))[:size])
    if kind == "late":
        await asyncio.sleep(int(parts[1]) / 1000)
        return web.Response(body=data)
    if kind in ("chunked", "pieces"):
        response = web.StreamResponse()
        if kind == "chunked":
            response.enable_chunked_encoding()
            step, seconds = 3, 0.0
        else:
            response.content_length = len(data)
            step, seconds = (len(data) + 1) // 2 or 1, int(parts[1]) / 1000
        await response.prepare(request)
        for begin in range(0, len(data), step):
            await response.write(data[begin:begin + step])
            await asyncio.sleep(seconds)
        await response.write_eof()
        return response
    if kind == "status":
        return web.Response(status=int(parts[1]), body=data)
    if kind == "redirect":
        return web.Response(status=int(parts[1]), headers={"Location": data.decode()})
    if kind == "loop":
        mine = parts[1] if len(parts) > 1 else str(loops)
        if mine != str(loops):
            return web.Response(status=404)
        return web.Response(status=302, headers={"Location": "/loop/" + mine})
    if kind == "cookie":
        response = web.Response(body=data)
        response.set_cookie("session", "1")
        response.set_cookie("trace", "1", max_age=86400 * 365,
                            expires="Fri, 31 Dec 2100 00:00:00 GMT")
        return response
    if kind == "cacheable":
        return web.Response(body=data, headers={
            "Cache-Control": "public, max-age=86400", "ETag": '"1"',
            "Last-Modified": "Mon, 01 Jan 2024 00:00:00 GMT"})
    if kind == "auth":
        return web.Response(status=401, body=data,
                            headers={"WWW-Authenticate": 'Basic realm="test"'})
    return web.Response(status=500, text="the test server knows no " + kind)


KINDS = ("text size late chunked pieces status redirect loop cookie cacheable auth short reset "
         "until-close close raw silent drip-headers drip-body endless endless-headers").split()


class Server:
    def __init__(self, folder):
        self.folder = folder
        self.requests = os.path.join(folder, "requests")
        self.count = 0
        self.script = None
        self.line = 0
        self.loops = 0
        os.makedirs(self.requests, exist_ok=True)

    def write(self, path, data):
        """All of it, or nothing: who looks for the file never sees a part."""
        with open(path + ".new", "wb") as file:
            file.write(data)
        os.rename(path + ".new", path)

    def next_line(self):
        with open(os.path.join(self.folder, "script"), encoding="ascii") as file:
            script = file.read().split("\n")
        if script != self.script:
            self.script, self.line = script, 0
        lines = [line for line in script[1:] if line]
        line = lines[min(self.line, len(lines) - 1)]
        self.line += 1
        return line

    async def keep(self, request):
        lines = [f"{request.method} {request.raw_path} HTTP/{request.version[0]}.{request.version[1]}"
                 .encode("utf-8", "surrogateescape")]
        lines += [name + b": " + value for name, value in request.raw_headers]
        body = await request.read()
        self.count += 1
        self.write(os.path.join(self.requests, "%06d" % self.count),
                   b"\r\n".join(lines) + b"\r\n\r\n" + body)

    async def handle(self, request):
        await self.keep(request)
        parts, data = parse(request.path)
        if parts[0] not in KINDS:
            parts, data = parse(self.next_line())
        raw = Raw(request)
        try:
            if not await broken(parts, data, raw):
                return await good(request, parts, data, self.loops)
        except ConnectionResetError:  # whoever asked has gone
            pass
        finally:
            raw.open.discard(raw)
        raise asyncio.CancelledError  # the library has no reply to send

    def hang_up(self, full):
        """Ends what would last."""
        self.loops += 1
        for raw in list(Raw.open):
            raw.close()
        loop = asyncio.get_running_loop()
        loop.remove_reader(full)
        loop.add_reader(full, lambda: full.accept()[0].close())

    async def run(self):
        app = web.Application(client_max_size=1 << 20)
        app.router.add_route("*", "/{path:.*}", self.handle)
        runner = web.AppRunner(app, access_log=None, handle_signals=False)
        await runner.setup()
        site = web.TCPSite(runner, "127.0.0.1", 0)
        await site.start()
        port = site._server.sockets[0].getsockname()[1]

        refused = socket.socket()  # bound and never listening: nobody else gets the number
        refused.bind(("127.0.0.1", 0))
        full = socket.socket()  # the system drops further requests once its queue is full
        full.bind(("127.0.0.1", 0))
        full.listen(0)
        waiting = []
        for _ in range(4):
            waiting.append(socket.socket())
            waiting[-1].setblocking(False)
            waiting[-1].connect_ex(full.getsockname())

        ports = os.path.join(self.folder, "ports")
        self.write(ports, b"%d %d %d\n" % (port, refused.getsockname()[1], full.getsockname()[1]))
        loop = asyncio.get_running_loop()
        end = loop.time() + LONGEST_LIFE_SECONDS
        hang_up = os.path.join(self.folder, "hang-up")
        while os.path.exists(ports) and loop.time() < end:
            if os.path.exists(hang_up):
                self.hang_up(full)
                os.remove(hang_up)
            await asyncio.sleep(POLL_SECONDS)
        if os.path.isdir(self.folder):
            self.write(os.path.join(self.folder, "ended"), b"1")
        os._exit(0)  # at once, whatever is still being dripped


if __name__ == "__main__":
    asyncio.run(Server(sys.argv[1]).run())
