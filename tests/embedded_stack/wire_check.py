"""Checks the stack from outside: scapy, which knows nothing of it, takes part as a node.

Usage: wire_check.py FIELD_PROVIDER. The provider offers service 0x4711 in version 3.7 with one field.
"""
import os
import socket
import struct
import subprocess
import sys
import time

try:
    from scapy.contrib.automotive.someip import (
        SD, SDEntry_EventGroup, SDEntry_Service, SDOption_IP4_EndPoint, SOMEIP)
    from scapy.packet import Raw
except ImportError as error:
    sys.exit(f"this check needs scapy (Debian: python3-scapy), but: {error}")

# Address and instance are of this process's own, so that tests that run at the same time do not meet.
OWN = f"127.98.{os.getpid() >> 7 & 0xFF}.{1 + (os.getpid() & 0x7F)}"
GROUP, SD_PORT = "224.244.224.245", 30490
SERVICE, INSTANCE, MAJOR, MINOR = 0x4711, 1 + os.getpid() % 0xFFF0, 3, 7
GETTER, FIELD, EVENTGROUP = 0x0010, 0x8010, 0x0021
FIND, OFFER, SUBSCRIBE, ACKNOWLEDGE = 0, 1, 6, 7  # types of discovery entries
VALUE = bytes([0x5A]) * 5000


def expect(what, actual, expected):
    if actual != expected:
        sys.exit(f"{what}: {actual!r} instead of {expected!r}")


def udp_socket(address, port):
    udp = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    udp.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    udp.bind((address, port))
    return udp


def receive(udp, what, wanted=lambda packet: True, seconds=10.0):
    """The next packet that is wanted, decoded by scapy, and its sender."""
    deadline = time.monotonic() + seconds
    while True:
        udp.settimeout(max(0.001, deadline - time.monotonic()))
        try:
            data, sender = udp.recvfrom(65536)
        except socket.timeout:
            sys.exit(f"{what}: nothing came in {seconds} s")
        packet = SOMEIP(data)
        expect(f"{what}: length field", packet.len, len(data) - 8)
        if wanted(packet):
            return packet, sender


def entries(packet, kind):
    return [entry for entry in packet[SD].entry_array if entry.type == kind] if SD in packet else []


def check_sd_header(what, packet):
    expect(f"{what}: service", packet.srv_id, 0xFFFF)
    expect(f"{what}: method", message_id(packet), 0x8100)
    expect(f"{what}: client", packet.client_id, 0)
    expect(f"{what}: versions", (packet.proto_ver, packet.iface_ver), (1, 1))
    expect(f"{what}: type and code", (packet.msg_type, packet.retcode), (2, 0))
    expect(f"{what}: flags", packet[SD].flags, 0xC0)  # reboot and unicast
    expect(f"{what}: a session", packet.session_id > 0, True)


def check_offer(what, packet, sender):
    """Returns the endpoint in the offer."""
    check_sd_header(what, packet)
    offer = next(entry for entry in entries(packet, OFFER) if entry.inst_id == INSTANCE)
    expect(f"{what}: identity", (offer.srv_id, offer.inst_id, offer.major_ver, offer.minor_ver),
           (SERVICE, INSTANCE, MAJOR, MINOR))
    expect(f"{what}: time to live", offer.ttl, 3)
    expect(f"{what}: option runs", (offer.index_1, offer.n_opt_1, offer.n_opt_2), (0, 1, 0))
    option = packet[SD].option_array[offer.index_1]
    expect(f"{what}: option", (option.type, option.len, option.l4_proto, option.addr), (4, 9, 0x11, sender[0]))
    return option.addr, option.port


def sd_packet(session, entry, options=()):
    packet = SOMEIP(srv_id=0xFFFF, sub_id=1, event_id=0x0100, client_id=0, session_id=session, msg_type=2) / SD(
        flags=0xC0)
    packet[SD].set_entryArray([entry])
    packet[SD].set_optionArray(list(options))
    return bytes(packet)


def subscribe(session, ttl, port, eventgroup=EVENTGROUP):
    return sd_packet(
        session,
        SDEntry_EventGroup(type=SUBSCRIBE, srv_id=SERVICE, inst_id=INSTANCE, major_ver=MAJOR, ttl=ttl, cnt=5,
                           eventgroup_id=eventgroup, n_opt_1=1, index_1=0),
        [SDOption_IP4_EndPoint(addr=OWN, l4_proto=0x11, port=port)])


def check_acknowledge(what, packet, eventgroup, ttl):
    check_sd_header(what, packet)
    answer = entries(packet, ACKNOWLEDGE)[0]
    expect(f"{what}: identity", (answer.srv_id, answer.inst_id, answer.major_ver, answer.eventgroup_id, answer.cnt),
           (SERVICE, INSTANCE, MAJOR, eventgroup, 5))
    expect(f"{what}: time to live", answer.ttl, ttl)


def message_id(packet):
    """The second half of the message id, whichever way scapy splits it."""
    return struct.unpack(">H", bytes(packet)[2:4])[0]


def reassemble(udp, what, first_check):
    """Collects the segments of one message; checks that each follows the one before it."""
    payload, session, more = b"", None, True
    while more:
        packet, _ = receive(udp, what)
        first_check(packet)
        session = packet.session_id if session is None else session
        expect(f"{what}: session", packet.session_id, session)
        expect(f"{what}: offset", packet.offset * 16, len(payload))
        more = bool(packet.more_seg)
        part = bytes(packet)[20:]
        expect(f"{what}: as long as may be", more and len(part) != 1392, False)
        payload += part
    return payload


def check_wrong_packets(data, endpoint):
    """Each is answered with an error of that code, or with nothing; a valid request behind it is always answered."""
    valid = struct.pack(">HHIHHBBBB", SERVICE, GETTER, 8, 0x1234, 1, 1, MAJOR, 0, 0)
    data.settimeout(10)
    response = valid[:7] + b"\x0b" + valid[8:14] + b"\x80\0\1\2\3"

    def changed(changes):
        return bytes(changes.get(at, byte) for at, byte in enumerate(valid))
    for what, packet, code in (
            ("unknown service", changed({1: 0x12}), 0x02),
            ("unknown service, nothing to be returned", changed({1: 0x12, 14: 1}), None),
            ("unknown method", changed({3: 0x77}), None),
            ("protocol version", changed({12: 2}), 0x07),
            ("interface version", changed({13: 4}), 0x08),
            ("length beyond the datagram", changed({7: 9}), 0x09),
            ("length below the header", changed({7: 7}), 0x09),
            ("length 0", changed({7: 0}), None),
            ("malformed response", changed({7: 9, 14: 0x80}), None),
            ("message type that does not exist", changed({14: 0x13}), None),
            ("response that nobody waits for", changed({14: 0x80}), None),
            ("header cut off", bytes(15), None),
            ("nothing", b"", None),
            ("segment without bytes", changed({14: 0x20}), None),
            ("two in a datagram", valid + valid, None)):
        data.sendto(packet, endpoint)
        data.sendto(valid, endpoint)
        if code is not None:
            expect(what, data.recv(65536), packet[:7] + b"\x08" + packet[8:12] + b"\1" + packet[13:14]
                   + bytes((0x81, code)))
        for _ in range(3 if packet == valid + valid else 1):
            expect(f"behind {what}", data.recv(65536), response)


def check(provider):
    group = udp_socket(GROUP, SD_PORT)
    group.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP,
                     struct.pack("4s4si", socket.inet_aton(GROUP), b"\0" * 4, socket.if_nametoindex("lo")))
    discovery = udp_socket(OWN, SD_PORT)
    discovery.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF,
                         struct.pack("4s4si", b"\0" * 4, b"\0" * 4, socket.if_nametoindex("lo")))
    discovery.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_TTL, 0)
    data = udp_socket(OWN, 0)
    data.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 20)

    is_ours = lambda packet: any((entry.srv_id, entry.inst_id) == (SERVICE, INSTANCE) for entry in entries(packet, OFFER))
    packet, sender = receive(group, "offer", is_ours)
    expect("port of discovery", sender[1], SD_PORT)
    endpoint = check_offer("offer", packet, sender)

    find = SDEntry_Service(type=FIND, srv_id=SERVICE, inst_id=INSTANCE, major_ver=0xFF, ttl=3, minor_ver=0xFFFFFFFF)
    discovery.sendto(sd_packet(1, find), (GROUP, SD_PORT))
    packet, sender = receive(discovery, "answer to find", is_ours)
    expect("answer to find", check_offer("answer to find", packet, sender), endpoint)
    expect("answer to find: first session of this peer", packet.session_id, 1)

    discovery.sendto(subscribe(1, 3, data.getsockname()[1]), (sender[0], SD_PORT))
    packet, _ = receive(discovery, "acknowledge", lambda packet: bool(entries(packet, ACKNOWLEDGE)))
    check_acknowledge("acknowledge", packet, EVENTGROUP, 3)

    def check_segment(packet):
        expect("notification: header", (packet.srv_id, message_id(packet), packet.client_id, packet.proto_ver,
                                        packet.iface_ver, packet.msg_type, packet.retcode),
               (SERVICE, FIELD, 0, 1, MAJOR, 0x22, 0))
    expect("initial value in segments", reassemble(data, "notification", check_segment), VALUE)

    # A new value by the setter-like method, small enough for one datagram, and then the getter.
    for session, method, payload, answer in ((7, 0x0011, b"\x01\x02\x03", b""), (8, GETTER, b"", b"\x01\x02\x03")):
        request = SOMEIP(srv_id=SERVICE, sub_id=0, method_id=method, client_id=0x0BAD, session_id=session,
                         iface_ver=MAJOR, msg_type=0) / Raw(payload)
        data.sendto(bytes(request), endpoint)
        if payload:
            packet, _ = receive(data, "notification")
            expect("notification", (message_id(packet), packet.client_id, packet.msg_type, bytes(packet)[16:]),
                   (FIELD, 0, 2, payload))
        packet, source = receive(data, "response")
        expect("response: from the offered endpoint", source, endpoint)
        expect("response", (packet.srv_id, message_id(packet), packet.client_id, packet.session_id, packet.proto_ver,
                            packet.iface_ver, packet.msg_type, packet.retcode, bytes(packet)[16:]),
               (SERVICE, method, 0x0BAD, session, 1, MAJOR, 0x80, 0, answer))

    check_wrong_packets(data, endpoint)

    # A request in segments, cut by hand.
    large = bytes(range(256)) * 12
    for offset in range(0, len(large), 1024):
        more = offset + 1024 < len(large)
        body = struct.pack(">I", offset | more) + large[offset:offset + 1024]
        data.sendto(struct.pack(">HHIHHBBBB", SERVICE, 0x0012, 8 + len(body), 0x0BAD, 9, 1, MAJOR, 0x20, 0) + body,
                    endpoint)

    def check_response_segment(packet):
        expect("large response", (packet.client_id, packet.session_id, packet.msg_type), (0x0BAD, 9, 0xA0))
    expect("large response", reassemble(data, "large response", check_response_segment), large[::-1])

    discovery.sendto(subscribe(2, 3, data.getsockname()[1], 0x0666), (sender[0], SD_PORT))
    packet, _ = receive(discovery, "negative acknowledge", lambda packet: bool(entries(packet, ACKNOWLEDGE)))
    check_acknowledge("negative acknowledge", packet, 0x0666, 0)

    provider.stdin.close()
    packet, _ = receive(group, "stop offer", lambda packet: is_ours(packet) and entries(packet, OFFER)[0].ttl == 0)
    check_sd_header("stop offer", packet)


def main():
    provider = subprocess.Popen([sys.argv[1], str(INSTANCE), "0x5A", str(len(VALUE))], stdin=subprocess.PIPE)
    try:
        check(provider)
        expect("exit status of the provider", provider.wait(10), 0)
    finally:
        provider.kill()
    print("offer, answer to find, acknowledges, notifications, responses, segments and stop offer are as they should be")


if __name__ == "__main__":
    main()
