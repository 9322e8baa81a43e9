"""A pointer for a compositor that has none: one of its own virtual devices, by the protocol that such programs use."""

import socket
import struct

DISPLAY, REGISTRY, CALLBACK, MANAGER, POINTER = 1, 2, 3, 4, 5
MANAGER_NAME = "zwlr_virtual_pointer_manager_v1"
LEFT = 0x110  # the kernel's number


def _text(value):
    data = value.encode() + b"\0"
    return struct.pack("<I", len(data)) + data + bytes(-len(data) % 4)


class WaylandPointer:
    """Moves over a screen of `width` by `height` pixels; presses, releases and turns the wheel."""

    def __init__(self, display, width, height):
        self.width, self.height = width, height
        self.time = 0
        self.callback = POINTER
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(20)
        self.socket.connect(display)
        self._request(DISPLAY, 1, struct.pack("<I", REGISTRY))
        self._request(DISPLAY, 0, struct.pack("<I", CALLBACK))
        name = None
        for sender, opcode, body in self._events():
            if sender == REGISTRY and opcode == 0:
                length = struct.unpack_from("<I", body, 4)[0]
                if body[8:8 + length - 1].decode() == MANAGER_NAME:
                    name = struct.unpack_from("<I", body)[0]
            elif sender == CALLBACK:
                break
        assert name is not None, "the compositor takes no virtual pointers"
        self._request(REGISTRY, 0, struct.pack("<I", name) + _text(MANAGER_NAME) + struct.pack("<II", 1, MANAGER))
        self._request(MANAGER, 0, struct.pack("<II", 0, POINTER))

    def close(self):
        self.socket.close()

    def move(self, x, y):
        self._pointer(1, round(x), round(y), self.width, self.height)
        self._frame()

    def button(self, is_down):
        self._pointer(2, LEFT, int(is_down))
        self._frame()

    def wheel(self, steps):
        """Down the page; up when negative."""
        for _ in range(abs(steps)):
            step = 1 if steps > 0 else -1
            self._request(POINTER, 5, struct.pack("<I", 0))
            self._request(POINTER, 7, struct.pack("<IIii", self._now(), 0, step * 15 * 256, step))
            self._frame()

    def _now(self):
        self.time += 10
        return self.time

    def _pointer(self, opcode, *values):
        self._request(POINTER, opcode, struct.pack(f"<I{len(values)}I", self._now(), *values))

    def _frame(self):
        """The compositor has dealt with what was sent when this returns."""
        self._request(POINTER, 4, b"")
        self.callback += 1
        self._request(DISPLAY, 0, struct.pack("<I", self.callback))
        for sender, opcode, _ in self._events():
            if sender == self.callback and opcode == 0:
                return

    def _request(self, receiver, opcode, body):
        self.socket.sendall(struct.pack("<IHH", receiver, opcode, 8 + len(body)) + body)

    def _receive(self, size):
        data = b""
        while len(data) < size:
            more = self.socket.recv(size - len(data))
            assert more, "the compositor has closed the connection"
            data += more
        return data

    def _events(self):
        while True:
            sender, opcode, size = struct.unpack("<IHH", self._receive(8))
            body = self._receive(size - 8)
            assert (sender, opcode) != (DISPLAY, 0), f"the compositor's error: {body[8:]!r}"
            yield sender, opcode, body
