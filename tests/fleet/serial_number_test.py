# SPDX-License-Identifier: Apache-2.0

"""Which texts are no serial numbers: the database and the command have one rule."""

import json
import random
import subprocess

import clusters
import expected
import observations
import support

PIECES = ["0x", "0X", " ", "\t", "\u00a0", "-", "_", ".", "/", "0", "1", "x", "é", "É", "ß", "İ", "ſ", "K", "٣", "０", "Ａ", "\u0301",
          "no", "NO", "dimm", "12345678", "9", "n/a", "\n", "\v", "\x01", "\x7f", "\u0085", "\u2028", "存", "\U0001f4be"]


def texts():
    """Every placeholder in many spellings, and what is nearly one."""
    chance = random.Random(1)
    for placeholder in sorted(text.decode() for text in expected.PLACEHOLDERS):
        yield from (placeholder, placeholder.upper(), f" {placeholder.title()}\t", f"0x{placeholder}", f"{placeholder}1",
                    f"\u00a0{placeholder}", placeholder[:-1], ".".join(placeholder), f"{placeholder}é", f"- {placeholder} -")
    yield from observations.HOSTILE
    yield from PIECES
    yield from (piece * 3 for piece in PIECES)
    for _ in range(3000):
        yield "".join(chance.choices(PIECES, k=chance.randrange(6)))


class RealSerial(support.FleetTest):
    @classmethod
    def setUpClass(cls):
        cls.texts = list(texts())
        done = subprocess.run([support.OPTIONS.real_serials], input=json.dumps(cls.texts).encode(), check=True,
                              stdout=subprocess.PIPE)
        cls.of_the_command = json.loads(done.stdout)

    def differing(self, serials):
        return [(text, serial, other) for text, serial, other in zip(self.texts, self.of_the_command, serials)
                if serial != other]

    def test_the_database_has_the_rule_of_the_command(self):
        lines = [json.dumps(text, ensure_ascii=False) + "\n" for text in self.texts]
        said = clusters.psql(support.new_fleet(), clusters.copied(lines) + """
            select json_agg(fleet.real_serial(line #>> '{}') order by n) from arriving;""")
        serials = json.loads(said)
        self.assertEqual(len(serials), len(self.texts))
        self.assertEqual(self.differing(serials), [])

    def test_what_is_expected_of_histories_has_it_too(self):
        self.assertEqual(self.differing(map(expected.real_serial, self.texts)), [])
