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
import shlex
import shutil
import signal
import subprocess
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build/mutate"
SOURCE = FOLDER / "source"
BUILD = FOLDER / "build"
# Of a test program, each of which takes some seconds of a processor and, where others have the processors, minutes.
CPU_SECONDS = 20
SECONDS = 600
MEMORY = 8 << 30
FILE_SIZE = 1 << 30
# With these a program fails at its end when it has lost memory.
LEAKS_WATCHED = (
    f"LD_PRELOAD={subprocess.check_output(['g++', '-print-file-name=liblsan.so'], text=True).strip()}",
    f'LSAN_OPTIONS=suppressions="{SOURCE}/tests/support/known_leaks.txt":print_suppressions=0'
    ":allocator_may_return_null=1",
)


class Program:
    """A test program with its tests in a folder. In a sandbox "singly", each of them needs it as new; `too_long` is left
    out.

    A change is judged first by the tests in files that are named after its source. Then by those in files of other names
    that are `near`: which these begin with is told of sources and of rooms. At last, with `whole`, by all."""

    def __init__(self, name, tests, near=(), whole=True, sandbox=None, too_long=None):
        self.name, self.tests, self.near, self.whole = name, tests, dict(near), whole
        self.sandbox, self.too_long = sandbox, too_long

    def command(self, build, suites, variables=()):
        chosen = ":".join(f"{suite}.*:*/{suite}.*" for suite in suites) or "*"
        options = [f"--gtest_filter={chosen}" + (f":-{self.too_long}" if self.too_long else "")]
        if self.sandbox == "singly":
            each_test = [build / "tests/each-test", *variables, self.name]
            return [SOURCE / "tests/support/in-sandbox", build, *each_test, *options]
        into_sandbox = [SOURCE / "tests/support/in-sandbox", build] if self.sandbox else []
        program = ["env", *variables, build / "tests" / self.name]
        return [*into_sandbox, *program, "--gtest_brief=1", "--gtest_fail_fast", *options]

    def named_suites(self, file):
        return self.suites_in([Path(file).stem])

    def near_suites(self, file):
        return self.suites_in(self.near.get(Path(file).stem, []) + self.near.get(Path(file).parent.name, []))

    def suites_in(self, beginnings):
        """The test suites in the test files whose names begin so."""
        files = [path for each in beginnings for path in sorted((SOURCE / self.tests).glob(f"{each}*_test.cpp"))]
        found = [suite for each in files for suite in re.findall(r"^TEST(?:_F|_P)?\((\w+),", each.read_text(), re.M)]
        return tuple(dict.fromkeys(found))


class Part:
    """Rooms whose sources are linked into the same files: `linked` anew, in that order, when an object in one of them is
    another one. Each room has the programs that have to notice a change there: every change that is not listed, or at
    least that `share` of a room's. What its headers are compiled with is as for `source`."""

    def __init__(self, name, source, rooms, linked, share=None):
        self.name, self.source, self.rooms, self.linked, self.share = name, source, rooms, linked, share
        self.header = FOLDER / f"{name}.h"

    def flags(self):
        command = next(each["command"] for each in compile_commands() if each["file"] == str(SOURCE / self.source))
        return re.sub(r" -o \S+ -c .*| -D\S+_EXPORTS", "", command)

    def header_flags(self):
        """What includes the header, also in sources that are compiled with fewer folders of other makers."""
        return " ".join([*re.findall(r"-isystem \S+", self.flags()), "-include", shlex.quote(str(self.header))])

    def commands(self):
        """The compile commands of its sources, by the objects that they make."""
        return {
            re.search(r" -o (\S+)", each["command"])[1]: each["command"]
            for each in compile_commands()
            if room_of(os.path.relpath(each["file"], SOURCE)) in self.rooms
        }


LIBRARY = Part(
    "library",
    source="cds_parser/parser.cpp",
    rooms={
        "cds_parser": [Program("cds_parser_tests", "tests/cds_parser"), Program("samples_tests", "tests/samples")],
        "inventory": [Program("inventory_tests", "tests/inventory", sandbox="singly")],
        "platform/workstation": [
            Program("platform_tests", "tests/platform"),
            Program("samples_tests", "tests/samples"),
            Program("private_places_tests", "tests/platform/private_places", whole=False),
            Program(
                "inventory_service_tests", "tests/platform/inventory_service", whole=False, sandbox="singly",
                near={"inventory_service_workstation": ["inventory_service"]},
            ),  # fmt: skip
        ],
    },
    linked=[
        "libzebdb_cds_parser.so.1.0.0",
        "platform/libzebdb_platform.so.1.0.0",
        "libexec/zebdb-cds/private_places.so",
        "tests/platform_tests",
        "tests/private_places_tests",
    ],
)

# What only a shell shows takes longest, so that what it shows of each room is chosen.
SHELL = Program(
    "subcommand_tests", "tests/tools/subcommands", whole=False, sandbox="shared",
    near={
        "change_detection": ["change_detection", "missing_places", "whole_day"],
        "console": ["terminal"],
        "difference": ["diff"],
        "explanation": ["explain"],
        "export": ["export"],
        "listing": ["show", "fields", "terminal"],
        "report": ["report"],
        "rows": ["show"],
        "sources": ["load", "show", "diff", "tree"],
        "topology": ["tree"],
        "subcommands": ["usage", "documentation"],
        **dict.fromkeys(["dump", "show"], ["terminal"]),
        **dict.fromkeys(
            ["bmc_address", "check", "refresh", "save_digest"],
            ["change_detection", "missing_places", "whole_day"],
        ),
        **dict.fromkeys(
            ["left_out_watch", "loading_options"],
            ["load", "show", "diff", "tree", "dump", "explain", "terminal"],
        ),
        **dict.fromkeys(
            ["command_line", "main", "options", "run", "subcommand"],
            ["usage", "documentation", "load", "show", "tree", "dump", "diff", "explain"],
        ),
    },
)  # fmt: skip

# What is done when there is no memory.
FAULTS = Program(
    "fault_tests", "tests/faults", whole=False, sandbox="shared",
    near={"main": ["faults"], "observation": ["faults"]},
)  # fmt: skip


def rules_of(room):
    """The rules of a room of the command, called by themselves: but for a test that takes half a minute as it is built
    here."""
    return Program(
        "room_tests", f"tests/tools/{room}", near={room: [""]},  # all in the folder
        too_long="InputFile.ThatIsPackedMayNotGrowWithoutBound",
    )  # fmt: skip


COMMAND = Part(
    "command",
    source="tools/console/output.cpp",
    share=0.95,
    rooms={
        "tools": [SHELL, FAULTS],
        "tools/subcommands": [SHELL],
        **{
            f"tools/{room}": [rules_of(room), SHELL, FAULTS]
            for room in sorted(path.name for path in (ROOT / "tools").iterdir() if path.is_dir())
            if room != "subcommands"
        },
    },
    linked=["tools/libzebdb_cds_command.a", "tools/zebdb-cds", "tests/room_tests"],
)
PARTS = [LIBRARY, COMMAND]
ROOMS = {room: programs for part in PARTS for room, programs in part.rooms.items()}
TARGETS = sorted({program.name for programs in ROOMS.values() for program in programs} | {"refresh"})

# Where a test program finds what it runs is compiled into it, so that each worker has one of its own.
PLACES_OBJECT = "tests/CMakeFiles/built.dir/support/built.cpp.o"
WITH_PLACES = ["tests/subcommand_tests", "tests/fault_tests"]


def sources_of(room):
    return sorted(str(path.relative_to(ROOT)) for path in (ROOT / room).iterdir() if path.suffix in (".cpp", ".h"))


def room_of(file):
    return str(Path(file).parent)


def part_of_room(room):
    return next(part for part in PARTS if room in part.rooms)


def part_of(file):
    return part_of_room(room_of(file))


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
        "configure.log", "cmake", "-S", SOURCE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=",
        "-DCMAKE_CXX_FLAGS=-O0 -g0", "-DCMAKE_UNITY_BUILD=ON", "-DBUILD_TESTING=ON",
        "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
        f"-DCMAKE_PROJECT_zebdb_cds_parser_INCLUDE={SOURCE}/tests/mutation/one_by_one.cmake",
    )  # fmt: skip
    linked = [target for part in PARTS for target in part.linked]
    quietly("build.log", "cmake", "--build", BUILD, "--parallel", str(jobs), "--target", *linked, *TARGETS)
    for part in PARTS:
        precompile_header(part)


def compile_commands():
    return json.loads((BUILD / "compile_commands.json").read_text())


def precompile_header(part):
    """All that the sources include besides each other, since most of the time of a small source goes into that."""
    included = set()
    for room in part.rooms:
        for file in sources_of(room):
            included.update(re.findall(r"^#include (<.*>)", (SOURCE / file).read_text(), re.M))
    text = "".join(f"#include {name}\n" for name in sorted(included))
    compiled = part.header.with_suffix(".h.gch")
    if not (compiled.exists() and part.header.read_text() == text):
        part.header.write_text(text)
        header, output = shlex.quote(str(part.header)), shlex.quote(str(compiled))
        command = f"{part.flags()} -w -x c++-header {header} -o {output}"
        subprocess.run(command, shell=True, check=True, cwd=BUILD)


def dependents(file):
    """The compile commands of the objects of its part whose code comes from the file, headers among them."""
    objects, current = set(), None
    for line in output_of("ninja", "-C", BUILD, "-t", "deps").splitlines():
        if line and not line.startswith(" "):
            current = line.split(":")[0]
        elif os.path.normpath(BUILD / line.strip()) == str(SOURCE / file):
            objects.add(current)
    # Tests that include a header are to judge it by what they were compiled with.
    return {output: command for output, command in part_of(file).commands().items() if output in objects}


def link_commands(targets, objects):
    """Of those targets that are made of the objects or of an archive of these, in their order."""
    linker = next((f" -fuse-ld={name}" for name in ("lld", "gold") if shutil.which(f"ld.{name}")), "")  # much faster
    new = set(objects)
    for target in targets:
        command = output_of("ninja", "-C", BUILD, "-t", "commands", "-s", target).splitlines()[-1]
        if set(command.split()) & new:
            if target.endswith(".a"):
                new.add(target)
            # An archive need not hold the objects themselves here, which saves most of its time.
            yield target, command.replace(f" -o {target}", f"{linker} -o {target}").replace("ar qc ", "ar qcT ")


def steps_of(file):
    """Test programs with the suites that are run of them, none for all: first those that are most likely to notice a
    change."""
    programs = ROOMS[room_of(file)]
    named = [(program, program.named_suites(file)) for program in programs]
    near = [(program, program.near_suites(file)) for program in programs]
    whole = [(program, ()) for program in programs if program.whole]
    return list(dict.fromkeys([step for step in named + near if step[1]] + whole))


class Worker:
    def __init__(self, number):
        self.folder = FOLDER / f"worker{number}"
        self.source, self.build, self.run = (self.folder / name for name in ("source", "build", "run"))
        shutil.rmtree(self.folder, ignore_errors=True)
        for room in (*ROOMS, "include", "platform/include"):
            shutil.copytree(SOURCE / room, self.source / room, dirs_exist_ok=True)
        shutil.copytree(BUILD, self.build, symlinks=True, ignore=shutil.ignore_patterns("*.gch"))
        shutil.copy2(SOURCE / "tests/mutation/each-test", self.build / "tests")
        self.run.mkdir()
        self.environment = {
            **os.environ,
            "LD_LIBRARY_PATH": f"{self.build}:{self.build}/platform",
            "CCACHE_DISABLE": "1",
        }
        self.file = None
        self.make_own_places()

    def make_own_places(self):
        command = next(each["command"] for each in compile_commands() if f" -o {PLACES_OBJECT} " in each["command"])
        links = dict(link_commands(WITH_PLACES, [PLACES_OBJECT])).values()
        if not all(self.succeeds(each) for each in (command.replace(str(BUILD), str(self.build)), *links)):
            raise RuntimeError("the tests cannot be linked for a worker")

    def take(self, file):
        """Makes ready for changes of that file."""
        if self.file is not None:
            self.restore()
        self.file, self.original = file, (SOURCE / file).read_text()
        self.steps = steps_of(file)
        self.compile = {
            output: command.replace(str(SOURCE), str(self.source)) for output, command in dependents(file).items()
        }
        if not self.compile:
            raise RuntimeError(f"nothing is compiled of {file} alone")
        self.links = dict(link_commands(part_of(file).linked, self.compile))
        self.with_header = part_of(file).header_flags()
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

    def object(self, output, flags=None):
        """The bytes of the object as the worker's sources are, or None if they are no C++."""
        (self.build / output).unlink(missing_ok=True)
        compiles = self.succeeds(f"{self.compile[output]} -w {flags or self.with_header}")
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
        if self.is_same_optimised():
            return "equivalent"
        return "killed" if self.loses_memory() else "survived"

    def is_same_optimised(self):
        if not self.unchanged_optimised:
            changed = (self.source / self.file).read_text()
            (self.source / self.file).write_text(self.original)
            self.unchanged_optimised = {output: self.object(output, "-O2") for output in self.compile}
            (self.source / self.file).write_text(changed)
        return all(self.object(output, "-O2") == self.unchanged_optimised[output] for output in self.compile)

    def loses_memory(self):
        """Whether test programs that pass lose memory, which takes longer to find."""
        watched = [program for program, suites in self.steps if suites == ()]
        return any(self.test(program, (), LEAKS_WATCHED) != "passed" for program in watched)

    def test(self, program, suites, variables=()):
        """Runs the tests; what is still running or has eaten more than is due has failed as well."""

        def limit():
            resource.setrlimit(resource.RLIMIT_CPU, (CPU_SECONDS, CPU_SECONDS))
            resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        running = subprocess.Popen(
            program.command(self.build, suites, variables), cwd=self.run, env=self.environment, stdin=subprocess.DEVNULL,
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
