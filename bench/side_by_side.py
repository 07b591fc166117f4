#!/usr/bin/env python3
"""Whole-process cost of commands measured side by side: the commands take turns (anchor,
subject, anchor, …) so that whatever else the shared machine does falls on all of them alike.
Prints, per command, the median wall time and the median CPU time (user + system, which waiting
for a busy CPU does not inflate) and both as ratios against the first command, the anchor.

    bench/side_by_side.py [--runs N] [--stdin FILE] -- 'free -b' 'korvo-widgets list' …

A command is split like a shell would split it, and run without a shell; --stdin feeds a file
to every command. Output goes to /dev/null; a command that fails stops the measurement.
"""
import argparse
import os
import shlex
import statistics
import sys
import time


def run_once(argv, stdin_path):
    stdin = os.open(stdin_path, os.O_RDONLY) if stdin_path else os.open(os.devnull, os.O_RDONLY)
    null = os.open(os.devnull, os.O_WRONLY)
    try:
        start = time.perf_counter()
        pid = os.posix_spawnp(argv[0], argv, os.environ,
                              file_actions=[(os.POSIX_SPAWN_DUP2, stdin, 0),
                                            (os.POSIX_SPAWN_DUP2, null, 1),
                                            (os.POSIX_SPAWN_DUP2, null, 2)])
        _, status, usage = os.wait4(pid, 0)
        wall = time.perf_counter() - start
    finally:
        os.close(stdin)
        os.close(null)
    if os.waitstatus_to_exitcode(status) != 0:
        sys.exit(f"side_by_side: {shlex.join(argv)} exited with {os.waitstatus_to_exitcode(status)}")
    return wall, usage.ru_utime + usage.ru_stime


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--runs", type=int, default=60, help="runs of each command (default 60)")
    parser.add_argument("--warmup", type=int, default=3, help="untimed runs of each first")
    parser.add_argument("--stdin", help="file every command reads on standard input")
    parser.add_argument("commands", nargs="+", help="the anchor first, then the subjects")
    options = parser.parse_args()
    commands = [shlex.split(command) for command in options.commands]

    for _ in range(options.warmup):
        for argv in commands:
            run_once(argv, options.stdin)
    walls = [[] for _ in commands]
    cpus = [[] for _ in commands]
    for _ in range(options.runs):
        for index, argv in enumerate(commands):
            wall, cpu = run_once(argv, options.stdin)
            walls[index].append(wall)
            cpus[index].append(cpu)

    anchor_wall = statistics.median(walls[0])
    anchor_cpu = statistics.median(cpus[0])
    print(f"{'wall ms':>8} {'ratio':>6} {'cpu ms':>8} {'ratio':>6}  command "
          f"({options.runs} runs each, interleaved)")
    for index, command in enumerate(options.commands):
        wall = statistics.median(walls[index])
        cpu = statistics.median(cpus[index])
        print(f"{wall * 1000:8.2f} {wall / anchor_wall:6.2f} {cpu * 1000:8.2f} "
              f"{cpu / anchor_cpu if anchor_cpu else float('nan'):6.2f}  {command}")


if __name__ == "__main__":
    main()
