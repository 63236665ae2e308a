# SPDX-License-Identifier: Apache-2.0

"""Where changed sources are built and tested: never in the checkout.

build/mutate/source is a copy of the checkout, build/mutate/build is built from it, without optimisation and debug
information. Each worker has a copy of both. It runs the commands of that build for the objects and the libraries that
a change concerns, and no others: everything that a program loads is taken from the worker's folder.
"""

import json
import os
import re
import resource
import shutil
import signal
import subprocess
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build/mutate"
SOURCE = FOLDER / "source"
BUILD = FOLDER / "build"
HEADER = FOLDER / "standard.h"

# What is linked anew when an object that it is made of is another one.
LINKED = [
    "libzebdb_cds_parser.so.1.0.0",
    "platform/libzebdb_platform.so.1.0.0",
    "libexec/zebdb-cds/private_places.so",
    "tests/platform_tests",
    "tests/private_places_tests",
]
# Of a test program, each of which takes a few seconds of a processor.
CPU_SECONDS = 20
SECONDS = 240
MEMORY = 8 << 30
FILE_SIZE = 1 << 30


class Program:
    """A test program with its tests in a folder. Those in a sandbox need it as new, each of them. `whole` tells whether
    all are to notice a change or, because they take too long, those alone that are named after the changed source."""

    def __init__(self, name, tests, sandbox=False, whole=True):
        self.name, self.tests, self.sandbox, self.whole = name, tests, sandbox, whole

    def command(self, build, suites):
        chosen = [f"--gtest_filter={':'.join(f'{suite}.*:*/{suite}.*' for suite in suites)}"] if suites else []
        if self.sandbox:
            return [SOURCE / "tests/support/in-sandbox", build, build / "tests/each-test", self.name, *chosen]
        return [build / "tests" / self.name, "--gtest_brief=1", "--gtest_fail_fast", *chosen]

    def suites_of(self, file):
        """The test suites of the test files that are named after the source."""
        files = sorted((SOURCE / self.tests).glob(f"{Path(file).stem}*_test.cpp"))
        found = [suite for each in files for suite in re.findall(r"^TEST(?:_F|_P)?\((\w+),", each.read_text(), re.M)]
        return list(dict.fromkeys(found))


# The folder of the sources, and the programs that have to notice a change there.
ROOMS = {
    "cds_parser": [Program("cds_parser_tests", "tests/cds_parser"), Program("samples_tests", "tests/samples")],
    "inventory": [Program("inventory_tests", "tests/inventory", sandbox=True)],
    "platform/workstation": [
        Program("platform_tests", "tests/platform"),
        Program("samples_tests", "tests/samples"),
        Program("private_places_tests", "tests/platform/private_places", whole=False),
        Program("inventory_service_tests", "tests/platform/inventory_service", sandbox=True, whole=False),
    ],
}
TARGETS = sorted({program.name for programs in ROOMS.values() for program in programs} | {"refresh"})


def sources_of(room):
    return sorted(str(path.relative_to(ROOT)) for path in (ROOT / room).iterdir() if path.suffix in (".cpp", ".h"))


def room_of(file):
    return str(Path(file).parent)


def copy_checkout():
    """Only what differs is written, so that only that is compiled again."""
    listed = output_of("git", "-C", ROOT, "ls-files", "-z", "--cached", "--others", "--exclude-standard")
    wanted = {name for name in listed.split("\0") if name and (ROOT / name).exists()}
    for name in wanted:
        target = SOURCE / name
        if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(ROOT / name, target)
            target.touch()
    for path in SOURCE.rglob("*"):
        if path.is_file() and str(path.relative_to(SOURCE)) not in wanted:
            path.unlink()


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def quietly(log, *command):
    if subprocess.run([ROOT / "scripts/quietly", FOLDER / log, *command], check=False).returncode != 0:
        raise SystemExit("mutate: the unchanged sources cannot be built")


def build(jobs):
    copy_checkout()
    quietly(
        "configure.log", "cmake", "-S", SOURCE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
        "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g0", "-DCMAKE_UNITY_BUILD=ON", "-DBUILD_TESTING=ON",
        "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
    )  # fmt: skip
    quietly("build.log", "cmake", "--build", BUILD, "--parallel", str(jobs), "--target", *LINKED, *TARGETS)
    precompile_headers()


def compile_commands():
    return json.loads((BUILD / "compile_commands.json").read_text())


def precompile_headers():
    """All that the sources include besides each other, since most of the time of a small source goes into that."""
    included = set()
    for room in ROOMS:
        for file in sources_of(room):
            included.update(re.findall(r"^#include (<.*>)", (SOURCE / file).read_text(), re.M))
    text = "".join(f"#include {name}\n" for name in sorted(included))
    compiled = HEADER.with_suffix(".h.gch")
    if not (compiled.exists() and HEADER.read_text() == text):
        HEADER.write_text(text)
        parser = next(each for each in compile_commands() if each["file"] == str(SOURCE / "cds_parser/parser.cpp"))
        flags = re.sub(r" -o \S+ -c \S+| -D\S+_EXPORTS", "", parser["command"])
        subprocess.run(f"{flags} -w -x c++-header {HEADER} -o {compiled}", shell=True, check=True, cwd=BUILD)


def dependents(file):
    """The compile commands of the objects whose code comes from the file, headers among them."""
    objects, current = set(), None
    for line in output_of("ninja", "-C", BUILD, "-t", "deps").splitlines():
        if line and not line.startswith(" "):
            current = line.split(":")[0]
        elif os.path.normpath(BUILD / line.strip()) == str(SOURCE / file):
            objects.add(current)
    # Tests that include a header are to judge it by what they were compiled with.
    compiled = {
        re.search(r" -o (\S+)", each["command"])[1]: each["command"]
        for each in compile_commands()
        if room_of(os.path.relpath(each["file"], SOURCE)) in ROOMS
    }
    return {output: command for output, command in compiled.items() if output in objects}


def link_commands(objects):
    linker = " -fuse-ld=gold" if shutil.which("ld.gold") else ""  # takes half the time
    for target in LINKED:
        command = output_of("ninja", "-C", BUILD, "-t", "commands", "-s", target).splitlines()[-1]
        if set(command.split()) & objects:
            yield target, command.replace(f" -o {target}", f"{linker} -o {target}")


def steps_of(file):
    """Test programs with the suites that are run of them: first those that are most likely to notice a change."""
    programs = ROOMS[room_of(file)]
    likely = [(program, program.suites_of(file)) for program in programs]
    return [step for step in likely if step[1]] + [(program, []) for program in programs if program.whole]


class Worker:
    def __init__(self, number):
        self.folder = FOLDER / f"worker{number}"
        self.source, self.build, self.run = (self.folder / name for name in ("source", "build", "run"))
        shutil.rmtree(self.folder, ignore_errors=True)
        for room in (*ROOMS, "include", "platform/include"):
            shutil.copytree(SOURCE / room, self.source / room)
        shutil.copytree(BUILD, self.build, symlinks=True, ignore=shutil.ignore_patterns("*.gch"))
        shutil.copy2(SOURCE / "tests/mutation/each-test", self.build / "tests")
        self.run.mkdir()
        self.environment = {
            **os.environ,
            "LD_LIBRARY_PATH": f"{self.build}:{self.build}/platform",
            "CCACHE_DISABLE": "1",
        }
        self.file = None

    def take(self, file):
        """Makes ready for changes of that file."""
        if self.file is not None:
            self.restore()
        self.file, self.original = file, (SOURCE / file).read_text()
        self.steps = steps_of(file)
        self.compile = {
            output: command.replace(str(SOURCE), str(self.source)) for output, command in dependents(file).items()
        }
        self.links = dict(link_commands(set(self.compile)))
        self.unchanged, self.unchanged_optimised = {}, {}
        for output in self.compile:
            self.unchanged[output] = self.object(output)
            if self.unchanged[output] is None:
                raise RuntimeError(f"{file} does not compile without a change")

    def restore(self):
        (self.source / self.file).write_text(self.original)
        for path in (*self.compile, *self.links):
            shutil.copy2(BUILD / path, self.build / path)

    def succeeds(self, command):
        done = subprocess.run(
            command, shell=True, cwd=self.build, env=self.environment,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )  # fmt: skip
        return done.returncode == 0

    def object(self, output, flags=f"-include {HEADER}"):
        """The bytes of the object as the worker's sources are, or None if they are no C++."""
        (self.build / output).unlink(missing_ok=True)
        compiles = self.succeeds(f"{self.compile[output]} -w {flags}")
        return (self.build / output).read_bytes() if compiles else None

    def link(self, target):
        (self.build / target).unlink(missing_ok=True)
        return self.succeeds(self.links[target])

    def try_change(self, change):
        changed = self.original[: change.start] + change.text + self.original[change.end :]
        (self.source / self.file).write_text(changed)
        same = True
        for output, unchanged in self.unchanged.items():
            compiled = self.object(output)
            if compiled is None:
                return "no C++"
            same = same and compiled == unchanged
        if same:
            return "equivalent"
        if not all(self.link(target) for target in self.links):
            return "no C++"
        for step in self.steps:
            outcome = self.test(*step)
            if outcome != "passed":
                return outcome
        return "equivalent" if self.is_same_optimised() else "survived"

    def is_same_optimised(self):
        if not self.unchanged_optimised:
            changed = (self.source / self.file).read_text()
            (self.source / self.file).write_text(self.original)
            self.unchanged_optimised = {output: self.object(output, "-O2") for output in self.compile}
            (self.source / self.file).write_text(changed)
        return all(self.object(output, "-O2") == self.unchanged_optimised[output] for output in self.compile)

    def test(self, program, suites):
        """Runs the tests; what is still running or has eaten more than is due has failed as well."""

        def limit():
            resource.setrlimit(resource.RLIMIT_CPU, (CPU_SECONDS, CPU_SECONDS))
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        running = subprocess.Popen(
            program.command(self.build, suites), cwd=self.run, env=self.environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=limit, start_new_session=True,
        )  # fmt: skip
        try:
            status = running.wait(SECONDS)
        except subprocess.TimeoutExpired:
            status = None
        self.end(running, status is None)
        return "passed" if status == 0 else "killed by time" if status in (None, -signal.SIGKILL) else "killed"

    def end(self, running, in_time):
        """Ends what the test program has left running, and takes away its files."""
        for number in (signal.SIGTERM, signal.SIGKILL):
            try:
                os.killpg(running.pid, number)
                time.sleep(1 if in_time else 0)
            except ProcessLookupError:
                break
        running.wait()
        for path in (*self.run.iterdir(), *(self.build / "tests").glob("sandbox.*")):
            subprocess.run(["chmod", "-R", "u+rwx", path], stderr=subprocess.DEVNULL, check=False)
            subprocess.run(["rm", "-rf", path], check=False)
