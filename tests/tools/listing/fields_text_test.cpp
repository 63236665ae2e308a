// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <string>

#include "listing/fields_formats.h"
#include "rows/kinds.h"
#include "tools/listing/fans.h"

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(FieldsText, TellsOfEveryColumnAndOfWhatItsNumbersStandFor) {
    EXPECT_EQ(fields_text({&fans}, {}),
              "Fans: table Fan, group fan_info\n"
              "  Name\n"
              "    what it is called\n"
              "    from    the rule\n"
              "  Speed\n"
              "    how fast it turns\n"
              "    unit    MHz\n"
              "    from    'Speed'\n"
              "    absent  it stands\n"
              "  Serial\n"
              "    absent  it has none; stored as -1\n"
              "  Place\n"
              "    where it sits\n"
              "    values  location\n"
              "    from    'Place'\n"
              "  State\n"
              "    how it is\n"
              "    values  processor status\n"
              "    from    'State'\n"
              "  Can\n"
              "    what it can\n"
              "    values  processor characteristics\n"
              "    from    'Can'\n"
              "\n"
              "processor status (SMBIOS 7.5, offset 18h)\n"
              "  bits 2-0: 0 unknown, 1 enabled, 2 disabled by the user, 3 disabled by the firmware, 4 idle, 7 other\n"
              "  bit 6: the socket is populated\n"
              "\n"
              "processor characteristics (SMBIOS 7.5.9)\n"
              "  bit 1  unknown\n"
              "  bit 2  64-bit capable\n"
              "  bit 3  multi-core\n"
              "  bit 4  several hardware threads a core\n"
              "  bit 5  execute protection\n"
              "  bit 6  enhanced virtualization\n"
              "  bit 7  power and performance control\n"
              "  bit 8  128-bit capable\n"
              "  bit 9  Arm64 SoC ID\n"
              "\n"
              "location (the firmware's own)\n"
              "  0  on the board\n"
              "  2  unknown\n"
              "  and others\n");
}

TEST(FieldsText, HasBoldHeadingsWhereControlSequencesAreUnderstood) {
    text_style style;
    style.has_control_sequences = true;
    const std::string shown = fields_text({&fans}, style);
    EXPECT_THAT(shown, StartsWith("\033[1mFans: table Fan, group fan_info\033[0m\n  Name\n"));
    EXPECT_THAT(shown, HasSubstr("\n\n\033[1mlocation (the firmware's own)\033[0m\n  0  on the board\n"));
}

TEST(FieldsText, TellsOfTheKindsInTheirOrder) {
    const std::string shown = fields_text({&kinds::memory, &kinds::bridges}, {});
    EXPECT_THAT(shown, StartsWith("Memory: table Memory, group memory_info\n  Id\n    row id\n"));
    EXPECT_THAT(shown, HasSubstr("\n\nBridges: table PCIBridge, group pci_bridge_info\n  Id\n    row id\n"));
    EXPECT_THAT(shown, Not(HasSubstr("link speed")));
}

TEST(FieldsText, NamesTheValueThatStandsForAnAbsentOne) {
    EXPECT_THAT(fields_text({&kinds::bridges}, {}), HasSubstr("; stored as -1\n"));
    EXPECT_THAT(fields_text({&kinds::bridges}, {}), HasSubstr("; stored as 4294967295\n"));
}
