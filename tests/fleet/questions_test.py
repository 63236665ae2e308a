# SPDX-License-Identifier: Apache-2.0

"""The eight questions, beside answers that were worked out from the observations alone."""

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

    def test_serial_history_is_told_in_the_order_of_time(self):
        told = [row["seen_from"] for row in support.ask(self.url, "serial_history", "SHAREDM3")]
        self.assertGreater(len(told), 1)
        self.assertEqual(told, sorted(told))
