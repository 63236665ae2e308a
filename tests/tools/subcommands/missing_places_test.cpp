// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "support/cds_text.h"
#include "tools/subcommands/command_test.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

class MissingPlaces : public command_test {
protected:
    MissingPlaces() { write("server.xml", cds_file(cds_component("memory_info", {text("Device Locator", "DIMM 1")}))); }

    // Refreshes where a place is closed meanwhile, as it is where it is missing or another user's.
    command_result refresh_without(const std::string& right, const std::string& places,
                                   const std::string& file = "server.xml") const {
        return run("chmod a-" + right + ' ' + places + "; zebdb-cds refresh " + file + "; status=$?; chmod u+" + right +
                   ' ' + places + "; exit $status");
    }
};

TEST_F(MissingPlaces, ThatAreThereNeedNoWord) {
    EXPECT_THAT(run("zebdb-cds refresh server.xml").err, Not(HasSubstr("zebdb-cds:")));
}

TEST_F(MissingPlaces, WithoutTheDigestScriptRefreshSaysThatNoDigestsWereMade) {
    const command_result result = refresh_without("x", "/bin/pci_digest.sh");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: what a controller has is missing here or denied: /bin/pci_digest.sh (no digests were made); "
              "try 'zebdb-cds refresh server.xml --root DIR'");
}

TEST_F(MissingPlaces, OfWhichSeveralAreMissingAreNamedInOneLine) {
    const command_result result = refresh_without("w", "/var/vonk /var/DS");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: what a controller has is missing here or denied: /var/vonk (no digests were kept), /var/DS "
              "(no function keys were saved); try 'zebdb-cds refresh server.xml --root DIR'");
}

TEST_F(MissingPlaces, AreFoldersThatMayBeWrittenAndNotSearched) {
    EXPECT_THAT(refresh_without("x", "/var/vonk /var/DS").last_error_line(),
                HasSubstr("denied: /var/vonk (no digests were kept), /var/DS (no function keys were saved);"));
}

TEST_F(MissingPlaces, ThatAreMissingAreNamedWithACommandForAnyFileName) {
    write("my server.xml", read("server.xml"));
    EXPECT_THAT(refresh_without("w", "/var/vonk", "'my server.xml'").err,
                EndsWith("; try 'zebdb-cds refresh 'my server.xml' --root DIR'\n"));
}

TEST_F(MissingPlaces, ThatAreMissingAreNoMatterOfALoad) {
    const command_result result =
        run("chmod a-w /var/vonk /var/DS; zebdb-cds load server.xml; status=$?; chmod u+w /var/vonk /var/DS; exit "
            "$status");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, Not(HasSubstr("zebdb-cds:")));
}

class ForeignMarker : public MissingPlaces {
protected:
    static constexpr int no_other_user = 77;

    // Runs the command where the marker is somebody else's: given to another user or, by who may not do that, a link to
    // what is root's. Where root is alone in its own namespace there is nobody else.
    command_result beside_a_foreign_marker(const std::string& arguments) const {
        return run(R"sh(
            marker=/tmp/.dmdb_memory_deleted_flag
            touch $marker
            if [ "$(id -u)" -ne 0 ]; then
                ln -sf /etc/passwd $marker
            elif chown 65534 $marker; then
                as_modes_tell="setpriv --bounding-set=-all --inh-caps=-all"
            else
                exit 77
            fi
            $as_modes_tell zebdb-cds )sh" +
                   arguments);
    }

    // The same beside the marker of a user of that number, which others may use as `mode` says.
    command_result beside_the_marker_of(int user, const std::string& mode) const {
        const std::string marker = "/tmp/.dmdb_memory_deleted_flag";
        return run("touch " + marker + "; chmod " + mode + ' ' + marker + "; chown " + std::to_string(user) + ' ' +
                   marker + " || exit 77\nsetpriv --bounding-set=-all --inh-caps=-all zebdb-cds load server.xml");
    }
};

constexpr const char* not_renewed =
    "zebdb-cds: /tmp/.dmdb_memory_deleted_flag, the mark that a load has deleted the memory rows, belongs to the user "
    "(nobody|root) and was not renewed; the rows are loaded all the same";

TEST_F(ForeignMarker, IsNamedAsWhatItIsByALoadThatIsDone) {
    const command_result result = beside_a_foreign_marker("load server.xml");
    if (result.status == no_other_user) {
        GTEST_SKIP() << "root cannot give a file to another user here";
    }
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.last_error_line(), MatchesRegex(not_renewed));
    EXPECT_EQ(query("inventory.db", "SELECT DevLocator FROM Memory"), "DIMM 1");
}

TEST_F(ForeignMarker, IsNamedByARefresh) {
    const command_result result = beside_a_foreign_marker("refresh server.xml");
    if (result.status == no_other_user) {
        GTEST_SKIP() << "root cannot give a file to another user here";
    }
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.last_error_line(), MatchesRegex(not_renewed));
}

TEST_F(ForeignMarker, IsNoneWhenItIsOnesOwn) {
    EXPECT_THAT(run("zebdb-cds load server.xml && zebdb-cds load server.xml").err, Not(HasSubstr("zebdb-cds:")));
}

TEST_F(ForeignMarker, IsNoneWhenItIsOnesOwnAndMayNotBeWritten) {
    EXPECT_THAT(
        run("touch /tmp/.dmdb_memory_deleted_flag; chmod 400 /tmp/.dmdb_memory_deleted_flag; zebdb-cds load server.xml")
            .err,
        Not(HasSubstr("zebdb-cds:")));
}

TEST_F(ForeignMarker, IsNamedByTheNumberOfAUserWithoutAName) {
    const command_result result = beside_the_marker_of(54321, "600");
    if (result.status == no_other_user) {
        GTEST_SKIP() << "nobody can give a file to another user here";
    }
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.last_error_line(),
              "zebdb-cds: /tmp/.dmdb_memory_deleted_flag, the mark that a load has deleted the memory rows, belongs to "
              "user 54321 and was not renewed; the rows are loaded all the same");
}

TEST_F(ForeignMarker, IsNoMatterWhenItMayBeWritten) {
    const command_result result = beside_the_marker_of(65534, "666");
    if (result.status == no_other_user) {
        GTEST_SKIP() << "nobody can give a file to another user here";
    }
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, Not(HasSubstr("zebdb-cds:")));
}
