// SPDX-License-Identifier: Apache-2.0

#include "change_detection/shell_path.h"

#include <gmock/gmock.h>

#include <fstream>

#include "console/failure.h"
#include "support/scratch_folder.h"

using testing::EndsWith;
using testing::StartsWith;

namespace {

std::string refusal_of(const std::string& path, std::size_t longest = 1000) {
    try {
        require_shell_path(path, longest);
    } catch (const failure& problem) {
        return problem.what();
    }
    return "none";
}

}  // namespace

TEST(ShellPath, MayHoldLettersDigitsAndWhatMeansNothingToAShell) {
    const scratch_folder folder;
    const std::string path = folder.file("azAZ09._-+,:@%=\u00c0\u00e9");
    std::ofstream{path};
    EXPECT_EQ(refusal_of(path), "none");
}

TEST(ShellPath, HoldsNoBlank) {
    EXPECT_EQ(refusal_of("my server.xml"),
              "refused path 'my server.xml': it goes to a shell as it is and holds a blank; rename the file or name it "
              "by another path");
}

TEST(ShellPath, HoldsNoCharacterThatMeansSomethingToAShell) {
    for (const std::string special : {"$", "`", "\"", "'", "\\", "|", "&", ";", "<", ">", "(",
                                      ")", "*", "?",  "[", "]",  "{", "}", "~", "#", "!", "^"}) {
        EXPECT_EQ(refusal_of("a" + special + "b"), "refused path 'a" + special +
                                                       "b': it goes to a shell as it is and holds the character " +
                                                       special + "; rename the file or name it by another path");
    }
}

TEST(ShellPath, HoldsNoControlCharacter) {
    for (const std::string special : {"\x01", "\n", "\t", "\x1F", "\x7F"}) {
        EXPECT_EQ(refusal_of("a" + special + "b"),
                  "refused path 'a" + special +
                      "b': it goes to a shell as it is and holds a control character; rename "
                      "the file or name it by another path");
    }
}

TEST(ShellPath, HoldsNoZero) {
    EXPECT_THAT(refusal_of(std::string("a\0b", 3)), StartsWith("refused path 'a"));
}

TEST(ShellPath, LooksLikeNoOption) {
    EXPECT_EQ(refusal_of("-x"), "refused path '-x': sha384sum would not take it for a file; put ./ in front");
    EXPECT_EQ(refusal_of(""), "refused path '': sha384sum would not take it for a file; put ./ in front");
}

TEST(ShellPath, IsNoLongerThanTheLibraryTakes) {
    const scratch_folder folder;
    const std::string path = folder.file("file");
    std::ofstream{path};
    EXPECT_EQ(refusal_of(path, path.size()), "none");
    EXPECT_EQ(refusal_of(path, path.size() - 1),
              "refused path '" + path + "': it is " + std::to_string(path.size()) + " bytes long, and beyond " +
                  std::to_string(path.size() - 1) +
                  " the library cuts the command that it stands in; go to its folder with 'cd " +
                  path.substr(0, path.rfind('/')) + "' and name it 'file'");
}

TEST(ShellPath, ThatIsTooLongEvenInItsFolderNeedsAnotherName) {
    const std::string advice = "in; name the file by a shorter path";
    EXPECT_THAT(refusal_of("longer", 5), EndsWith(advice));
    EXPECT_THAT(refusal_of("in/longer", 5), EndsWith(advice));
    EXPECT_THAT(refusal_of("/longer", 5), EndsWith(advice));
    EXPECT_THAT(refusal_of("in/a/folder/", 5), EndsWith(advice));
}

TEST(ShellPath, ThatIsTooLongInTheTopmostFolderNeedsAnotherName) {
    EXPECT_THAT(refusal_of("/short", 5), EndsWith("in; name the file by a shorter path"));
}

TEST(ShellPath, ThatIsTooLongWithItsFolderIsOfferedFromThere) {
    EXPECT_THAT(refusal_of("in/short", 5), EndsWith("in; go to its folder with 'cd in' and name it 'short'"));
    EXPECT_THAT(refusal_of("i/short", 5), EndsWith("in; go to its folder with 'cd i' and name it 'short'"));
}

TEST(ShellPath, NamesAFile) {
    EXPECT_EQ(refusal_of("missing.bin"), "cannot read 'missing.bin': No such file or directory");
}

TEST(ShellPath, LeadsToNoFolder) {
    EXPECT_EQ(refusal_of("."), "cannot read '.': it is a folder; name a file");
}

TEST(ShellPath, LeadsToNothingThatMayHaveNoEnd) {
    EXPECT_EQ(refusal_of("/dev/zero"),
              "cannot read '/dev/zero': it is a pipe or a device, which may have no end; name a file");
}
