#!/usr/bin/env python3
"""A call through rtpengine on 127.0.0.1, which transcodes mu-law to G.729 and back.

rtpengine_call.py SPEECH.mulaw SPEECH.g729 GOT.g729 GOT.mulaw: one side sends mu-law, the other G.729, in packets of 20 ms; writes
what each side receives, and prints the libbcg729 that rtpengine has loaded and the processor seconds that it used."""

import os
import random
import re
import signal
import socket
import struct
import subprocess
import sys
import time

NG_PORT = 42000
SAMPLES, G729_OCTETS = 160, 20


def bencode(value):
    if isinstance(value, dict):
        return b"d" + b"".join(bencode(key) + bencode(value[key]) for key in sorted(value)) + b"e"
    if isinstance(value, list):
        return b"l" + b"".join(bencode(item) for item in value) + b"e"
    octets = value.encode() if isinstance(value, str) else value
    return b"%d:%s" % (len(octets), octets)


def ask(control, request):
    """Sends a request of rtpengine's control protocol and returns the reply as it is."""
    cookie = b"%d" % random.getrandbits(40)
    control.sendto(cookie + b" " + bencode(request), ("127.0.0.1", NG_PORT))
    return control.recv(65536)


def sdp(port, payload_type, codec):
    return "\r\n".join(["v=0", "o=- 1 1 IN IP4 127.0.0.1", "s=-", "c=IN IP4 127.0.0.1", "t=0 0", f"m=audio {port} RTP/AVP {payload_type}",
                        f"a=rtpmap:{payload_type} {codec}/8000", "a=ptime:20", "a=sendrecv"]) + "\r\n"


def side():
    receiver = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    receiver.bind(("127.0.0.1", 0))
    receiver.setblocking(False)
    return receiver


def packet(payload_type, sequence, payload):
    return struct.pack(">BBHII", 0x80, payload_type, sequence, SAMPLES * sequence, 7) + payload


def drain(receiver, payload_type, packets):
    while True:
        try:
            data = receiver.recv(2048)
        except BlockingIOError:
            return
        if data[1] & 127 == payload_type:
            packets[struct.unpack_from(">H", data, 2)[0]] = data[12:]


def main():
    mulaw, g729 = open(sys.argv[1], "rb").read(), open(sys.argv[2], "rb").read()
    engine = subprocess.Popen(["rtpengine", "--foreground", "--table=-1", "--interface=127.0.0.1", f"--listen-ng=127.0.0.1:{NG_PORT}",
                               "--port-min=42100", "--port-max=42300", "--log-level=3", "--log-stderr", "--num-threads=1"], stderr=subprocess.DEVNULL)
    try:
        caller, callee, control = side(), side(), side()
        control.setblocking(True)
        control.settimeout(5)
        for _ in range(60):
            try:
                if b"pong" in ask(control, {"command": "ping"}):
                    break
            except OSError:
                pass
            time.sleep(0.5)
        call = {"call-id": "one", "from-tag": "a", "ICE": "remove"}
        offer = ask(control, {**call, "command": "offer", "sdp": sdp(caller.getsockname()[1], 0, "PCMU"), "codec": {"transcode": ["G729"]}})
        answer = ask(control, {**call, "command": "answer", "to-tag": "b", "sdp": sdp(callee.getsockname()[1], 18, "G729")})
        to_caller_side, to_callee_side = (int(re.search(rb"m=audio (\d+)", reply).group(1)) for reply in (answer, offer))
        at_callee, at_caller = {}, {}
        begin = time.monotonic()
        for n in range(len(mulaw) // SAMPLES):
            caller.sendto(packet(0, n, mulaw[SAMPLES * n:SAMPLES * (n + 1)]), ("127.0.0.1", to_caller_side))
            callee.sendto(packet(18, n, g729[G729_OCTETS * n:G729_OCTETS * (n + 1)]), ("127.0.0.1", to_callee_side))
            time.sleep(max(0, begin + 0.02 * (n + 1) - time.monotonic()))
            drain(callee, 18, at_callee)
            drain(caller, 0, at_caller)
        for _ in range(100):
            drain(callee, 18, at_callee)
            drain(caller, 0, at_caller)
            if min(len(at_callee), len(at_caller)) == len(mulaw) // SAMPLES:
                break
            time.sleep(0.1)
        for path, packets in ((sys.argv[3], at_callee), (sys.argv[4], at_caller)):
            with open(path, "wb") as got:
                got.write(b"".join(packets[n] for n in sorted(packets)))
        loaded = {line.split()[-1] for line in open(f"/proc/{engine.pid}/maps") if "libbcg729" in line}
        fields = open(f"/proc/{engine.pid}/stat").read().split()
        print(*sorted(loaded), (int(fields[13]) + int(fields[14])) / os.sysconf("SC_CLK_TCK"))
    finally:
        engine.send_signal(signal.SIGTERM)
        engine.wait()


if __name__ == "__main__":
    main()
