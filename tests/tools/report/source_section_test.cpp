// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <zebdb_cds_parser/version.h>

#include "report/sections.h"
#include "tools/report/reported.h"

namespace {

constexpr std::time_t loading = 1795000000;

std::string end_of_facts(const std::string& redacted) {
    return "<div><dt>Page made</dt><dd>2026-11-19 10:00:00 UTC</dd></div>\n"
           "<div><dt>Version</dt><dd>" ZEBDB_CDS_PARSER_VERSION_STRING
           "</dd></div>\n"
           "<div><dt>Serial numbers</dt><dd>" +
           redacted + "</dd></div>\n</dl>\n";
}

std::string facts_of(const reported_inventory& reported, bool redacted = false) {
    return source_section(reported, time_of_pages, redacted);
}

}  // namespace

TEST(SourceSection, TellsFileTimeAndVersion) {
    EXPECT_EQ(facts_of(reported_rows({})),
              "<dl class=\"facts\">\n"
              "<div><dt>Source</dt><dd class=\"value\">rows.db</dd></div>\n"
              "<div><dt>Size</dt><dd>20480 bytes</dd></div>\n"
              "<div class=\"wide\"><dt>SHA-256</dt><dd><code>d1d1</code></dd></div>\n" +
                  end_of_facts("shown, not redacted"));
}

TEST(SourceSection, TellsWhatADatabaseWasLoadedFrom) {
    reported_inventory reported = reported_rows({});
    reported.source.loaded = source_record{"server.xml", 3000, "c0c0", loading};
    EXPECT_EQ(facts_of(reported),
              "<dl class=\"facts\">\n"
              "<div><dt>Source</dt><dd class=\"value\">rows.db</dd></div>\n"
              "<div><dt>Size</dt><dd>20480 bytes</dd></div>\n"
              "<div class=\"wide\"><dt>SHA-256</dt><dd><code>d1d1</code></dd></div>\n"
              "<div class=\"wide\"><dt>Loaded from</dt><dd><span class=\"value\">server.xml</span>, 3000 bytes, "
              "2026-11-18 11:06:40 UTC<br><code>c0c0</code></dd></div>\n" +
                  end_of_facts("shown, not redacted"));
}

TEST(SourceSection, TellsWhatItIsComparedWith) {
    reported_inventory reported = reported_rows_since({}, {});
    EXPECT_EQ(facts_of(reported, true),
              "<dl class=\"facts\">\n"
              "<div><dt>Source</dt><dd class=\"value\">rows.db</dd></div>\n"
              "<div><dt>Size</dt><dd>20480 bytes</dd></div>\n"
              "<div class=\"wide\"><dt>SHA-256</dt><dd><code>d1d1</code></dd></div>\n"
              "<div class=\"wide\"><dt>Compared with</dt><dd><span class=\"value\">older.db</span>, 16384 bytes<br>"
              "<code>d0d0</code></dd></div>\n" +
                  end_of_facts("redacted, as are asset tags"));
}

TEST(SourceSection, TellsWhatTheOlderDatabaseWasLoadedFrom) {
    reported_inventory reported = reported_rows_since({}, {});
    reported.older->source.loaded = source_record{"-", 2000, "b0b0", loading};
    EXPECT_EQ(
        part_of_page(facts_of(reported), "<dt>Compared", "</div>"),
        "<dt>Compared with</dt><dd><span class=\"value\">older.db</span>, 16384 bytes, loaded 2026-11-18 11:06:40 "
        "UTC from <span class=\"value\">standard input</span><br><code>d0d0</code></dd>");
}

TEST(SourceSection, NamesStandardInput) {
    reported_inventory reported = reported_rows({});
    reported.source.file.name = "-";
    EXPECT_EQ(part_of_page(facts_of(reported), "<dt>Source", "</div>"),
              "<dt>Source</dt><dd class=\"value\">standard input</dd>");
}
