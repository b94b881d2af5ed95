#!/usr/bin/env python3
"""Runs the tests of a build folder and counts their cases; the last line is the sum.

    scripts/run_tests.py BUILD [--jobs N] [--timeout SECONDS] [--results FOLDER] [--windows]

Takes the tests from CTest. A program of GoogleTest whose cases CTest knows one by one is run once, as a whole: many cases
share a costly setup. With --windows the programs run under Wine and are told the result folder in its way.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import threading
import time
import xml.etree.ElementTree

Outcome = collections.namedtuple("Outcome", "passed failed skipped report")


class Test:
    def __init__(self, name, entry, whole_program):
        properties = {item["name"]: item["value"] for item in entry.get("properties", [])}
        self.name = name
        self.command = [part for part in entry["command"] if not (whole_program and part.startswith("--gtest"))]
        self.environment = dict(item.split("=", 1) for item in properties.get("ENVIRONMENT", []))
        self.folder = properties.get("WORKING_DIRECTORY", ".")
        self.alone = properties.get("RUN_SERIAL", False)
        self.locks = sorted(properties.get("RESOURCE_LOCK", []))
        self.timeout = properties.get("TIMEOUT")


def tests_of(build):
    listing = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True, capture_output=True,
                             text=True).stdout
    tests = {}
    for entry in json.loads(listing)["tests"]:
        command = entry.get("command")
        if not command:
            # A program that was not built, or whose cases could not be listed.
            tests[entry["name"]] = None
        elif any(part.startswith("--gtest_filter") for part in command):
            program = pathlib.Path(command[0]).name
            tests.setdefault(program, Test(program, entry, True))
        else:
            tests[entry["name"]] = Test(entry["name"], entry, False)
    return tests


class Runner:
    def __init__(self, arguments):
        self.arguments = arguments
        self.results = pathlib.Path(arguments.results or pathlib.Path(arguments.build) / "Testing" / "cases").resolve()
        shutil.rmtree(self.results, ignore_errors=True)
        self.results.mkdir(parents=True)
        self.locks = collections.defaultdict(threading.Lock)
        self.printing = threading.Lock()

    def run(self, name, test):
        started = time.monotonic()
        outcome = Outcome(0, 1, 0, "cannot be started: not built?") if test is None else self.run_locked(test)
        with self.printing:
            if outcome.failed:
                print(outcome.report, flush=True)
            skipped = f", {outcome.skipped} skipped" if outcome.skipped else ""
            print(f"{name}: {outcome.passed} passed, {outcome.failed} failed{skipped} "
                  f"({time.monotonic() - started:.0f} s)", flush=True)
        return outcome

    def run_locked(self, test):
        held = [self.locks[lock] for lock in test.locks]
        for lock in held:
            lock.acquire()
        try:
            return self.run_program(test)
        finally:
            for lock in held:
                lock.release()

    def run_program(self, test):
        folder = self.results / test.name
        folder.mkdir()
        # The folder ends in a separator, so that each program of the test names its own file in it.
        where = "Z:" + str(folder).replace("/", "\\") + "\\" if self.arguments.windows else str(folder) + "/"
        environment = {**os.environ, "GTEST_OUTPUT": "xml:" + where, **test.environment}
        timeout = test.timeout or self.arguments.timeout
        output = folder / "output.txt"
        with open(output, "wb") as log:
            process = subprocess.Popen(test.command, cwd=test.folder, env=environment, stdin=subprocess.DEVNULL,
                                       stdout=log, stderr=subprocess.STDOUT, start_new_session=True)
            try:
                code = process.wait(timeout)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
                code = None
        text = output.read_text(errors="replace")
        return self.judge(test, code, text, folder, timeout)

    @staticmethod
    def judge(test, code, text, folder, timeout):
        cases = failed = skipped = 0
        wrong = []
        for file in sorted(folder.glob("*.xml")):
            for case in xml.etree.ElementTree.parse(file).getroot().iter("testcase"):
                cases += 1
                if case.find("failure") is not None:
                    failed += 1
                    wrong.append(f"{case.get('classname')}.{case.get('name')}")
                elif case.find("skipped") is not None or case.get("result") == "skipped":
                    skipped += 1
        report = "\n".join(text.splitlines()[-60:])
        if wrong:
            report += "\n" + "\n".join("FAILED " + name for name in wrong)
        if code is None:
            return Outcome(cases - failed - skipped, failed + 1, skipped, report + f"\nstopped after {timeout} s")
        if cases == 0:
            return Outcome(int(code == 0), int(code != 0), 0, report + f"\nended with {code}")
        # A program that fails without a failed case broke down, or leaked.
        broke = int(code != 0 and failed == 0)
        return Outcome(cases - failed - skipped, failed + broke, skipped, report + f"\nended with {code}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--timeout", type=float, default=600)
    parser.add_argument("--results")
    parser.add_argument("--windows", action="store_true")
    arguments = parser.parse_args()

    tests = tests_of(arguments.build)
    runner = Runner(arguments)
    alone = {name: test for name, test in tests.items() if test is not None and test.alone}
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        together = [pool.submit(runner.run, name, test) for name, test in tests.items() if name not in alone]
        outcomes = [future.result() for future in together]
    outcomes += [runner.run(name, test) for name, test in alone.items()]

    passed = sum(outcome.passed for outcome in outcomes)
    failed = sum(outcome.failed for outcome in outcomes)
    skipped = sum(outcome.skipped for outcome in outcomes)
    print(f"{passed} passed, {failed} failed, {skipped} skipped, in {len(tests)} programs")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
