// SPDX-License-Identifier: Apache-2.0

#include "difference/row_matching.h"

#include <gmock/gmock.h>

#include <ostream>

#include "rows/table.h"
#include "tools/values.h"

using testing::ElementsAre;
using testing::IsEmpty;

bool operator==(const row_pair& a, const row_pair& b) {
    return a.old_row == b.old_row && a.new_row == b.new_row;
}

bool operator==(const row_group& a, const row_group& b) {
    return a.old_rows == b.old_rows && a.new_rows == b.new_rows;
}

namespace {

using rows = std::vector<std::vector<inventory_value>>;

inventory_value node(std::int64_t index) {
    return index;
}

// Memory of a node, a place, a serial number and a part number.
inventory_table modules(const rows& all) {
    return {&kinds::memory, {"NodeIndex", "DevLocator", "SerialNo", "PartNo"}, all};
}

// Bridges of a node and a bus.
inventory_table bridges(const rows& all) {
    return {&kinds::bridges, {"NodeIndex", "BusNo"}, all};
}

row_matching matched(const rows& old_modules, const rows& new_modules) {
    return match_rows(modules(old_modules), modules(new_modules));
}

}  // namespace

TEST(RowMatching, KeepsRowsOfOneIdentityWhateverElseChanged) {
    const row_matching found = matched({{node(0), "A1", "S1", "P1"}, {node(0), "A2", absent, absent}},
                                       {{node(0), "A2", absent, "P2"}, {node(0), "A1", "S1", "P3"}});
    EXPECT_THAT(found.kept, ElementsAre(row_pair{1, 0}, row_pair{0, 1}));
    EXPECT_THAT(found.moved, IsEmpty());
    EXPECT_THAT(found.added, IsEmpty());
    EXPECT_THAT(found.removed, IsEmpty());
}

TEST(RowMatching, AddsAndRemovesWhatHasNoPartner) {
    const row_matching found = matched({{node(0), "A1", absent, absent}}, {{node(0), "B1", absent, absent}});
    EXPECT_THAT(found.removed, ElementsAre(0));
    EXPECT_THAT(found.added, ElementsAre(0));
}

TEST(RowMatching, MovesASerialNumberToAnotherPlace) {
    const row_matching found = matched({{node(0), "A1", " S1", absent}}, {{node(1), "B1", "S1 ", absent}});
    EXPECT_THAT(found.moved, ElementsAre(row_pair{0, 0}));
}

TEST(RowMatching, MovesASerialNumberAlsoIntoAPlaceThatWasTaken) {
    const row_matching found = matched({{node(0), "A1", "S1", absent}, {node(0), "A2", "S2", absent}},
                                       {{node(0), "A1", "S2", absent}, {node(0), "A2", "S1", absent}});
    EXPECT_THAT(found.moved, ElementsAre(row_pair{1, 0}, row_pair{0, 1}));
    EXPECT_THAT(found.kept, IsEmpty());
}

TEST(RowMatching, TakesAPlaceholderForNoSerialNumber) {
    const row_matching found = matched({{node(0), "A1", "NO DIMM", absent}}, {{node(0), "B1", "NO DIMM", absent}});
    EXPECT_THAT(found.moved, IsEmpty());
}

TEST(RowMatching, DoesNotMoveASerialNumberThatOneInventoryHasTwice) {
    const row_matching found = matched({{node(0), "A1", "S1", absent}, {node(0), "A2", "S1", absent}},
                                       {{node(0), "A1", "S1", absent}, {node(0), "B1", "S1", absent}});
    EXPECT_THAT(found.kept, ElementsAre(row_pair{0, 0}));
    EXPECT_THAT(found.moved, IsEmpty());
    EXPECT_THAT(found.ambiguous, ElementsAre(row_group{{0, 1}, {0, 1}}));
}

TEST(RowMatching, NotesSeveralRowsOfOneIdentityAndMatchesThemInOrder) {
    const row_matching found = matched({{node(0), "A1", absent, "P1"}, {node(0), "A1", absent, "P2"}},
                                       {{node(0), "A1", absent, "P3"}, {node(0), "A1", absent, "P4"}});
    EXPECT_THAT(found.collisions, ElementsAre(row_group{{0, 1}, {0, 1}}));
    EXPECT_THAT(found.kept, ElementsAre(row_pair{0, 0}, row_pair{1, 1}));
}

TEST(RowMatching, MatchesEqualRowsOfOneIdentityFirst) {
    const row_matching found =
        matched({{node(0), "A1", absent, "P1"}, {node(0), "A1", absent, "P2"}}, {{node(0), "A1", absent, "P2"}});
    EXPECT_THAT(found.kept, ElementsAre(row_pair{1, 0}));
    EXPECT_THAT(found.removed, ElementsAre(0));
}

TEST(RowMatching, RecognisesAnAddressInANodeOfAnotherIndex) {
    const row_matching found = match_rows(bridges({{node(1), node(7)}}), bridges({{node(2), node(7)}}));
    EXPECT_THAT(found.kept, ElementsAre(row_pair{0, 0}));
    EXPECT_THAT(found.collisions, IsEmpty());
}

TEST(RowMatching, PrefersTheNodeThatARowHad) {
    const row_matching found =
        match_rows(bridges({{node(1), node(7)}, {node(2), node(7)}}), bridges({{node(2), node(7)}}));
    EXPECT_THAT(found.kept, ElementsAre(row_pair{1, 0}));
    EXPECT_THAT(found.removed, ElementsAre(0));
}

TEST(RowMatching, NotesOneAddressInSeveralNodesThatWereGivenOtherIndexes) {
    const row_matching found = match_rows(bridges({{node(1), node(7)}, {node(2), node(7)}}),
                                          bridges({{node(3), node(7)}, {node(4), node(7)}}));
    EXPECT_THAT(found.kept, ElementsAre(row_pair{0, 0}, row_pair{1, 1}));
    EXPECT_THAT(found.collisions, ElementsAre(row_group{{0, 1}, {0, 1}}));
}

TEST(RowMatching, DoesNotRecogniseALocatorInAnotherNode) {
    const row_matching found = matched({{node(1), "A1", absent, absent}}, {{node(2), "A1", absent, absent}});
    EXPECT_THAT(found.kept, IsEmpty());
}

TEST(RowMatching, TellsAnAbsentValueFromAnEmptyText) {
    const row_matching found = matched({{node(0), "", absent, absent}}, {{node(0), absent, absent, absent}});
    EXPECT_THAT(found.kept, IsEmpty());
}

TEST(RowMatching, HasEveryRowInOnePlace) {
    const row_matching found =
        matched({{node(0), "A1", "S1", absent}, {node(0), "A2", absent, absent}, {node(0), "A3", "S3", absent}},
                {{node(0), "B1", "S1", absent}, {node(0), "A2", absent, absent}, {node(0), "B3", absent, absent}});
    EXPECT_THAT(found.moved, ElementsAre(row_pair{0, 0}));
    EXPECT_THAT(found.kept, ElementsAre(row_pair{1, 1}));
    EXPECT_THAT(found.removed, ElementsAre(2));
    EXPECT_THAT(found.added, ElementsAre(2));
}
