# SPDX-License-Identifier: Apache-2.0

"""PostgreSQL machines of a test's own: temporary clusters that only sockets in their folders reach."""

import json
import os
import pathlib
import pwd
import shutil
import signal
import subprocess
import tempfile
import time
import urllib.parse

USER = "tester"  # not the name of a schema, which would be in its search path
FOR_TESTS = {"fsync": "off", "synchronous_commit": "off", "full_page_writes": "off", "jit": "off", "max_connections": "60",
             "shared_buffers": "64MB", "log_min_messages": "fatal", "log_checkpoints": "off"}


class Failed(Exception):
    """What psql said on standard error."""


def programs():
    """The folder of the newest server that Debian has installed."""
    found = sorted(pathlib.Path("/usr/lib/postgresql").glob("*/bin/initdb"), key=lambda path: float(path.parts[-3]))
    if not found:
        raise SystemExit("there is no PostgreSQL below /usr/lib/postgresql; install the package postgresql")
    return found[-1].parent


def as_ordinary_user(command):
    """PostgreSQL refuses to be started by root. It ends when we do, however that comes."""
    dropped = ["--reuid=nobody", "--regid=nogroup", "--clear-groups"] if os.geteuid() == 0 else []
    return ["setpriv", *dropped, "--pdeathsig=INT", "--", *map(str, command)]


class Cluster:
    """Made when it is started first."""

    def __init__(self, folder, settings):
        self.folder = folder
        self.settings = {"unix_socket_directories": folder, "listen_addresses": "", **settings}
        self.server = None

    def start_first(self):
        if self.server is None:
            self.make()
            self.start()

    def make(self):
        self.folder.mkdir(mode=0o700)
        if os.geteuid() == 0:
            nobody = pwd.getpwnam("nobody")
            os.chown(self.folder, nobody.pw_uid, nobody.pw_gid)
        subprocess.run(
            as_ordinary_user([programs() / "initdb", "--pgdata", self.folder / "data", "--username", USER, "--auth=trust",
                              "--encoding=UTF8", "--locale=C.UTF-8", "--no-sync", "--no-instructions"]),
            check=True, stdout=subprocess.DEVNULL, env=without_pg_variables(), cwd=self.folder)

    def start(self):
        options = [word for name, value in self.settings.items() for word in ("-c", f"{name}={value}")]
        with open(self.folder / "log", "ab") as log:
            self.server = subprocess.Popen(
                as_ordinary_user([programs() / "postgres", "-D", self.folder / "data", *options]),
                stdin=subprocess.DEVNULL, stdout=log, stderr=log, env=without_pg_variables(), cwd=self.folder)
        ready = [str(programs() / "pg_isready"), "--quiet", "--host", str(self.folder)]
        while subprocess.run(ready, env=without_pg_variables(), check=False).returncode != 0:
            if not self.is_running():
                raise SystemExit(f"PostgreSQL did not start: {(self.folder / 'log').read_text()}")
            time.sleep(0.05)

    def is_running(self):
        return self.server is not None and self.server.poll() is None

    def stop(self):
        if self.is_running():
            self.server.send_signal(signal.SIGINT)
            self.server.wait()

    def url(self, database="postgres"):
        return f"postgresql:///{database}?" + urllib.parse.urlencode(
            {"host": str(self.folder), "user": USER}, quote_via=urllib.parse.quote
        )


class Machines:
    """Some clusters that may be started within a `with`."""

    def __init__(self, number, settings):
        self.number = number
        self.settings = settings
        self.clusters = []
        self.folder = None

    def __enter__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="fleet."))
        self.folder.chmod(0o755)
        self.clusters = [Cluster(self.folder / f"machine{number + 1}", self.settings) for number in range(self.number)]
        return self.clusters

    def __exit__(self, *_):
        for cluster in self.clusters:
            cluster.stop()
        shutil.rmtree(self.folder)


def without_pg_variables():
    return {name: value for name, value in os.environ.items() if not name.startswith("PG")} | {"LC_ALL": "C.UTF-8"}


def psql(url, script, variables=None):
    """What a script prints, its rows without any decoration."""
    given = [word for name, value in (variables or {}).items() for word in ("-v", f"{name}={value}")]
    command = ["psql", "-X", "-q", "-At", "-v", "ON_ERROR_STOP=1", *given, "-d", url, "-f", "-"]
    done = subprocess.run(command, input=script.encode(), capture_output=True, env=without_pg_variables(), check=False)
    if done.returncode != 0:
        raise Failed(done.stderr.decode())
    return done.stdout.decode()


def rows(url, query, **variables):
    """The rows that a query gives, as objects."""
    answer = psql(url, f"set timezone = 'UTC'; select coalesce(json_agg(row_to_json(q)), '[]') from ({query}) q;", variables)
    return json.loads(answer)


def copied(lines):
    """A script that has JSON Lines in the table `arriving`, numbered. No line holds the two control characters raw."""
    return ("create temporary table arriving (n bigint generated always as identity, line jsonb);\n"
            "\\copy arriving (line) from stdin with (format csv, quote E'\\x01', delimiter E'\\x02')\n"
            + "".join(lines) + "\\.\n")


def ingest(url, lines):
    """Gives observations to the database one after the other, and tells what it did with each."""
    said = psql(url, copied(lines) + "select fleet.ingest(line) from (select line from arriving order by n) a;")
    return said.split()
