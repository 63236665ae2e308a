# SPDX-License-Identifier: Apache-2.0

"""The eight questions, beside answers that were worked out from the observations alone."""

import collections
import re

import clusters
import expected
import observations
import support


class Questions(support.FleetTest):
    @classmethod
    def setUpClass(cls):
        cls.seen = list(observations.observations(support.OPTIONS.servers, support.OPTIONS.observations))
        cls.fleet = expected.Fleet(cls.seen)
        cls.url = support.new_fleet()
        cls.outcomes = clusters.ingest(cls.url, support.lines_of(cls.seen))

    def test_each_observation_does_what_is_expected_of_it(self):
        self.assertEqual(self.outcomes, self.fleet.outcomes)

    def test_history_is_exactly_that_of_the_observations(self):
        self.assert_histories(self.url, self.fleet)

    def test_all_are_answered(self):
        self.assert_answers(self.url, expected.Answers(self.fleet), support.questions_about(self.fleet))

    def frequent_serial(self):
        serials = collections.Counter(version.record.serial for version in self.fleet.versions() if version.record.serial)
        return serials.most_common(1)[0][0]

    def test_serial_history_is_told_in_the_order_of_time(self):
        told = [row["seen_from"] for row in support.ask(self.url, "serial_history", self.frequent_serial())]
        self.assertGreater(len(told), 1)
        self.assertEqual(told, sorted(told))

    def test_the_documentation_shows_the_select_of_each(self):
        """With its example's literal exchanged for one that matters here, it gives as many rows."""
        exchanged = {"part": ("M393A4K40CB2-CVF", "M393A4K40CB2-CVF"), "lost": ("2026-11-21", "2026-01-01"),
                     "lost_capacity": ("2026-11-21", "2026-01-01"), "silent": ("2026-11-20", "2030-01-01"),
                     "serial_history": ("03A00002", self.frequent_serial())}
        text = (support.SOURCE / "docs" / "fleet.md").read_text()
        shown = re.findall(r"^### [^\n]*`fleet\.(\w+)\(.*?^```sql\n(.*?)^```", text, re.MULTILINE | re.DOTALL)
        self.assertEqual({question for question, _ in shown}, set(support.ANSWERED))
        for question, select in shown:
            with self.subTest(question=question):
                before, after = exchanged.get(question, ("", ""))
                self.assertIn(before, select)
                exchanged_select = select.replace(before, after) if before else select
                rows = clusters.psql(self.url, f"select count(*) from ({exchanged_select}) as shown;")
                answer = support.ask(self.url, question, *([after] if before else []))
                self.assertGreater(len(answer), 0)
                self.assertEqual(int(rows), len(answer))

    def test_all_sql_of_the_documentation_runs(self):
        text = (support.SOURCE / "docs" / "fleet.md").read_text()
        for script in re.findall(r"^```sql\n(.*?)^```", text, re.MULTILINE | re.DOTALL):
            clusters.psql(self.url, script + ";")
