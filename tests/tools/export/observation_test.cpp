// SPDX-License-Identifier: Apache-2.0

#include "export/observation.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <zebdb_cds_parser.h>
#include <nlohmann/json.hpp>

#include "listing/listing_formats.h"
#include "sources/open_inventory.h"
#include "support/cds_hardware.h"
#include "support/scratch_folder.h"
#include "support/small_server.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;
using json = nlohmann::ordered_json;

namespace {

const std::string two_socket_server = SAMPLES_DIR "/two-socket-server.xml";

moment at(std::time_t second, int microseconds = 0) {
    return moment(std::chrono::seconds(second) + std::chrono::microseconds(microseconds));
}

std::vector<std::string> keys_of(const json& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) {
        keys.push_back(key);
    }
    return keys;
}

void set_time(const std::string& path, std::time_t second, long nanoseconds) {
    const timespec times[] = {{second, nanoseconds}, {second, nanoseconds}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

}  // namespace

class Observation : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder_.file(name); }

    std::string make(const std::string& name, const std::string& content = small_server) const {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }

    static json observed(const std::string& name, const observation_options& options = {}) {
        const std::string line = observation_line(observer(options).observe(name));
        EXPECT_THAT(line, EndsWith("}\n"));
        EXPECT_EQ(line.find('\n'), line.size() - 1);
        return json::parse(line);
    }

private:
    scratch_folder folder_;
};

TEST_F(Observation, HasItsKeysInOrder) {
    EXPECT_THAT(keys_of(observed(make("a.xml"))),
                ElementsAre("schema", "server", "observed_at", "source", "status", "reason", "components", "processors",
                            "memory", "bridges", "devices", "left_out"));
}

TEST_F(Observation, OfAFileThatCanBeLoadedSaysSo) {
    const json seen = observed(make("a.xml"));
    EXPECT_EQ(seen["schema"], 1);
    EXPECT_EQ(seen["status"], "loaded");
    EXPECT_EQ(seen["reason"], nullptr);
}

TEST_F(Observation, HasTheRowsThatAListingHas) {
    json listing = listing_document(open_inventory(two_socket_server).read_all());
    const json seen = observed(two_socket_server);
    for (const char* kind : {"processors", "memory", "bridges", "devices"}) {
        EXPECT_FALSE(listing[kind].empty());
        EXPECT_EQ(seen[kind], listing[kind]) << kind;
    }
}

TEST_F(Observation, CountsTheComponentsWithARowAndThoseWithout) {
    const json seen = observed(two_socket_server);
    EXPECT_EQ(seen["components"], 77);
    EXPECT_EQ(seen["left_out"].size(), 13u);
}

TEST_F(Observation, TellsWhatIsLeftOutWithACodeAndReasons) {
    const json seen =
        observed(make("a.xml", cds_file(processor("CPU 1") + cds_component("pci_device_info", address("3b")))));
    const json expected = {
        {"path", "/component/child_slot_group[1]/component[2]"},
        {"title", "PCI function 0000:3b:00.0"},
        {"code", "no_location"},
        {"reasons",
         {"its location is unknown; any 'Location' but 2, or the class code 0x010802 of an NVMe drive, would have made "
          "a row",
          "there is no setting 'Location' in pci_device_info"}},
    };
    EXPECT_THAT(seen["left_out"], ElementsAre(expected));
}

TEST_F(Observation, IsOfTheServerThatTheFileIsNamedAfter) {
    EXPECT_EQ(observed(make("web-17.xml"))["server"], "web-17");
    EXPECT_EQ(observed(make("web-17.lab.xml"))["server"], "web-17.lab");
    EXPECT_EQ(observed(make("web-17"))["server"], "web-17");
    EXPECT_EQ(observed(make("web-17.lab"))["server"], "web-17.lab");
    EXPECT_EQ(observed(make(".xml"))["server"], ".xml");
}

TEST_F(Observation, IsOfTheServerThatIsNamed) {
    EXPECT_EQ(observed(make("a.xml"), {"web-17", {}, false})["server"], "web-17");
}

TEST_F(Observation, HasTheTimeOfTheFile) {
    const std::string file = make("a.xml");
    set_time(file, 1795082400, 0);
    EXPECT_EQ(observed(file)["observed_at"], "2026-11-19T10:00:00Z");
    set_time(file, 1795082400, 250'000'999);
    EXPECT_EQ(observed(file)["observed_at"], "2026-11-19T10:00:00.250000Z");
}

TEST_F(Observation, HasTheTimeThatIsGiven) {
    EXPECT_EQ(observed(make("a.xml"), {"", at(1795082400, 1), false})["observed_at"], "2026-11-19T10:00:00.000001Z");
}

TEST_F(Observation, OfWhatHasNoTimeIsOfThePresent) {
    const auto before = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    const observation seen = observer({}).observe(path("nowhere.xml"));
    EXPECT_GE(seen.observed_at, before);
    EXPECT_LE(seen.observed_at, std::chrono::system_clock::now());
}

TEST_F(Observation, NamesItsSource) {
    const json seen = observed(make("empty-server.xml", "<component/>"));
    const json expected = {{"name", path("empty-server.xml")},
                           {"bytes", 12},
                           {"sha256", "d53e82d7895370211e61a4c280afc9039ba41cf333289d471f9f4b3341cb85d4"}};
    EXPECT_EQ(seen["source"], expected);
}

TEST_F(Observation, OfARefusedFileHasEveryKeyAndNoRows) {
    const json seen = observed(SAMPLES_DIR "/errors/truncated.xml");
    EXPECT_EQ(keys_of(seen), keys_of(observed(make("a.xml"))));
    EXPECT_EQ(seen["status"], "refused");
    EXPECT_THAT(seen["reason"].get<std::string>(), StartsWith("line 7, column "));
    EXPECT_EQ(seen["components"], 0);
    for (const char* list : {"processors", "memory", "bridges", "devices", "left_out"}) {
        EXPECT_EQ(seen[list], json::array()) << list;
    }
    EXPECT_EQ(seen["source"]["bytes"], 157);
    EXPECT_EQ(seen["source"]["sha256"].get<std::string>().size(), 64u);
}

TEST_F(Observation, OfAFileThatIsWrittenMeanwhileIsRefused) {
    const std::string file = make("a.xml", small_server + std::string(1'000'000, ' '));
    std::atomic<bool> is_done(false);
    std::thread writer([&] {
        for (std::ofstream out(file, std::ios::app); !is_done; out << std::endl) {
        }
    });
    json seen;
    for (int attempts = 0; attempts < 100 && seen["status"] != "refused"; ++attempts) {
        seen = observed(file);
    }
    is_done = true;
    writer.join();
    EXPECT_EQ(seen["reason"], "it was changed while it was read; try again");
}

TEST_F(Observation, OfAnEmptyFileIsRefusedWithItsDigest) {
    const json seen = observed(make("a.xml", ""));
    EXPECT_EQ(seen["reason"], "the file is empty");
    EXPECT_EQ(seen["source"]["bytes"], 0);
    EXPECT_EQ(seen["source"]["sha256"], "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST_F(Observation, OfWhatCannotBeReadHasNoDigest) {
    const json seen = observed(path("nowhere.xml"));
    EXPECT_EQ(seen["server"], "nowhere");
    EXPECT_EQ(seen["status"], "refused");
    EXPECT_EQ(seen["reason"], "No such file or directory");
    EXPECT_EQ(seen["source"], (json{{"name", path("nowhere.xml")}, {"bytes", nullptr}, {"sha256", nullptr}}));
}

TEST_F(Observation, OfADatabaseIsRefused) {
    const json seen = observed(make("a.xml", std::string("SQLite format 3\0", 16) + std::string(100, ' ')));
    EXPECT_THAT(seen["reason"].get<std::string>(), HasSubstr("it is a database and no CDS file"));
}

TEST_F(Observation, OfAFileWhoseNameIsNotUtf8IsRefusedUnlessTheServerIsNamed) {
    const std::string file = make("caf\xe9.xml");
    const json seen = observed(file);
    EXPECT_EQ(seen["server"], "caf\xef\xbf\xbd");
    EXPECT_EQ(seen["status"], "refused");
    EXPECT_EQ(seen["reason"],
              "its name is not UTF-8, so that it names no server; rename it, or name the server by --server");
    EXPECT_EQ(observed(file, {"cafe", {}, false})["status"], "loaded");
}

TEST_F(Observation, OfAFileInAFolderWhoseNameIsNotUtf8IsLoaded) {
    fs::create_directory(path("caf\xe9"));
    const json seen = observed(make("caf\xe9/a.xml"));
    EXPECT_EQ(seen["server"], "a");
    EXPECT_EQ(seen["status"], "loaded");
}

TEST_F(Observation, HidesSerialNumbers) {
    const json seen = observed(make("a.xml"), {"", {}, true});
    EXPECT_EQ(seen["processors"][0]["SerialNo"], "[redacted]");
    EXPECT_THAT(seen.dump(), testing::Not(HasSubstr("SECRET")));
    EXPECT_THAT(observed(make("a.xml")).dump(), HasSubstr("SECRET"));
}

TEST_F(Observation, OfAPipeHasTheDigestOfAllThatComesOutOfIt) {
    for (const std::string& content : {small_server, "<component></other>" + std::string(300'000, ' ')}) {
        const std::string pipe = path("pipe.xml");
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        std::thread writer([&] { std::ofstream(pipe) << content; });
        const json piped = observed(pipe);
        writer.join();
        fs::remove(pipe);
        const json filed = observed(make("file.xml", content));
        EXPECT_EQ(piped["source"]["bytes"], content.size());
        EXPECT_EQ(piped["source"]["sha256"], filed["source"]["sha256"]);
        EXPECT_EQ(piped["reason"], filed["reason"]);
        EXPECT_EQ(piped["devices"], filed["devices"]);
    }
}

TEST_F(Observation, DoesNotDependOnThoseBefore) {
    observer one({"", at(1795082400), false});
    const std::string small = make("small.xml");
    const std::string before = observation_line(one.observe(small));
    one.observe(two_socket_server);
    one.observe(SAMPLES_DIR "/errors/truncated.xml");
    EXPECT_EQ(observation_line(one.observe(small)), before);
}
