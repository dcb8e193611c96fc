#!/usr/bin/env python3
"""Sets the lease time of the default LAN, reads it back, connects a profile and listens until it is connected.

    lease_time.py SECONDS [WWAN_HANDLE]        profile 1 when left out

The library is found as the loader finds it; ZR_NEXA_LIBRARY names another file. Status 0: all is as wanted; 1: something
was refused, or the profile did not connect within 10 seconds; 2: a word that makes no sense.
"""

import ctypes
import os
import queue
import socket
import sys

OK = 0
STATUS_CHANGE = 37  # ZR_NEXA_IND_STATUS
V4_CONNECTED = 3  # ZR_NEXA_IND_V4_CONNECTED
V4_FAILED = 2  # ZR_NEXA_IND_V4_CONNECTING_FAILED
NOTHING_TO_DO = 0x201A  # connecting what is connected already


class DhcpConfig(ctypes.Structure):
    """zr_nexa_lan_dhcp_cfg_t; addresses are in host byte order."""

    _fields_ = [
        (name, ctypes.c_uint32)
        for name in ("gateway_ip", "netmask", "dhcp_start_ip", "dhcp_end_ip", "lease_time", "mtu", "dns_mode",
                     "primary_dns", "secondary_dns")
    ]


class CallEvent(ctypes.Structure):
    """zr_nexa_ind_call_event_t; addresses are in network byte order."""

    _fields_ = [
        ("status", ctypes.c_uint32),
        ("call_end_type", ctypes.c_uint32),
        ("call_end_code", ctypes.c_uint32),
        ("iface_name", ctypes.c_char * 16),
        ("wwan_handle", ctypes.c_uint32),
        ("v4_addr", ctypes.c_uint32),
        ("v4_pri_dns_addr", ctypes.c_uint32),
        ("v4_sec_dns_addr", ctypes.c_uint32),
        ("v6_addr", ctypes.c_uint8 * 16),
        ("v6_pri_dns_addr", ctypes.c_uint8 * 16),
        ("v6_sec_dns_addr", ctypes.c_uint8 * 16),
    ]


# The callback is variadic in C. On Linux, on x86 and ARM, its three named values arrive as an ordinary function's do.
CALLBACK = ctypes.CFUNCTYPE(None, ctypes.c_uint32, ctypes.c_uint32, ctypes.c_void_p)


def load_library():
    """The library with the types of the functions that are called here: ctypes would take every value for an int."""
    library = ctypes.CDLL(os.environ.get("ZR_NEXA_LIBRARY", "libzr_nexa_client_api.so.1"))
    for name, *types in (
        ("zr_nexa_client_init", CALLBACK),
        ("zr_nexa_client_uninit",),
        ("zr_nexa_lan_dhcp_get_v1", ctypes.c_uint32, ctypes.POINTER(DhcpConfig)),
        ("zr_nexa_lan_dhcp_set_v1", ctypes.c_uint32, ctypes.POINTER(DhcpConfig)),
        ("zr_nexa_wan_connect_v4_set_v1", ctypes.c_uint32, ctypes.c_uint8),
    ):
        function = getattr(library, name)
        function.argtypes = types
        function.restype = ctypes.c_uint32
    return library


class Refused(Exception):
    pass


def done(what, result, *also):
    """Prints a line; what is neither success nor one of the other codes ends the work."""
    print(f"{what}: {'success' if result == OK else hex(result)}")
    if result not in (OK, *also):
        raise Refused


def set_lease_time(library, seconds):
    config = DhcpConfig()  # preset: what the service does not tell stays 0
    done("read LAN 0", library.zr_nexa_lan_dhcp_get_v1(0, config))
    config.lease_time = seconds
    done("set LAN 0", library.zr_nexa_lan_dhcp_set_v1(0, config))
    done("read LAN 0", library.zr_nexa_lan_dhcp_get_v1(0, config))
    gateway = socket.inet_ntoa(config.gateway_ip.to_bytes(4, "big"))
    print(f"  LAN 0 at {gateway}, lease time {config.lease_time} s")


def connect(library, events, wwan_handle):
    result = library.zr_nexa_wan_connect_v4_set_v1(wwan_handle, 1)
    done(f"connect profile {wwan_handle}", result, NOTHING_TO_DO)
    if result == NOTHING_TO_DO:
        print("  it is connected, or soon")
        return
    while True:
        try:
            event_id, event = events.get(timeout=10)
        except queue.Empty:
            print("  nothing was heard for 10 s")
            raise Refused from None
        if event.wwan_handle != wwan_handle:
            continue
        if event.status == V4_FAILED:
            print(f"  it failed, {event.call_end_type}:{event.call_end_code}")
            raise Refused
        if event.status == V4_CONNECTED and event_id != STATUS_CHANGE:  # which has no address
            address = socket.inet_ntoa(event.v4_addr.to_bytes(4, sys.byteorder))
            print(f"  connected, {address} on {event.iface_name.decode()}")
            return


def main(words):
    try:
        seconds, wwan_handle = int(words[0]), int(words[1]) if len(words) > 1 else 1
        if len(words) > 2 or not 0 < seconds < 2**32 or not 0 < wwan_handle < 2**32:
            raise ValueError
    except (IndexError, ValueError):
        print(f"usage: {sys.argv[0]} SECONDS [WWAN_HANDLE]", file=sys.stderr)
        return 2

    library = load_library()
    events = queue.SimpleQueue()

    # On a thread of the platform's own: it takes a note, and data is gone when it returns. The name keeps it alive for as
    # long as the session is open.
    @CALLBACK
    def on_indication(event_id, length, data):
        if length == ctypes.sizeof(CallEvent):
            events.put((event_id, CallEvent.from_buffer_copy(ctypes.string_at(data, length))))

    status = 0
    try:
        done("open session", library.zr_nexa_client_init(on_indication))
        set_lease_time(library, seconds)
        connect(library, events, wwan_handle)
    except Refused:
        status = 1
    result = library.zr_nexa_client_uninit()
    print(f"close session: {'success' if result == OK else hex(result)}")
    return status if result == OK else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
