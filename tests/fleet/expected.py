# SPDX-License-Identifier: Apache-2.0

"""What the database has to know and to answer, worked out from the observations alone: slowly and plainly."""

import collections
import dataclasses
import datetime
import json

KINDS = {"processor": "processors", "memory": "memory", "bridge": "bridges", "device": "devices"}
PARENT = {"memory": "ArrayId", "bridge": "ParentId", "device": "BridgeId"}
IDENTITY = {
    "processor": ["NodeIndex", "Socket"],
    "memory": ["NodeIndex", "DevLocator", "BankLocator"],
    "bridge": ["NodeIndex", "SegNo", "BusNo", "DevNo", "FunNo"],
    "device": ["NodeIndex", "FunKey"],
}
FOUND_WITHOUT_NODE = ("bridge", "device")
ASCII_BLANKS = " \t\n\v\f\r"
PLACEHOLDERS = set(
    "0123456789 123456789 1234567890 12345678 defaultstring dimmmissing empty fillbyoem invalid modulemissing na no noasset"
    " nocpu nodimm nomodule none noserial noserialnumber notapplicable notavailable notinstalled notpresent notprovided"
    " notset notspecified null outofspec serialnumber systemserialnumber tobefilledbyoem undefined unknown"
    " unspecified".encode().split())


def trimmed(value):
    return value.strip(ASCII_BLANKS) if isinstance(value, str) else value


def real_serial(text):
    """None where firmware put `text` for want of a serial number."""
    if text is None:
        return None
    core = bytes(byte for byte in text.encode().lower() if byte >= 0x80 or chr(byte).isalnum())
    core = core.removeprefix(b"0x")
    return None if len(set(core)) <= 1 or core in PLACEHOLDERS else trimmed(text)


def time_of(text):
    return datetime.datetime.fromisoformat(text)


def address(row, device, function):
    digits = [(row["SegNo"], 4), (row["BusNo"], 2), (row[device], 2), (row[function], 1)]
    return "{}:{}:{}.{}".format(*("-" if value is None else f"{value:0{width}x}" for value, width in digits))


PLACE = {
    "processor": lambda row: trimmed(row["Socket"]) or "",
    "memory": lambda row: trimmed(row["DevLocator"]) or "",
    "bridge": lambda row: address(row, "DevNo", "FunNo"),
    "device": lambda row: address(row, "DeviceNo", "FunctionNo"),
}


@dataclasses.dataclass
class Record:
    """A row of an observation. Two of them are the same where `key` and `content` are."""
    kind: str
    place: str
    ordinal: int
    row: dict
    behind: str | None

    def __post_init__(self):
        unknown = ("Id", PARENT.get(self.kind))
        self.raw = {name: value for name, value in self.row.items() if value is not None and name not in unknown}
        self.key = self.kind, self.place, self.ordinal
        self.content = json.dumps(self.raw, sort_keys=True), self.behind
        self.serial = real_serial(self.row.get("SerialNo"))

    def identity(self, without_node):
        return tuple(trimmed(self.row[name]) for name in IDENTITY[self.kind] if not (without_node and name == "NodeIndex"))

    def whole(self, without_node):
        ignored = ("NodeIndex", "DevKey") if without_node else ()
        raw = {name: value for name, value in self.raw.items() if name not in ignored}
        return json.dumps(raw, sort_keys=True), self.behind

    def is_empty(self):
        if self.kind == "memory":
            return self.row["MemSize"] == 0
        return self.kind == "processor" and self.row["Status"] is not None and not self.row["Status"] & 0x40

    def mebibytes(self):
        return (self.row["MemSize"] or 0) if self.kind == "memory" else 0

    def text(self, column):
        return trimmed(self.row.get(column))


def records_of(observation):
    """In the order of the file, kind by kind."""
    places, bridges = {}, {}
    for kind, rows in KINDS.items():
        count = collections.Counter()
        for row in observation[rows]:
            place = PLACE[kind](row)
            count[place] += 1
            places[kind, row["Id"]] = place, count[place]
            if kind == "bridge":
                bridges[row["Id"]] = place if count[place] == 1 else f"{place}~{count[place]}"
    return [Record(kind, *places[kind, row["Id"]], row, bridges.get(row.get(PARENT.get(kind))))
            for kind, rows in KINDS.items() for row in observation[rows]]


class Matching:
    """Which records of a state are which of the next one."""

    def __init__(self, old, new):
        self.successor = {}  # by key of the old record
        self.moved = set()   # keys of old records that a serial number alone recognised
        nodes = [{record.row["NodeIndex"] for record in state} for state in (old, new)]
        no_node = all(len(each) == 1 for each in nodes) and nodes[0] != nodes[1]
        for kind in KINDS:
            self.match([record for record in old if record.kind == kind],
                       [record for record in new if record.kind == kind], kind, no_node)

    def match(self, old, new, kind, no_node):
        def identity(record):
            return record.identity(no_node)

        def serial(record):
            return record.serial

        collides = any(len(each) > 1 for state in (old, new) for each in groups(state, identity).values())
        owners = [groups(state, serial) for state in (old, new)]
        left = [old, new]
        left = self.pair(left, lambda record: record.serial and (identity(record), record.serial))
        moved = self.pair(left, lambda record: record.serial if record.serial and all(
            len(each.get(record.serial, ())) == 1 for each in owners) else None)
        self.moved |= {record.key for record in left[0]} - {record.key for record in moved[0]}
        left = moved
        if collides:
            left = self.pair(left, lambda record: record.whole(no_node))
        left = self.pair(left, identity)
        if kind in FOUND_WITHOUT_NODE:
            self.pair(left, lambda record: record.identity(True))

    def pair(self, left, key):
        """Records of one key in their order; gives those that are left. Records whose key is None have none."""
        old, new = (groups(state, key) for state in left)
        pairs = [pair for each in old if each is not None for pair in zip(old[each], new.get(each, ()))]
        self.successor.update((before.key, after) for before, after in pairs)
        taken = {id(record) for pair in pairs for record in pair}
        return [[record for record in state if id(record) not in taken] for state in left]


def groups(records, key):
    found = {}
    for record in records:
        found.setdefault(key(record), []).append(record)
    return found


@dataclasses.dataclass
class Version:
    server: str
    record: Record
    seen_from: datetime.datetime
    seen_until: datetime.datetime | None = None
    ended: str | None = None
    lost_mib: int = 0

    def end(self, time, successor, moved):
        self.seen_until = time
        self.ended = how_it_ended(self.record, successor, moved)
        left = successor.mebibytes() if successor else 0
        self.lost_mib = max(0, self.record.mebibytes() - left)

    def holds_at(self, time):
        return self.seen_from <= time and (self.seen_until is None or time < self.seen_until)


def how_it_ended(record, successor, moved):
    if successor is None:
        return "removed"
    if not moved and successor.is_empty() and not record.is_empty():
        return "emptied"
    if moved and successor.key != record.key:
        return "moved"
    return "moved" if successor.content == record.content else "changed"


@dataclasses.dataclass
class Run:
    """One file, as long as it was observed again and again."""
    seen: list
    sha256: str
    records: list

    @property
    def first(self):
        return self.seen[0]

    @property
    def last(self):
        return self.seen[-1]


class History:
    """Of one server."""

    def __init__(self, server):
        self.server = server
        self.runs = []
        self.refused = set()
        self.aside = set()
        self.first_seen = self.last_seen = None

    def arrives(self, observation):
        """Takes it in and tells what that did."""
        time, sha256 = time_of(observation["observed_at"]), observation["source"]["sha256"]
        self.first_seen = min(filter(None, (self.first_seen, time)))
        self.last_seen = max(filter(None, (self.last_seen, time)))
        if observation["status"] == "refused":
            self.refused.add((time, sha256))
            return "refused"
        if any(time in run.seen and run.sha256 != sha256 for run in self.runs):
            self.aside.add((time, sha256))
        if (time, sha256) in self.aside:
            return "aside"
        return self.loaded(time, sha256, records_of(observation))

    def loaded(self, time, sha256, records):
        around = next((run for run in self.runs if run.first <= time <= run.last), None)
        before = max((run for run in self.runs if run.last < time), key=lambda run: run.last, default=None)
        after = min((run for run in self.runs if run.first > time), key=lambda run: run.first, default=None)
        near = [around] if around else [run for run in (before, after) if run]
        same = next((run for run in near if run.sha256 == sha256), None)
        if same:
            same.seen = sorted({*same.seen, time})
            return "changed" if time == same.first and same is after else "unchanged"
        outcome = "changed" if self.runs else "new"
        if around:
            self.runs.append(Run([seen for seen in around.seen if seen > time], around.sha256, around.records))
            around.seen = [seen for seen in around.seen if seen < time]
        self.runs.append(Run([time], sha256, records))
        self.runs.sort(key=lambda run: run.first)
        return outcome

    def knows(self, observation):
        """Whether what was observed then is what the server's history says of that time."""
        time = time_of(observation["observed_at"])
        return any(run.sha256 == observation["source"]["sha256"] and run.first <= time <= run.last for run in self.runs)

    def versions(self):
        versions, current, state = [], {}, []
        for run in self.runs:
            matching = Matching(state, run.records)
            new = {record.key: record for record in run.records}
            for record in state:
                if record.key in new and new[record.key].content == record.content:
                    del new[record.key]  # goes on
                else:
                    successor = matching.successor.get(record.key)
                    current.pop(record.key).end(run.first, successor, record.key in matching.moved)
            for record in new.values():
                current[record.key] = Version(self.server, record, run.first)
                versions.append(current[record.key])
            state = run.records
        return versions


class Fleet:
    def __init__(self, observations=()):
        self.histories = {}
        self.outcomes = [self.arrives(observation) for observation in observations]

    def arrives(self, observation):
        server = observation["server"]
        return self.histories.setdefault(server, History(server)).arrives(observation)

    def knows(self, observation):
        return self.histories[observation["server"]].knows(observation)

    def versions(self):
        return [version for history in self.histories.values() for version in history.versions()]


class Answers:
    """Each question's answer, a list of rows of which the order is not told but where it is time's."""

    def __init__(self, fleet):
        self.histories = fleet.histories
        self.versions = fleet.versions()
        self.current = [version for version in self.versions if version.ended is None]
        self.by_server = groups(self.versions, lambda version: version.server)
        self.current_of = groups(self.current, lambda version: version.server)

    def part(self, part_no):
        return [place_of(version) for version in self.current if version.record.text("PartNo") == trimmed(part_no)]

    def lost(self, since):
        return [{**place_of(version), "lost_at": version.seen_until, "serial_no": version.record.text("SerialNo"),
                 "part_no": version.record.text("PartNo")}
                for version in self.versions
                if version.ended in ("removed", "emptied") and version.seen_until >= since
                and not version.record.is_empty() and not self.is_back(version)]

    def is_back(self, lost):
        return any(
            (version.record.key == lost.record.key and not version.record.is_empty())
            or (version.record.kind == lost.record.kind and version.record.serial
                and version.record.serial == lost.record.serial)
            for version in self.current_of.get(lost.server, ()))

    def lost_capacity(self, since):
        answer = []
        for server, versions in self.by_server.items():
            modules = [version for version in versions if version.record.kind == "memory"]
            moment = max(since, self.histories[server].runs[0].first)
            before = {version.record.key: version.record.mebibytes() for version in modules if version.holds_at(moment)}
            now = {version.record.key: version.record.mebibytes() for version in modules if version.ended is None}
            suspects = {version.record.key for version in modules
                        if version.lost_mib > 0 and version.seen_until >= since}
            if sum(now.values()) < sum(before.values()):
                answer += [{"server": server, "place": key[1], "ordinal": key[2],
                            "before_mib": before.get(key, 0), "now_mib": now.get(key, 0),
                            "server_before_mib": sum(before.values()), "server_now_mib": sum(now.values())}
                           for key in suspects if now.get(key, 0) < before.get(key, 0)]
        return answer

    def mixed_memory(self):
        answer = []
        for server, versions in self.current_of.items():
            modules = [version.record for version in versions if version.record.mebibytes() > 0]
            different = {name: len({module.text(column) for module in modules} - {None}) for name, column in
                         (("part_numbers", "PartNo"), ("sizes", "MemSize"), ("speeds", "MaxSpeed"),
                          ("manufacturers", "Manufacturer"))}
            if any(number > 1 for number in different.values()):
                answer.append({"server": server, "modules": len(modules), **different})
        return answer

    def duplicate_serials(self):
        same = groups(self.current, lambda version: version.record.serial and (version.record.kind, version.record.serial))
        return [{"serial_no": version.record.serial, **place_of(version)}
                for key, versions in same.items() if key is not None and len(versions) > 1 for version in versions]

    def serial_history(self, serial):
        found = [version for version in self.versions if version.record.text("SerialNo") == trimmed(serial)]
        return [{**place_of(version), "seen_from": version.seen_from, "seen_until": version.seen_until,
                 "ended": version.ended} for version in sorted(found, key=lambda version: version.seen_from)]

    def processor_models(self):
        sockets = [version for version in self.current
                   if version.record.kind == "processor" and not version.record.is_empty()]
        models = groups(sockets, lambda version: (version.record.text("Version"), version.record.text("Manufacturer")))
        return [{"model": model, "manufacturer": manufacturer, "processors": len(versions),
                 "servers": len({version.server for version in versions})}
                for (model, manufacturer), versions in models.items()]

    def silent(self, since):
        return [{"server": server, "last_seen": history.last_seen}
                for server, history in self.histories.items() if history.last_seen < since]


def place_of(version):
    return {"server": version.server, "kind": version.record.kind, "place": version.record.place,
            "ordinal": version.record.ordinal}
