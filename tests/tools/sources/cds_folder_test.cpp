// SPDX-License-Identifier: Apache-2.0

#include "sources/cds_folder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "console/failure.h"
#include "support/scratch_folder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

class CdsFolder : public testing::Test {
protected:
    void make(const std::string& name) const { std::ofstream(folder_.file(name)) << "<component/>"; }
    std::string path(const std::string& name) const { return folder_.file(name); }
    std::vector<std::string> files() const { return cds_files_in(folder_.file("")); }

private:
    scratch_folder folder_;
};

TEST_F(CdsFolder, StandsForItsFilesInTheOrderOfTheirBytes) {
    for (const char* name : {"b.xml", "a.xml", "\xc3\xa4.xml", "B.xml", "a b.xml", "~.xml"}) {
        make(name);
    }
    EXPECT_THAT(files(), ElementsAre(path("B.xml"), path("a b.xml"), path("a.xml"), path("b.xml"), path("~.xml"),
                                     path("\xc3\xa4.xml")));
}

TEST_F(CdsFolder, StandsForNoFileOfAnotherNameOrHidden) {
    for (const char* name : {"a.txt", "a.XML", "a.xml.gz", "xml", ".xml", ".a.xml"}) {
        make(name);
    }
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CdsFolder, StandsForNothingInAFolderBelow) {
    fs::create_directory(path("below.xml"));
    make("below.xml/a.xml");
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CdsFolder, StandsForALinkWhetherItLeadsSomewhereOrNot) {
    make("real");
    fs::create_symlink("real", path("good.xml"));
    fs::create_symlink("nowhere", path("broken.xml"));
    EXPECT_THAT(files(), ElementsAre(path("broken.xml"), path("good.xml")));
}

TEST_F(CdsFolder, StandsAlsoForWhatCannotBeLookedAt) {
    fs::create_symlink("loop.xml", path("loop.xml"));
    EXPECT_THAT(files(), ElementsAre(path("loop.xml")));
}

TEST_F(CdsFolder, IsAFolder) {
    make("a.xml");
    EXPECT_TRUE(is_folder(path("")));
    EXPECT_FALSE(is_folder(path("a.xml")));
    EXPECT_FALSE(is_folder(path("nowhere")));
}

TEST_F(CdsFolder, ThatIsNoneIsAFailure) {
    EXPECT_THROW(cds_files_in(path("nowhere")), failure);
}
