#!/usr/bin/env python3
"""Runs the examples of Dask on a scheduler and two workers, kills one of these, and compares with one process.

dask_check.py FOLDER       with chromosomes/*.tsv, and expected/*.tsv of one process each; the program is in PATH,
                           the module in PYTHONPATH
"""

import contextlib
import filecmp
import pathlib
import signal
import subprocess
import sys
import time

import meta_analysis
import numpy
from distributed import Client

EXAMPLES = pathlib.Path(__file__).parents[2] / "examples" / "scaling"
STUDIES, SETS, SETS_OF_A_TASK = 10, 200_000, 1_000


def write_arrays(folder):
    random = numpy.random.default_rng(7)
    variances = random.uniform(0.01, 0.2, (STUDIES, SETS))
    effects = random.normal(0, numpy.sqrt(variances + 0.05))
    effects[random.random(effects.shape) < 0.05] = numpy.nan
    paths = [folder / "effects.npy", folder / "variances.npy"]
    numpy.save(paths[0], effects)
    numpy.save(paths[1], variances)
    return paths, effects, variances


@contextlib.contextmanager
def process(log, *command):
    """A child that does not outlive the test."""
    child = subprocess.Popen([str(word) for word in command], stdout=log, stderr=log)
    try:
        yield child
    finally:
        child.kill()
        child.wait()


@contextlib.contextmanager
def cluster(folder, log):
    """A scheduler with two workers of one thread, on ports that are free. Yields a client and the first worker."""
    file = folder / "scheduler.json"
    file.unlink(missing_ok=True)
    common = ["--scheduler-file", file, "--host", "127.0.0.1", "--no-dashboard"]
    worker = ["dask-worker", *common, "--nthreads", "1", "--no-nanny", "--local-directory", folder]
    with contextlib.ExitStack() as stack:
        stack.enter_context(process(log, "dask-scheduler", *common, "--port", "0"))
        first = stack.enter_context(process(log, *worker, "--name", "first"))
        stack.enter_context(process(log, *worker, "--name", "second"))
        while not file.exists():
            time.sleep(0.05)
        client = stack.enter_context(Client(scheduler_file=str(file)))
        client.wait_for_workers(2)
        yield file, client, first


def kill_in_the_middle(client, worker, job):
    """Kills the first worker while it has tasks to do and holds results. Returns how many of both."""
    (address,) = (key for key, state in client.scheduler_info()["workers"].items() if state["name"] == "first")
    while job.poll() is None:
        to_do, held = client.processing()[address], client.has_what()[address]
        if to_do and len(held) > 4:
            worker.kill()
            worker.wait()
            return len(to_do), len(held)
    sys.exit("the tasks ended before the worker could be killed")


def check_blocks(folder, log, file, client, worker):
    """The results of a cluster that loses a worker are those of one call, to the bit."""
    paths, effects, variances = write_arrays(folder)
    output = folder / "results.npz"
    with process(log, sys.executable, EXAMPLES / "dask_blocks.py", file, *paths, output, SETS_OF_A_TASK) as job:
        to_do, held = kill_in_the_middle(client, worker, job)
        assert job.wait() == 0
    assert len(client.scheduler_info()["workers"]) == 1
    single = meta_analysis.pool(effects, variances, tau2="reml", knapp_hartung="adjusted", threads=1)
    with numpy.load(output) as results:
        for name in results.files:
            assert results[name].tobytes() == getattr(single, name).tobytes(), name
        assert set(results.files) == set(single.columns)
    print(f"killed a worker with {to_do} tasks to do and {held} results; all {SETS} sets are those of one process")


def check_files(folder, log, file):
    files = sorted((folder / "chromosomes").glob("*.tsv"))
    output = folder / "pooled_by_dask"
    output.mkdir(exist_ok=True)
    with process(log, sys.executable, EXAMPLES / "dask_files.py", file, output, *files) as job:
        assert job.wait() == 0
    names = [path.name for path in files]
    same, _, _ = filecmp.cmpfiles(folder / "expected", output, names, shallow=False)
    assert names and same == names
    print(f"{len(names)} files are those of one process")


def main(folder):
    folder = pathlib.Path(folder)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("out of time"))
    with open(folder / "dask.log", "w", encoding="utf-8") as log, cluster(folder, log) as (file, client, worker):
        check_files(folder, log, file)
        check_blocks(folder, log, file, client, worker)


main(*sys.argv[1:])
