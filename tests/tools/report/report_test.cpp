// SPDX-License-Identifier: Apache-2.0

#include "report/report.h"

#include <gmock/gmock.h>

#include <bitset>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include <zebdb_cds_parser/version.h>

#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "explanation/explanation.h"
#include "explanation/explanation_formats.h"
#include "report/embedded_files.h"
#include "report/sections.h"
#include "sources/source_record.h"
#include "support/cds_hardware.h"
#include "support/scratch_folder.h"
#include "tools/report/reported.h"

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
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

// As a policy has it: the digest that people see in hexadecimal digits.
std::string base64_digest_of(const std::string& text) {
    constexpr const char* digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::istringstream in(text);
    std::string bits;
    for (const char digit : digest_of(in).sha256) {
        bits += std::bitset<4>(std::stoul(std::string(1, digit), nullptr, 16)).to_string();
    }
    std::string encoded;
    for (std::size_t i = 0; i < bits.size(); i += 6) {
        std::string six = bits.substr(i, 6);
        six.resize(6, '0');
        encoded += digits[std::bitset<6>(six).to_ulong()];
    }
    return encoded + '=';
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

    std::string file_in_folder(const std::string& name) const { return folder_.file(name); }

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

TEST_F(Report, HasADocumentOfWhatWasLeftOutFirst) {
    const json left_out = document_in(page_about(cds_component("cpu_info", {}) + processor("CPU 1")))["left_out"];
    ASSERT_EQ(left_out.size(), 1u);
    EXPECT_EQ(left_out[0]["path"], "/component/child_slot_group[1]/component[1]");
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

TEST_F(Report, HasAFrameOfLinksToItsSections) {
    const std::string page = page_of(changed_server("Gold 6248 CPU", "Gold 6252 CPU"), sample_server);
    EXPECT_THAT(all_in(page, "<li><a href=\"#([^\"]*\">[^<]*)</a></li>"),
                ElementsAre("section-changes\">Changes", "section-memory\">Memory", "section-processors\">Processors",
                            "section-pci\">PCI", "section-tables\">Tables", "section-left-out\">Left out",
                            "section-settings\">Settings"));
    EXPECT_THAT(all_in(page_of(sample_server), "<li><a href=\"#section-changes\">(Changes)</a></li>"), IsEmpty());
}

TEST_F(Report, IsCalledAfterItsFile) {
    const std::string title = "<title>([^<]*) \u2013 server inventory</title>";
    EXPECT_THAT(all_in(page_of(sample_server), title.c_str()), ElementsAre("two-socket-server.xml"));
    opened_source input = opened_components(processor("CPU 1"), "-");
    EXPECT_THAT(all_in(report_page(input, nullptr, {at, false}), title.c_str()), ElementsAre("standard input"));
    opened_source here = opened_components(processor("CPU 1"), "here.xml");
    const std::string page = report_page(here, nullptr, {at, false});
    EXPECT_THAT(all_in(page, title.c_str()), ElementsAre("here.xml"));
    EXPECT_THAT(page,
                HasSubstr("<h1><span class=\"over\">Server inventory</span> <span class=\"value\">here.xml</span>"));
}

TEST_F(Report, NamesTheProgramThatMadeIt) {
    const std::string page = page_of(sample_server);
    EXPECT_THAT(
        page, AllOf(HasSubstr("<meta name=\"generator\" content=\"zebdb-cds " ZEBDB_CDS_PARSER_VERSION_STRING "\">\n"),
                    HasSubstr("<p>Made by zebdb-cds " ZEBDB_CDS_PARSER_VERSION_STRING ". ")));
    EXPECT_EQ(document_in(page)["made_by"], "zebdb-cds " ZEBDB_CDS_PARSER_VERSION_STRING);
}

TEST_F(Report, AllowsTheStyleAndTheScriptThatItHas) {
    const std::string page = page_of(sample_server);
    const std::string style(embedded_file("page.css"));
    const std::string script(embedded_file("page.js"));
    EXPECT_THAT(page, AllOf(HasSubstr("<style>" + style + "</style>"), HasSubstr("<script>" + script + "</script>")));
    EXPECT_THAT(all_in(page, "style-src 'sha256-([^']*)'"), ElementsAre(base64_digest_of(style)));
    EXPECT_THAT(all_in(page, "script-src 'sha256-([^']*)'"), ElementsAre(base64_digest_of(script)));
}

TEST_F(Report, HasADocumentOfItself) {
    json document = document_in(page_about(processor("CPU 1")));
    EXPECT_EQ(document["made_at"], "2026-11-19T10:00:00Z");
    EXPECT_EQ(document["redacted"], false);
    EXPECT_EQ(document["source"], json({{"name", "shown.xml"}, {"bytes", 7}, {"sha256", "f0f0"}, {"loaded", nullptr}}));
    EXPECT_EQ(document["left_out"], json::array());
    EXPECT_EQ(document["against"], nullptr);
    EXPECT_FALSE(document.contains("difference"));
    EXPECT_EQ(document_in(page_about(processor("CPU 1"), true))["redacted"], true);
}

TEST_F(Report, HasADocumentOfWhatADatabaseWasLoadedFrom) {
    const std::string path = file_in_folder("rows.db");
    _zeb_db_handle_t* handle = nullptr;
    ASSERT_EQ(zeb_db_open(path.c_str(), &handle), 0);
    EXPECT_TRUE(write_source(handle, {"server.xml", 3000, "c0c0", 1795000000}));
    zeb_db_close(handle);
    const json document = document_in(page_of(path));
    EXPECT_EQ(document["source"]["name"], path);
    EXPECT_EQ(document["source"]["loaded"],
              json({{"name", "server.xml"}, {"bytes", 3000}, {"sha256", "c0c0"}, {"at", "2026-11-18T11:06:40Z"}}));
    EXPECT_EQ(document["left_out"], nullptr);
    EXPECT_FALSE(document.contains("explanation"));
}

TEST_F(Report, HasADocumentOfWhatExplainAndDiffTell) {
    opened_source shown = opened_components(processor("CPU 1") + cds_component("cpu_info", {}), "shown.xml");
    opened_source old = opened_components(processor("CPU 2"), "older.xml");
    const json document = document_in(report_page(shown, &old, {at, false}));
    EXPECT_EQ(document["explanation"], json(explanation_document(explanations_of(*shown.document, false))));
    EXPECT_EQ(document["difference"], json(difference_document(compare(old.rows.read_all(), shown.rows.read_all()))));
    EXPECT_EQ(document["against"],
              json({{"name", "older.xml"}, {"bytes", 7}, {"sha256", "f0f0"}, {"loaded", nullptr}}));
}

TEST_F(Report, HidesSerialNumbersOfEachInventoryInItsDocument) {
    const auto with_serial = [](const std::string& serial, const std::string& cores) {
        return processor("CPU 1", {text("Serial Number", serial), integer("Core Count", cores)});
    };
    const std::string older = with_serial("OLD-1", "1") + module("A1", "OLD-2");
    const std::string newer = with_serial("NEW-1", "2") + module("A2", "NEW-2");
    EXPECT_THAT(page_about_changes(older, newer),
                AllOf(HasSubstr("OLD-1"), HasSubstr("OLD-2"), HasSubstr("NEW-1"), HasSubstr("NEW-2")));
    EXPECT_THAT(page_about_changes(older, newer, true), AllOf(Not(HasSubstr("OLD-")), Not(HasSubstr("NEW-"))));
}
