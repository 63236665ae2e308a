// SPDX-License-Identifier: Apache-2.0

#include "report/report.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>

#include "report/sections.h"
#include "support/cds_hardware.h"
#include "support/scratch_folder.h"

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* sample_server = SAMPLES_DIR "/two-socket-server.xml";
constexpr std::time_t at = 1795082400;

std::string page_of(const std::string& name, const std::string& old_name = "", bool redact = false) {
    opened_source shown = open_source(name);
    if (old_name.empty()) {
        return report_page(shown, nullptr, {at, redact});
    }
    opened_source old = open_source(old_name);
    return report_page(shown, &old, {at, redact});
}

std::string text_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// What stands between the two in `page`.
std::string between(const std::string& page, const std::string& first, const std::string& last) {
    const std::size_t begin = page.find(first);
    EXPECT_NE(begin, std::string::npos) << first;
    return page.substr(begin, page.find(last, begin) - begin);
}

json document_in(const std::string& page) {
    const std::string tag = "<script type=\"application/json\" id=\"inventory\">";
    const std::string script = between(page, tag, "</script>");
    return json::parse(script.substr(tag.size()));
}

std::vector<std::string> all_in(const std::string& page, const char* pattern) {
    const std::regex form(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator each(page.begin(), page.end(), form), end; each != end; ++each) {
        found.push_back((*each)[1]);
    }
    return found;
}

}  // namespace

/// A page about the server of the samples, or one that differs from it.
class Report : public testing::Test {
protected:
    /// A file with these components.
    std::string file_of(const std::string& name, const std::string& components) const {
        std::ofstream(folder_.file(name)) << cds_file(components);
        return folder_.file(name);
    }

    std::string changed_server(const std::string& before, const std::string& after) const {
        const std::string changed = std::regex_replace(text_of(sample_server), std::regex(before), after);
        std::ofstream(folder_.file("changed.xml")) << changed;
        return folder_.file("changed.xml");
    }

private:
    scratch_folder folder_;
};

TEST_F(Report, IsTheSameForTheSameInput) {
    EXPECT_EQ(page_of(sample_server), page_of(sample_server));
}

// Where this fails, in tests/tools/report/page:
// zebdb-cds report server.xml --against older.xml | sed -n '/^<main/,/^<.main/p' >page.html
TEST_F(Report, IsThePageAmongTheTests) {
    const std::string folder = SOURCE_DIR "/tests/tools/report/page/";
    const std::string page = page_of(folder + "server.xml", folder + "older.xml");
    const std::string shown = between(page, "<main", "</main>") + "</main>\n";
    EXPECT_EQ(std::regex_replace(shown, std::regex(folder), ""), text_of(folder + "page.html"));
}

TEST_F(Report, SaysWhatItIsAbout) {
    const std::string facts = between(page_of(sample_server), "<dl class=\"facts\">", "</dl>");
    EXPECT_THAT(facts,
                AllOf(HasSubstr(sample_server), HasSubstr(std::to_string(text_of(sample_server).size()) + " bytes"),
                      HasSubstr("2026-11-19 10:00:00 UTC"), HasSubstr("not redacted")));
    EXPECT_EQ(all_in(facts, "<code>([0-9a-f]{64})</code>").size(), 1u);
}

TEST_F(Report, HasAVerdict) {
    EXPECT_THAT(page_of(sample_server),
                HasSubstr("<p class=\"verdict\">64 of 77 components recorded, 13 left out</p>"));
}

TEST_F(Report, CountsChangesInItsVerdict) {
    const std::string changed = changed_server("Gold 6248 CPU", "Gold 6252 CPU");
    EXPECT_THAT(page_of(changed, sample_server),
                HasSubstr("13 left out, 2 changes since " + std::string(sample_server) + "</p>"));
    EXPECT_THAT(page_of(sample_server, sample_server),
                HasSubstr("13 left out, no change since " + std::string(sample_server) + "</p>"));
}

TEST_F(Report, ShowsChangedValuesOldAndNew) {
    const std::string changed = changed_server("Gold 6248 CPU", "Gold 6252 CPU");
    const std::string section = between(page_of(changed, sample_server), "id=\"section-changes\"", "</section>");
    EXPECT_THAT(section, AllOf(HasSubstr("<del>Intel(R) Xeon(R) Gold 6248 CPU @ 2.50GHz</del>"),
                               HasSubstr("<ins>Intel(R) Xeon(R) Gold 6252 CPU @ 2.50GHz</ins>")));
}

TEST_F(Report, HasNoSectionOfChangesWithoutAnOlderInventory) {
    EXPECT_THAT(page_of(sample_server), Not(HasSubstr("section-changes")));
}

TEST_F(Report, HasADocumentWithEveryRow) {
    const json document = document_in(page_of(sample_server));
    EXPECT_EQ(document["processors"].size(), 2u);
    EXPECT_EQ(document["memory"].size(), 24u);
    EXPECT_EQ(document["bridges"].size(), 18u);
    EXPECT_EQ(document["devices"].size(), 20u);
    EXPECT_EQ(document["left_out"].size(), 13u);
    EXPECT_EQ(document["against"], nullptr);
}

TEST_F(Report, HasADocumentOfWhatWasLeftOut) {
    const std::string page = page_of(file_of("a.xml", processor("CPU 1") + cds_component("cpu_info", {})));
    EXPECT_EQ(document_in(page)["left_out"], json::parse(R"([{
                  "id": "unnamed", "path": "/component/child_slot_group[1]/component[2]", "title": "processor",
                  "code": "nothing_known", "reasons": ["the loader knows none of the settings in cpu_info; any that it )"
                                                         R"(knows, such as 'Socket Designation', would have made a row"]
              }])"));
}

TEST_F(Report, HasADocumentOfTheOlderInventory) {
    EXPECT_EQ(document_in(page_of(sample_server, sample_server))["against"]["name"], sample_server);
}

TEST_F(Report, TellsTheCodeOfWhatWasLeftOut) {
    EXPECT_THAT(page_of(sample_server),
                HasSubstr("id=\"0000:00:1f.4\" data-kind=\"devices\" data-place=\"0000:00:1f.4\" "
                          "data-reason=\"no_location\""));
}

TEST_F(Report, HasEveryIdOnceAndKnowsItsOwn) {
    const std::string page = page_of(sample_server, sample_server);
    std::vector<std::string> ids = all_in(page, " id=\"([^\"]*)\"");
    const std::size_t count = ids.size();
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    EXPECT_EQ(ids.size(), count);
    for (const char* file : {"page.html", "changes.html", "memory.html", "processors.html", "topology.html",
                             "tables.html", "left_out.html", "settings.html"}) {
        for (const std::string& id :
             all_in(text_of(SOURCE_DIR "/tools/report/" + std::string(file)), " id=\"([a-z-]+)\"")) {
            EXPECT_THAT(ids_of_the_page(), Contains(id)) << file;
        }
    }
}

TEST_F(Report, PutsMemorySlotsToTheirSockets) {
    const std::string section = between(page_of(sample_server), "id=\"section-memory\"", "</section>");
    EXPECT_EQ(all_in(section, "<h3 class=\"value\">(CPU [12], Intel)").size(), 2u);
    EXPECT_THAT(section, HasSubstr("8 of 12 slots filled"));
}

TEST_F(Report, PutsWhatWasLeftOutWhereItStandsInTheTree) {
    const std::string tree = between(page_of(sample_server), "<div class=\"tree\">", "</section>");
    EXPECT_LT(tree.find("id=\"0000:00:1c.0\""), tree.find("id=\"0000:00:1f.4\""));
    EXPECT_LT(tree.find("id=\"0000:00:17.0\""), tree.find("id=\"0000:00:1c.0\""));
}

TEST_F(Report, PutsWhatWasLeftOutBelowTheBridgeBeforeIt) {
    const std::string functions = function("2") + function("3");
    const std::string left_out = cds_component("pci_device_info", address("5"));
    const std::string page = page_of(file_of("a.xml", bridge("1", {}, functions) + bridge("4", {}, left_out)));
    const std::string tree = between(page, "<div class=\"tree\">", "</section>");
    EXPECT_LT(tree.find("id=\"0000:04:00.0\""), tree.find("id=\"0000:05:00.0\"")) << tree;
}

TEST_F(Report, PutsSlotsWithoutASocketToTheOnlyProcessor) {
    const std::string modules = module("A1", "S1") + module("A2", "S2");
    EXPECT_THAT(page_of(file_of("a.xml", processor("CPU 1") + modules)), HasSubstr("<h3 class=\"value\">CPU 1</h3>"));
    EXPECT_THAT(page_of(file_of("a.xml", processor("CPU 1") + processor("CPU 2") + modules)),
                HasSubstr("<h3 class=\"value\">Slots whose names do not tell the socket</h3>"));
}

TEST_F(Report, TellsOfOlderRecordsOfAPlaceThatIsGone) {
    const std::string old = file_of("old.xml", module("A1", "S1") + module("A1", "S2") + module("A2", "S3"));
    EXPECT_THAT(page_of(file_of("new.xml", module("A2", "S3")), old),
                HasSubstr("A1: 2 older records and 0 records here, matched in their order."));
}

TEST_F(Report, TellsOfComponentsWhoseGroupsAreNotRecorded) {
    EXPECT_THAT(page_of(file_of("a.xml", cds_component("memory-info", {text("Device Locator", "A1")}))),
                HasSubstr("1 component has a group that is not recorded"));
}

TEST_F(Report, ShortensLongTextsOfItsPicture) {
    const std::string page =
        page_of(file_of("a.xml", function("1", {text("Slot Designation", std::string(200, 'x'))})));
    const std::string picture = between(page, "<svg", "</svg>");
    EXPECT_THAT(picture, AllOf(HasSubstr("xxx\u2026<"), Not(HasSubstr(std::string(93, 'x')))));
}

TEST_F(Report, HidesSerialNumbersEverywhere) {
    const std::string page = page_of(sample_server, changed_server("0K2S7A1", "0K2S7B1"), true);
    EXPECT_THAT(page_of(sample_server), HasSubstr("0K2S7A1000000001"));
    EXPECT_THAT(page, AllOf(Not(HasSubstr("0K2S7A1")), Not(HasSubstr("0K2S7B1")), Not(HasSubstr("CPU1-ASSET")),
                            HasSubstr("redacted, as are asset tags")));
}

TEST_F(Report, LetsTheBrowserTakeNothingFromOutside) {
    const std::string page = page_of(sample_server);
    EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; style-src 'sha256-"));
    const std::vector<std::string> hashes = all_in(page, "-src 'sha256-([A-Za-z0-9+/]{43}=)'");
    ASSERT_EQ(hashes.size(), 2u);
    EXPECT_NE(hashes[0], hashes[1]);
    EXPECT_TRUE(all_in(page, "(src=|url\\(|@import|https?:)").empty());
}

TEST_F(Report, IsAPageAlsoWithoutHardware) {
    EXPECT_THAT(page_of(SAMPLES_DIR "/no-hardware.xml"), HasSubstr("0 of 0 components recorded, none left out"));
}
