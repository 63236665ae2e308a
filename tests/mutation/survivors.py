# SPDX-License-Identifier: Apache-2.0

"""The list of changes that no test notices, each with the reason why it changes nothing.

An entry is a paragraph: the file, then each line of it that is meant with the changes that are made there, then the
reason. The n-th of several equal changes in lines of one text is followed by `#n`.

    file inventory/check.cpp
    line if (*changed == 1) {
    what == -> >=
    Nothing but 0 and 1 is ever stored there.
"""

from pathlib import Path

LIST = Path(__file__).parent / "survivors.txt"


def key(file, change):
    return file, change.line, change.what + (f" #{change.nth}" if change.nth > 1 else "")


def entry(file, change):
    _, line, what = key(file, change)
    return f"file {file}\nline {line}\nwhat {what}\n"


def listed():
    """The reason of each change that is listed."""
    reasons = {}
    for paragraph in LIST.read_text().split("\n\n"):
        file = line = None
        keys, reason = [], []
        for text in paragraph.strip().splitlines():
            word, _, rest = text.partition(" ")
            if word == "#":
                continue
            if word == "file":
                file = rest
            elif word == "line":
                line = rest
            elif word == "what":
                keys.append((file, line, rest))
            else:
                reason.append(text.strip())
        if keys and not reason:
            raise SystemExit(f"{LIST}: there is no reason for '{keys[0][2]}' in {file}")
        reasons.update(dict.fromkeys(keys, " ".join(reason)))
    return reasons
