"""A command that is timed, and its peak memory."""

import dataclasses
import subprocess
import sys
import time

KILOBYTES_OF_MEGABYTE = 1024


@dataclasses.dataclass
class Contest:
    """A command, the plink run that it is measured by, and the ratio of speeds that it is to reach."""

    name: str
    command: list
    beside: str = ""
    target: float = 0.0
    seconds: float = float("inf")
    processor_seconds: float = float("inf")
    megabytes: float = 0.0

    def run(self, folder):
        """Memory comes from the program time: a child of Python starts with the peak of Python itself."""
        usage = folder / "usage"
        start = time.perf_counter()
        command = ["/usr/bin/time", "-f", "%M %U %S", "-o", usage, *self.command]
        with open(folder / "log", "w", encoding="utf-8") as log:
            finished = subprocess.run(command, stdout=log, stderr=log, check=False)
        seconds = time.perf_counter() - start
        if finished.returncode != 0:
            sys.exit(f"{self.name} failed:\n" + (folder / "log").read_text())
        self.seconds = min(self.seconds, seconds)
        kilobytes, user, system = map(float, usage.read_text().split())
        self.processor_seconds = min(self.processor_seconds, user + system)
        self.megabytes = max(self.megabytes, kilobytes / KILOBYTES_OF_MEGABYTE)
