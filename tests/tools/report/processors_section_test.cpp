// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "report/sections.h"
#include "tools/report/reported.h"
#include "tools/values.h"

using testing::ElementsAre;

TEST(ProcessorsSection, TellsOfEachProcessor) {
    const inventory_table processors{
        &kinds::processors,
        {"NodeIndex", "Socket", "Version", "CoreCount", "CoreEnabled", "ThreadCount", "CurSpeed", "L3CacheInstalled"},
        {{number(2), " CPU 1 ", " Fast ", number(20), number(16), number(40), number(2500), number(1024)},
         {absent, "-", absent, absent, absent, absent, absent, absent}}};
    EXPECT_THAT(found_in(processors_section(reported_rows({processors})), "<summary>([^]*?)</summary>"),
                ElementsAre("<span class=\"slot-name value\">CPU 1</span> <span class=\"muted\">Node 2</span>\n"
                            "<strong class=\"value\">Fast</strong>\n"
                            "<span class=\"muted\"><span class=\"fact\">cores enabled 16/20</span> "
                            "<span class=\"fact\">threads 40</span> <span class=\"fact\">speed 2500 MHz</span> "
                            "<span class=\"fact\">L3 cache 1 MiB</span> </span>\n\n",
                            "<span class=\"slot-name value\"></span> <span class=\"muted\">No node</span>\n"
                            "<strong class=\"value\"></strong>\n<span class=\"muted\"></span>\n\n"));
}

TEST(ProcessorsSection, SaysThatThereAreNone) {
    EXPECT_EQ(processors_section(reported_rows({})),
              "<section id=\"section-processors\" aria-label=\"Processors\">\n<h2>Processors</h2>\n"
              "<div class=\"processors\">\n</div>\n<p class=\"none\">No processors are recorded.</p>\n</section>\n");
}
