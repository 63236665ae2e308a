#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0

"""usage: observations.py [--servers N] [--observations M] [--seed SEED] [--calm] [--size small|full]

Prints made-up observations of servers as JSON Lines, in the order in which they arrive. The same arguments give the same
bytes. Parts are added, removed, changed, moved, swapped, emptied and filled again, records share places and serial
numbers, texts are hostile; observations come late, twice, not at all, or refused. With --calm nothing but the parts
changes: each server is observed each time, in time.
"""

import argparse
import copy
import datetime
import hashlib
import json
import random
import sys

START = datetime.datetime(2026, 1, 1, 6, 0, 0, tzinfo=datetime.timezone.utc)
DAY = datetime.timedelta(days=1)

PARENTS = {"memory": "ArrayId", "bridges": "ParentId", "devices": "BridgeId"}
KINDS = ("processors", "memory", "bridges", "devices")
EMPTY_SOCKET, FILLED_SOCKET = 0x00, 0x41

PLACEHOLDERS = ["NO DIMM", "Not Specified", "N/A", " ", "0000000000", "To Be Filled By O.E.M.", "", None, "Unknown", "xxxx"]
HOSTILE = [
    "'; DROP TABLE fleet.memory; --", 'a"b\\"c\\\\', "line\nbreak\r\n", "tab\there", "$(touch pwned)`touch pwned`${HOME}",
    "\\N", "\\.", "{\"x\":[1]}", "\u202eabc\u2066", "Größe \U0001f4be 存储", "%s%n", "\u00a0 no-break \u00a0", "a,b;c|d",
    "\x01\x02\x1f\x7f", "$$ $1 :x :'x' :\"x\"", "-- comment /*", "E'\\x00'", "<&>", "NULL", "null", "W" * 3000,
]
BIG = [2**63 - 1, 2**63, 2**64 - 1, 2**53 + 1]


class Part(dict):
    """A row without its own row id, whose parent is another part in place of that one's row id."""

    def __init__(self, kind, values, parent=None):
        super().__init__(values)
        self.kind = kind
        self.parent = parent

    __hash__ = object.__hash__

    def __eq__(self, other):
        return self is other


def processor(socket, serial, model):
    return Part("processors", {
        "NodeIndex": 1, "Socket": socket, "ProcType": 3, "Family": 179, "Manufacturer": model[1],
        "ProcId": 1414348835388415, "Version": model[0], "Voltage": 144, "ExtClock": 100, "MaxSpeed": 4000,
        "CurSpeed": 2500, "Status": FILLED_SOCKET, "Upgrade": 54, "SerialNo": serial, "AssetTag": "UNKNOWN",
        "PartNo": " ", "CoreCount": 20, "CoreEnabled": 20, "ThreadCount": 40, "Characteristics": 252,
        "L1CacheMaxSize": 1280, "L1CacheInstalled": 1280, "L1CacheType": 5, "L1CacheConfig": 384,
        "L2CacheMaxSize": 20480, "L2CacheInstalled": 20480, "L2CacheType": 5, "L2CacheConfig": 385,
        "L3CacheMaxSize": 28160, "L3CacheInstalled": 28160, "L3CacheType": 5, "L3CacheConfig": 386})


def module(locator, bank, slot, serial, model):
    part_no, manufacturer, size, speed = model
    return Part("memory", {
        "NodeIndex": 1, "SlotNo": slot, "TotalWidth": 72, "DataWidth": 64, "MemSize": size, "FormFactor": 9,
        "DevLocator": locator, "BankLocator": bank, "MemType": 26, "TypeDetail": 8320, "MaxSpeed": speed,
        "ClockSpeed": 2666, "Manufacturer": manufacturer, "SerialNo": serial, "AssetTag": f"{locator}_AssetTag",
        "PartNo": part_no, "Attributes": 2, "Capacity": None, "MemCapacity": None, "AppDirCap": None,
        "UnconfigCap": None, "InaccCap": None, "ReservedCap": None, "Classification": None, "FirmwareVersion": None,
        "SoftwareID": None, "CPUIndex": None, "iMCNum": None, "ChannelNum": None, "DimmNum": None})


def bridge(bus, device, function, parent=None):
    return Part("bridges", {
        "NodeIndex": 1, "SegNo": 0, "BusNo": bus, "DevNo": device, "FunNo": function, "VendorId": 32902, "DevId": 41360,
        "RevId": 249, "ClsCode": 394240, "PriBusNo": bus, "SndBusNo": bus + 1, "SubBusNo": bus + 1}, parent)


def keyed(device):
    """The device with the keys that follow from its other columns."""
    address = (device["SegNo"], device["BusNo"], device["DeviceNo"], device["FunctionNo"])
    device["FunKey"] = device["HardwareId"] = address[0] << 24 | address[1] << 16 | address[2] << 8 | address[3]
    device["DevKey"] = device["NodeIndex"] << 24 | device["Location"] << 16 | device["SlotNo"]
    return device


def function(bus, number, slot, model, parent=None):
    vendor, device_id = model
    return keyed(Part("devices", {
        "NodeIndex": 1, "DevKey": 0, "FunKey": 0, "SegNo": 0, "BusNo": bus, "DeviceNo": number, "FunctionNo": 0,
        "SlotNo": slot, "Location": 1, "VendorId": vendor, "ClsCode": 131072, "DeviceId": device_id, "RevId": 1,
        "SubVendorId": vendor, "SubDeviceId": 111, "SlotDesignation": f"PCIe Slot {slot}", "SlotType": 177,
        "SlotDataBusWidth": 13, "Hotplug": 0, "PCIType": 1, "BladeSlotPort": None, "LanesInUse": 8, "MaxLanes": 8,
        "MaxPCIeType": 3, "PCIeType": 3, "HardwareId": 0, "HardwareTypeId": 3, "FunType": 14}, parent))


PROCESSOR_MODELS = [("Intel(R) Xeon(R) Gold 6248 CPU @ 2.50GHz", "Intel(R) Corporation"),
                    (" Intel(R) Xeon(R) Gold 6252 CPU @ 2.10GHz ", "Intel(R) Corporation"),
                    ("AMD EPYC 7543 32-Core Processor               ", "Advanced Micro Devices, Inc.")]
MEMORY_MODELS = [("M393A4K40CB2-CVF  ", "Samsung", 32768, 2933), ("M393A2K40CB2-CTD", " Samsung ", 16384, 2666),
                 ("HMA84GR7CJR4N-XN", "Hynix Semiconductor", 32768, 3200), ("36ASF8G72PZ-2G9B2 ", "Micron", 65536, 2933)]
CARD_MODELS = [(5555, 4123), (32902, 5506), (4318, 7864), (4173, 22)]


class Server:
    """A server whose parts change. All that happens follows from the seed and its number."""

    def __init__(self, number, seed, size):
        self.random = random.Random(f"{seed}/{number}")
        self.name = f"server-{number:06d}"
        if number % 25 == 7:
            self.name += " " + self.random.choice(HOSTILE[:-1])
        self.parts = {kind: [] for kind in KINDS}
        self.serials = 0
        self.node = 1
        self.touch = 0  # of the file, of which not all becomes rows
        self.build(*{"small": (2, 8, 3, 3), "full": (2, 24, 42, 48)}[size])

    def build(self, sockets, slots, bridges, cards):
        choose = self.random.choice
        model = choose(PROCESSOR_MODELS)
        self.parts["processors"] = [processor(f"CPU {i + 1}", self.serial("P"), model) for i in range(sockets)]
        model = choose(MEMORY_MODELS)
        for i in range(slots):
            self.parts["memory"].append(module(f"DIMM_{i + 1}", f"BANK {i % 4}", i + 1, self.serial("M"), model))
        for i in range(bridges):
            parent = self.parts["bridges"][-1] if i % 3 == 2 else None
            self.parts["bridges"].append(bridge(i, 1 + i % 3, 0, parent))
        for i in range(cards):
            behind = self.parts["bridges"][i % bridges] if i % 4 else None
            self.parts["devices"].append(function(i + 1, i % 3, i + 1, choose(CARD_MODELS), behind))

    def serial(self, letter):
        """Mostly one that no other part has, as it was written by firmware that pads some."""
        self.serials += 1
        chance = self.random.random()
        if chance < 0.05:
            return self.random.choice(PLACEHOLDERS)
        if chance < 0.07:
            return f"SHARED{letter}{self.random.randrange(20)}"
        return f"{letter}{self.name[7:13]}{self.serials:04d}" + " " * self.random.randrange(3)

    def any(self, kind):
        return self.random.choice(self.parts[kind]) if self.parts[kind] else None

    # What may happen. Where a server has nothing that it could happen to, nothing happens.

    def nothing(self):
        pass

    def file_rewritten(self):
        self.touch += 1

    def part_removed(self):
        kind = self.random.choice(KINDS)
        gone = self.any(kind)
        if gone is not None:
            self.parts[kind].remove(gone)
            for each in (part for parts in self.parts.values() for part in parts):
                each.parent = gone.parent if each.parent is gone else each.parent

    def module_added(self):
        slot = 100 + self.serials
        added = module(f"DIMM_{slot}", "BANK 9", slot, self.serial("M"), self.random.choice(MEMORY_MODELS))
        self.parts["memory"].insert(self.random.randrange(len(self.parts["memory"]) + 1), added)

    def module_emptied(self):
        slot = self.any("memory")
        if slot is not None:
            slot.update(MemSize=0, Manufacturer="NO DIMM", SerialNo="NO DIMM", PartNo="NO DIMM", MaxSpeed=0)

    def module_filled(self):
        empty = [part for part in self.parts["memory"] if part["MemSize"] == 0]
        if empty:
            part_no, manufacturer, size, speed = self.random.choice(MEMORY_MODELS)
            self.random.choice(empty).update(
                MemSize=size, Manufacturer=manufacturer, SerialNo=self.serial("M"), PartNo=part_no, MaxSpeed=speed)

    def module_replaced(self):
        slot = self.any("memory")
        if slot is not None:
            part_no, manufacturer, size, speed = self.random.choice(MEMORY_MODELS)
            slot.update(MemSize=size, Manufacturer=manufacturer, SerialNo=self.serial("M"), PartNo=part_no, MaxSpeed=speed)

    def module_shrunk(self):
        slot = self.any("memory")
        if slot is not None:
            slot["MemSize"] = self.random.choice([8192, 4096, None, 2**32 - 1])

    def contents_exchanged(self, one, other):
        for column in ("MemSize", "Manufacturer", "SerialNo", "PartNo", "MaxSpeed"):
            one[column], other[column] = other[column], one[column]

    def modules_swapped(self):
        if len(self.parts["memory"]) > 1:
            self.contents_exchanged(*self.random.sample(self.parts["memory"], 2))

    def module_moved_to_an_empty_slot(self):
        empty = [part for part in self.parts["memory"] if part["MemSize"] == 0]
        filled = [part for part in self.parts["memory"] if part["MemSize"] != 0]
        if empty and filled:
            self.contents_exchanged(self.random.choice(empty), self.random.choice(filled))

    def locator_renamed(self):
        slot = self.any("memory")
        if slot is not None:
            slot["DevLocator"] = f"{slot['DevLocator']}R" if slot["DevLocator"] else "RENAMED"

    def record_doubled(self):
        kind = self.random.choice(KINDS)
        whole = self.any(kind)
        if whole is not None:
            double = Part(kind, whole, whole.parent)
            if self.random.random() < 0.5 and "SerialNo" in double:
                double["SerialNo"] = self.serial("D")
            self.parts[kind].insert(self.random.randrange(len(self.parts[kind]) + 1), double)

    def records_reordered(self):
        self.random.shuffle(self.parts[self.random.choice(KINDS)])

    def text_padded(self):
        part = self.any(self.random.choice(("processors", "memory")))
        if part is not None:
            column = self.random.choice(("SerialNo", "PartNo", "Socket" if part.kind == "processors" else "DevLocator"))
            part[column] = self.random.choice(("  {} ", "\t{}\n", "{}\r\n", "\v{}\f")).format((part[column] or "").strip())

    def text_hostile(self):
        kind = self.random.choice(("processors", "memory", "devices"))
        column = {"processors": ("Socket", "SerialNo", "Version"), "devices": ("SlotDesignation",),
                  "memory": ("DevLocator", "BankLocator", "SerialNo", "PartNo", "Manufacturer")}[kind]
        part = self.any(kind)
        if part is not None:
            part[self.random.choice(column)] = self.random.choice(HOSTILE)

    def text_missing(self):
        part = self.any("memory")
        if part is not None:
            part[self.random.choice(("DevLocator", "BankLocator", "SerialNo", "PartNo", "Manufacturer"))] = None

    def numbers_big(self):
        for kind, column in (("processors", "ProcId"), ("memory", "Capacity")):
            part = self.any(kind)
            if part is not None:
                part[column] = self.random.choice(BIG)

    def serial_a_placeholder(self):
        part = self.any(self.random.choice(("processors", "memory")))
        if part is not None:
            part["SerialNo"] = self.random.choice(PLACEHOLDERS)

    def serial_shared(self):
        part = self.any("memory")
        if part is not None:
            part["SerialNo"] = f"SHAREDM{self.random.randrange(20)}"

    def socket_emptied(self):
        socket = self.any("processors")
        if socket is not None:
            socket.update(Status=EMPTY_SOCKET, SerialNo="Unknown", Version="")

    def socket_filled(self):
        empty = [part for part in self.parts["processors"] if not (part["Status"] or 0) & 0x40]
        if empty:
            version, manufacturer = self.random.choice(PROCESSOR_MODELS)
            self.random.choice(empty).update(Status=self.random.choice((FILLED_SOCKET, None)), Version=version,
                                             Manufacturer=manufacturer, SerialNo=self.serial("P"))

    def processor_replaced(self):
        socket = self.any("processors")
        if socket is not None:
            version, manufacturer = self.random.choice(PROCESSOR_MODELS)
            socket.update(Version=version, Manufacturer=manufacturer, SerialNo=self.serial("P"))

    def bridge_added(self):
        """Before the others, so that the row ids of all of them shift."""
        self.parts["bridges"].insert(0, bridge(128 + self.serials % 100, 0, 0))
        self.serials += 1

    def buses_renumbered(self):
        for part in self.parts["devices"]:
            part["BusNo"] = (part["BusNo"] + 1) % 256
            keyed(part)

    def card_added(self):
        self.serials += 1
        self.parts["devices"].append(
            function(200 + self.serials % 50, 0, 20, self.random.choice(CARD_MODELS), self.any("bridges")))

    def card_replaced(self):
        card = self.any("devices")
        if card is not None:
            card["VendorId"], card["DeviceId"] = self.random.choice(CARD_MODELS)

    def card_behind_another_bridge(self):
        card = self.any("devices")
        if card is not None:
            card.parent = self.any("bridges")

    def node_changed(self):
        for part in (part for parts in self.parts.values() for part in parts):
            part["NodeIndex"] = part["NodeIndex"] % 4 + 1
            if part.kind == "devices":
                keyed(part)

    def node_of_one_part_changed(self):
        part = self.any(self.random.choice(KINDS))
        if part is not None:
            part["NodeIndex"] += 1
            if part.kind == "devices":
                keyed(part)

    def everything_gone(self):
        self.parts = {kind: [] for kind in KINDS}

    # How often, beside each other.
    happenings = {
        nothing: 30, file_rewritten: 3, part_removed: 8, module_added: 4, module_emptied: 6, module_filled: 6,
        module_replaced: 5, module_shrunk: 3, modules_swapped: 4, module_moved_to_an_empty_slot: 5, locator_renamed: 3,
        record_doubled: 4, records_reordered: 3, text_padded: 3, text_hostile: 4, text_missing: 2, numbers_big: 2,
        serial_a_placeholder: 3, serial_shared: 3, socket_emptied: 3, socket_filled: 3, processor_replaced: 2,
        bridge_added: 3, buses_renumbered: 2, card_added: 3, card_replaced: 3, card_behind_another_bridge: 2,
        node_changed: 1, node_of_one_part_changed: 1, everything_gone: 0.3,
    }

    def live(self):
        for what in self.random.choices(list(self.happenings), list(self.happenings.values()),
                                        k=self.random.choice((1, 1, 1, 2, 3))):
            what(self)

    def rows(self):
        ids = {part: place + 1 for parts in self.parts.values() for place, part in enumerate(parts)}
        return {kind: [row_of(part, ids) for part in parts] for kind, parts in self.parts.items()}

    def state(self):
        return copy.deepcopy(self.parts), self.touch

    def restore(self, state):
        self.parts, self.touch = copy.deepcopy(state)


def row_of(part, ids):
    row = {"Id": ids[part]}
    if part.kind in PARENTS:
        row[PARENTS[part.kind]] = ids.get(part.parent)
    return {**row, **part}


def text_of(time):
    return time.isoformat().replace("+00:00", "Z")


def loaded(server, rows, time, touch=0):
    text = json.dumps([rows, touch], ensure_ascii=False)
    return {
        "schema": 1, "server": server, "observed_at": text_of(time),
        "source": {"name": server + ".xml", "bytes": len(text), "sha256": hashlib.sha256(text.encode()).hexdigest()},
        "status": "loaded", "reason": None, "components": sum(map(len, rows.values())), **rows, "left_out": []}


def refused(server, time, reason, readable=True):
    seen = loaded(server, {kind: [] for kind in KINDS}, time, reason)
    seen.update(status="refused", reason=reason)
    if not readable:
        seen["source"].update(bytes=None, sha256=None)
    return seen


def calm_life(server, observations):
    for day in range(observations):
        if day:
            server.live()
        yield day, loaded(server.name, server.rows(), START + day * DAY, server.touch)


def eventful_life(server, observations):
    """Pairs of the day of arrival, a fraction of it as well, and an observation."""
    chance = server.random.random
    past = []
    jitter = datetime.timedelta(seconds=server.random.randrange(20000))
    for day in range(observations):
        time = START + day * DAY + jitter + datetime.timedelta(microseconds=server.random.choice((0, 0, 0, 1, 250000)))
        if day and past and chance() < 0.08:
            server.restore(server.random.choice(past))
        elif day:
            server.live()
        past.append(server.state())
        seen = loaded(server.name, server.rows(), time, server.touch)
        if chance() < 0.06:  # silent
            continue
        if chance() < 0.05:
            seen = refused(server.name, time, "line 5: empty setting name", chance() < 0.7)
        yield day + (server.random.randrange(1, 4) if chance() < 0.12 else 0), seen
        if chance() < 0.05:  # again
            yield day + server.random.choice((0, 0.5, 2.5)), seen
        if chance() < 0.04:  # between two
            yield day + server.random.choice((0.5, 1.5)), {**seen, "observed_at": text_of(time - DAY / 3)}
        if chance() < 0.03:  # of the same time
            server.live()
            yield day + 0.5, loaded(server.name, server.rows(), time, server.touch)
        if chance() < 0.02:
            yield day + 0.5, refused(server.name, time, "line 7: not the file that it was")


def observations(servers, observations_each, seed=1, calm=False, size="small"):
    """In the order of their arrival: day by day, on each day server by server."""
    life = calm_life if calm else eventful_life
    waiting = {}
    lives = [life(Server(number, seed, size), observations_each) for number in range(servers)]
    if calm:
        for arrivals in zip(*lives):
            yield from (seen for _, seen in arrivals)
        return
    for each in lives:
        for arrival, seen in each:
            waiting.setdefault(arrival, []).append(seen)
    for arrival in sorted(waiting):
        yield from waiting[arrival]


def line_of(observation):
    return json.dumps(observation, ensure_ascii=False, separators=(",", ":")) + "\n"


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--servers", type=int, default=20)
    options.add_argument("--observations", type=int, default=10)
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--calm", action="store_true")
    options.add_argument("--size", choices=("small", "full"), default="small")
    chosen = options.parse_args()
    sys.stdout.reconfigure(encoding="utf-8")
    for seen in observations(chosen.servers, chosen.observations, chosen.seed, chosen.calm, chosen.size):
        sys.stdout.write(line_of(seen))


if __name__ == "__main__":
    main()
