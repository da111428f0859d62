"""A disk that remembers the order of its writes and flushes, for power cuts at any moment.

The disk is a file that a loop device can have behind it. The kernel asks this process for it by the
FUSE protocol (linux/fuse.h): each write and each flush of the device arrives here, in its order.
"""

import contextlib
import errno
import os
import random
import stat
import struct
import subprocess
import threading

GETATTR, OPEN, READ, WRITE, RELEASE, FSYNC, FLUSH, INIT = 3, 14, 15, 16, 18, 20, 25, 26
UNANSWERED = (2, 42)  # FORGET, BATCH_FORGET
INTERRUPT = 36
VERSION = 7, 31
BIG_WRITES, MAX_PAGES = 1 << 5, 1 << 22
LARGEST_WRITE = 1 << 20
SECTOR = 4096  # what a disk writes wholly or not at all; file systems count on it for a checksum


class Recording:
    """The writes, as pairs of offset and content, and the flushes, which are None."""

    def __init__(self, image):
        self.image = os.open(image, os.O_RDWR)
        self.size = os.fstat(self.image).st_size
        self.events = []
        self.answers = {INIT: self.initialised, GETATTR: self.attributes, READ: self.read,
                        WRITE: self.write, FSYNC: self.flush, OPEN: lambda _: struct.pack("<QII", 0, 0, 0),
                        RELEASE: lambda _: b"", FLUSH: lambda _: b""}

    def initialised(self, _):
        return struct.pack("<IIIIHHIIHHII24x", *VERSION, 1 << 17, BIG_WRITES | MAX_PAGES, 16, 12,
                           LARGEST_WRITE, 1, LARGEST_WRITE >> 12, 0, 0, 0)

    def attributes(self, _):
        times = (0,) * 6
        return struct.pack("<QII3Q3Q3IIIIIIII", 3600, 0, 0, 1, self.size, self.size // 512, *times,
                           stat.S_IFREG | 0o600, 1, 0, 0, 0, 4096, 0)

    def read(self, request):
        offset, size = struct.unpack_from("<QI", request, 8)
        return os.pread(self.image, size, offset)

    def write(self, request):
        offset, size = struct.unpack_from("<QI", request, 8)
        content = request[40:40 + size]
        os.pwrite(self.image, content, offset)
        self.events.append((offset, content))
        return struct.pack("<II", size, 0)

    def flush(self, _):
        self.events.append(None)
        return b""

    def serve(self, device):
        """Answers until the file is unmounted."""
        with contextlib.suppress(OSError):
            while request := os.read(device, LARGEST_WRITE + 4096):
                _, operation, unique = struct.unpack_from("<IIQ", request)
                if operation in UNANSWERED or operation == INTERRUPT:
                    continue
                answer = self.answers.get(operation)
                body = answer(request[40:]) if answer else b""
                error = 0 if answer else -errno.ENOSYS
                os.write(device, struct.pack("<IiQ", 16 + len(body), error, unique) + body)

    def cut(self, image, moment):
        """Writes into a copy of the disk's beginning what is on it when power goes at a moment: all
        that a flush made safe, and of what came later any sectors, as a disk may reorder them."""
        events = self.events[:moment]
        safe = max((number for number, event in enumerate(events) if event is None), default=-1)
        rate = random.choice([0, 0.1, 0.5, 0.9, 1])
        with open(image, "r+b") as disk:
            for number, event in enumerate(events):
                if event is None:
                    continue
                offset, content = event
                step = len(content) if number < safe or rate == 1 else SECTOR
                for start in range(0, len(content), step):
                    if number < safe or random.random() < rate:
                        disk.seek(offset + start)
                        disk.write(content[start:start + step])


@contextlib.contextmanager
def recorded(image, place):
    """The recording of a disk that is mounted as the file of a name meanwhile."""
    recording = Recording(image)
    open(place, "w", encoding="ascii").close()
    device = os.open("/dev/fuse", os.O_RDWR)
    options = f"fd={device},rootmode={stat.S_IFREG:o},user_id=0,group_id=0,max_read={LARGEST_WRITE}"
    server = threading.Thread(target=recording.serve, args=(device,), daemon=True)
    subprocess.run(["mount", "-i", "-t", "fuse", "-o", options, "recording", place], check=True,
                   pass_fds=[device])
    server.start()
    try:
        yield recording
    finally:
        subprocess.run(["umount", place], check=True)
        server.join()
        os.close(device)
        os.close(recording.image)
