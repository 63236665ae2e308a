#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0

"""usage: growing_cds.py SHAPE N [--changed]

Prints a CDS file in which one thing is there N times, by which it is seen whether what a command does grows with the
file or faster. With --changed every part is at another place than without.
"""

import argparse

FUNCTIONS = 8
DEVICES = 32


def setting(name, value):
    tag = "text_value" if isinstance(value, str) else "integer_value"
    return f"<setting><name>{name}</name><{tag}>{value}</{tag}></setting>"


def group(name, settings):
    return f"<setting_group><name>{name}</name>{''.join(setting(*each) for each in settings.items())}</setting_group>"


def component(*groups, children=()):
    slots = "".join(f"<child_slot_group>{each}</child_slot_group>" for each in children)
    return f"<component>{''.join(groups)}{slots}</component>"


def address(number):
    return {
        "Segment Number": 0,
        "Bus Number": number // (DEVICES * FUNCTIONS),
        "Device Number": number // FUNCTIONS % DEVICES,
        "Function Number": number % FUNCTIONS,
    }


def function(number):
    identity = {"Vendor ID": 0x8086, "Device ID": 0x1572, "Class Code": 0x020000}
    return component(group("pci_device_info", {**address(number), **identity, "Location": 1, "Slot Number": number + 1}))


def module(place, serial):
    settings = {"Device Locator": f"DIMM {place}", "Size in MB": 16384, "Serial Number": serial}
    return component(group("memory_info", settings))


def bridges(depth, first_bus):
    below = ""
    for level in reversed(range(depth)):
        numbers = {"Primary Bus Number": level, "Secondary Bus Number": level + 1, "Subordinate Bus Number": depth}
        place = {"Segment Number": 0, "Bus Number": level, "Device Number": first_bus, "Function Number": 0}
        info = group("pci_bridge_info", {**place, "Class Code": 0x060400, **numbers})
        below = component(info, children=[below] if below else [])
    return below


def many_components(n, shift):
    return [function(number + shift) for number in range(n)]


def huge_list(n, shift):
    return ["".join(many_components(n, shift))]


def huge_group(n, shift):
    settings = {f"Setting {number}": number + shift for number in range(n)}
    return [component(group("memory_info", {"Device Locator": "DIMM 0", **settings}))]


def deep_bridges(n, shift):
    return [bridges(n, shift)]


def equal_identities(n, shift):
    return ["".join(function(shift) + module(shift, f"S{number}") for number in range(n // 2))]


def equal_serials(n, shift):
    return ["".join(module(number + shift, "S") for number in range(n))]


SHAPES = {
    "components": many_components,
    "group": huge_group,
    "children": huge_list,
    "bridges": deep_bridges,
    "identities": equal_identities,
    "serials": equal_serials,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("shape", choices=SHAPES)
    parser.add_argument("n", type=int)
    parser.add_argument("--changed", action="store_true")
    arguments = parser.parse_args()
    server = component(
        group("component_struct_info", {"comp_type": "EFI_CT_MAIN_SERVER", "slot_index": 0}),
        children=SHAPES[arguments.shape](arguments.n, 1 if arguments.changed else 0),
    )
    print(f'<?xml version="1.0" encoding="UTF-8"?>\n{server}')


main()
