// What every file system does.
#include "tests/contract/file_system_contract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::StartsWith;

INSTANTIATE_TEST_SUITE_P(On, FileSystemContract, ::testing::ValuesIn(FileWorldMakers()),
                         [](const auto& tested) { return std::string(tested.param.name); });

// --- FolderExists

TEST_P(FileSystemContract, FolderExistsForEverySpellingOfAFolder) {
  for (const char* path : {R"(D:\Data)",
                           R"(D:\Data\)",
                           R"(D:\Data\\)",
                           R"(D:\\Data)",
                           "D:/Data",
                           "d:/data",
                           "D:Data",
                           R"(D:\DATA)",
                           R"(D:\Data )",
                           R"(D:\Data.)",
                           R"(D:\Data  ....   ..   )",
                           R"(D:\Data\  ....   ..   )",
                           R"(D:\Data\.)",
                           R"(D:\.\Data)",
                           R"(D:\x\..\Data)",
                           R"(D:\..\..\Data)",
                           R"(D:\Data. \)",
                           R"(D:\)",
                           "D:",
                           R"(D:\Data\..)"}) {
    EXPECT_TRUE(files_.FolderExists(path)) << path;
  }
}

TEST_P(FileSystemContract, FolderExistsIsFalseForWhateverIsNoFolder) {
  Put(R"(D:\Data\shops.dbf)");
  for (const std::string path :
       {R"()", R"( )", R"(   )", R"(D:\Data\shops.dbf)", R"(D:\Data\shops.dbf\x)", R"(D:\Missing)",
        R"(D:\Da*)", R"(D:\Dat?)", R"(Q:\)", R"(Q:\Data)", R"(\\server\share)", R"(\\)",
        R"(D:\Data\x:y)", R"(D:\Dat)", R"(D:\Data1)"}) {
    EXPECT_FALSE(files_.FolderExists(path)) << path;
  }
  EXPECT_FALSE(files_.FolderExists(R"(D:\)" + std::string(5000, 'x')));
  EXPECT_FALSE(files_.FolderExists(std::string("D:\\Data\0x", 9)));
}

TEST_P(FileSystemContract, OneLeadingSeparatorIsTheRootAndNoShare) {
  EXPECT_TRUE(files_.FolderExists("\\"));
  EXPECT_TRUE(files_.FolderExists("/"));
  EXPECT_FALSE(files_.FolderExists(R"(\server-that-is-missing\share)"));
}

TEST_P(FileSystemContract, RelativePathsStartInTheCurrentFolder) {
  files_.CreateFolder(R"(D:\Data\North)");
  world_->SetCurrentFolder(R"(D:\Data)");
  EXPECT_TRUE(files_.FolderExists("North"));
  EXPECT_TRUE(files_.FolderExists(R"(.\north\)"));
  EXPECT_TRUE(files_.FolderExists(R"(..\Data\North)"));
  EXPECT_FALSE(files_.FolderExists("Data"));
}

TEST_P(FileSystemContract, LetterCaseBeyondAsciiDoesNotMatter) {
  files_.CreateFolder("D:\\Data\\\u00c4rger \u0416\u03a9");
  EXPECT_TRUE(files_.FolderExists("D:\\Data\\\u00e4RGER \u0436\u03c9"));
  EXPECT_FALSE(files_.FolderExists("D:\\Data\\Arger \u0416\u03a9"));
}

// --- CreateFolder

TEST_P(FileSystemContract, CreateFolderRefusesANameThatIsTaken) {
  Put(R"(D:\Data\shops)");
  for (const char* path : {R"(D:\Data)", R"(D:\DATA\)", R"(D:\Data )", R"(D:\Data..)",
                           R"(D:\Data\shops)", R"(D:\Data\SHOPS\)", R"(D:\)", R"(D:\Data\ )"}) {
    EXPECT_EQ(CreateError(path), kFileExists) << path;
  }
}

TEST_P(FileSystemContract, CreateFolderNeedsItsParent) {
  Put(R"(D:\Data\shops)");
  for (const char* path : {R"(D:\Missing\North)", R"(D:\Data\shops\North)", R"(Q:\North)", R"(Q:\)",
                           "", " ", R"(\\server\share\North)"}) {
    EXPECT_EQ(CreateError(path), kPathNotFound) << path;
  }
}

TEST_P(FileSystemContract, CreateFolderRefusesBadNames) {
  for (const std::string name : {"a*", "a?", "a<b", "a>b", "a|b", "a\"b", "x:y", "a\tb", "a\x1f"}) {
    EXPECT_EQ(CreateError(R"(D:\Data\)" + name), kBadFileName) << name;
  }
  EXPECT_EQ(CreateError(std::string("D:\\Data\\a\0b", 11)), kBadFileName);
  EXPECT_EQ(CreateError("D:\\Data\\a\xff"), kBadFileName);
  EXPECT_EQ(CreateError(R"(D:\Data\)" + std::string(256, 'x')), kBadFileName);
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), IsEmpty());
}

TEST_P(FileSystemContract, CreateFolderKeepsTheNameAsGiven) {
  files_.CreateFolder(R"(D:\Data\Study Area \)");
  files_.CreateFolder(R"(D:\Data\North..)");
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), ElementsAre("North..", "Study Area "));
}

TEST_P(FileSystemContract, AFolderWithATrailingBlankIsFoundWithAndWithoutIt) {
  files_.CreateFolder(R"(D:\Data\Study Area )");
  Put(R"(D:\Data\Study Area\a.xml)", "x");
  for (const char* path : {R"(D:\Data\Study Area )", R"(D:\Data\Study Area)",
                           R"(D:\Data\Study Area \)", R"(D:\Data\study area)"}) {
    EXPECT_TRUE(files_.FolderExists(path)) << path;
    EXPECT_EQ(CreateError(path), kFileExists) << path;
  }
  EXPECT_THAT(files_.ReadFile(R"(D:\Data\Study Area \a.xml)"), Optional(std::string("x")));
}

// --- FullPath

TEST_P(FileSystemContract, FullPathHasTheRealNamesAndNoTrailingSeparator) {
  files_.CreateFolder(R"(D:\Data\North )");
  EXPECT_EQ(files_.FullPath(R"(d:\data\north\)"), R"(D:\Data\North )");
  EXPECT_EQ(files_.FullPath(R"(D:/x/..//Data/.)"), R"(D:\Data)");
  EXPECT_EQ(files_.FullPath(R"(d:\)"), R"(D:\)");
}

TEST_P(FileSystemContract, FullPathNeedsAFolder) {
  Put(R"(D:\Data\shops.dbf)");
  for (const char* path :
       {"", " ", R"(D:\Missing)", R"(D:\Data\shops.dbf)", R"(Q:\)", R"(\\server\share)"}) {
    EXPECT_EQ(ErrorOf([&] { std::ignore = files_.FullPath(path); }), kPathNotFound) << path;
  }
}

// --- HideFolder

TEST_P(FileSystemContract, AHiddenFolderIsNotListedButFound) {
  files_.CreateFolder(R"(D:\Data\North)");
  files_.HideFolder(R"(d:\data\NORTH\)");
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), IsEmpty());
  EXPECT_TRUE(files_.FolderExists(R"(D:\Data\North)"));
  EXPECT_NO_THROW(files_.OpenFolder(R"(D:\Data)")->Enter("North"));
}

TEST_P(FileSystemContract, HideFolderKeepsOtherAttributes) {
  files_.CreateFolder(R"(D:\Data\North)");
  world_->SetAttributes(R"(D:\Data\North)", kSystemAttribute);
  files_.HideFolder(R"(D:\Data\North)");
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), IsEmpty());
}

TEST_P(FileSystemContract, HideFolderNeedsAFolder) {
  Put(R"(D:\Data\shops.dbf)");
  for (const char* path : {R"(D:\Missing)", R"(D:\Data\shops.dbf)", "", R"(Q:\)"}) {
    EXPECT_EQ(ErrorOf([&] { files_.HideFolder(path); }), kPathNotFound) << path;
  }
}

TEST_P(FileSystemContract, SystemDriveIsALetterAndAColon) { EXPECT_EQ(files_.SystemDrive(), "C:"); }

// --- FindFiles

TEST_P(FileSystemContract, FindFilesMatchesNamesWithWildcards) {
  for (const char* name : {"tmp", "tmp.shp", "TMP.A.B", "tmp1.dbf", "tmpx.y", ".tmp"}) {
    Put(std::string(R"(D:\Data\)") + name);
  }
  world_->SetAttributes(R"(D:\Data\tmpx.y)", kReadOnlyAttribute);
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\tmp.*)"), ElementsAre("tmp", "TMP.A.B", "tmp.shp"));
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\\tmp1.*)"), ElementsAre("tmp1.dbf"));
  EXPECT_THAT(files_.FindFiles(R"(d:/data/tmp?.*)"),
              ElementsAre("tmp", "TMP.A.B", "tmp.shp", "tmp1.dbf", "tmpx.y"));
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\tmp .*)"), IsEmpty());
}

TEST_P(FileSystemContract, FindFilesListsAFolderWithoutANamePattern) {
  Put(R"(D:\Data\a)");
  Put(R"(D:\Data\b.c)");
  for (const char* pattern : {R"(D:\Data\)", R"(D:\Data\*)", R"(D:\Data\*.*)"}) {
    EXPECT_THAT(files_.FindFiles(pattern), ElementsAre("a", "b.c")) << pattern;
  }
}

TEST_P(FileSystemContract, FindFilesWithoutAFolderLooksInTheCurrentOne) {
  Put(R"(D:\Data\tmp.shp)");
  world_->SetCurrentFolder(R"(D:\Data)");
  EXPECT_THAT(files_.FindFiles("tmp.*"), ElementsAre("tmp.shp"));
  EXPECT_THAT(files_.FindFiles(""), ElementsAre("tmp.shp"));
}

TEST_P(FileSystemContract, FindFilesSeesReadOnlyFilesAndLinksOnly) {
  for (const char* name : {"tmp.read", "tmp.hidden", "tmp.system"}) {
    Put(std::string(R"(D:\Data\)") + name);
  }
  files_.CreateFolder(R"(D:\Data\tmp.dir)");
  world_->SetAttributes(R"(D:\Data\tmp.read)", kReadOnlyAttribute);
  world_->SetAttributes(R"(D:\Data\tmp.hidden)", kHiddenAttribute);
  world_->SetAttributes(R"(D:\Data\tmp.system)", kSystemAttribute);
  world_->AddLink(R"(D:\Data\tmp.link)");
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\tmp.*)"), ElementsAre("tmp.link", "tmp.read"));
}

TEST_P(FileSystemContract, FindFilesFindsALeadingDotThatThePatternHasToo) {
  Put(R"(D:\Data\.shops.lyr)");
  Put(R"(D:\Data\.hidden.lyr)");
  world_->SetAttributes(R"(D:\Data\.hidden.lyr)", kHiddenAttribute);
  // Wine gives such files the attribute.
  const bool is_found = !world_->IsWine();
  for (const char* pattern : {R"(D:\Data\.shops.*)", R"(D:\Data\.*)"}) {
    const auto found = files_.FindFiles(pattern);
    EXPECT_EQ(found, is_found ? std::vector<std::string>{".shops.lyr"} : std::vector<std::string>())
        << pattern;
  }
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\shops.*)"), IsEmpty());
  EXPECT_EQ(files_.FindFiles(R"(D:\Data\*)").empty(), world_->HidesDots());
  EXPECT_EQ(files_.OpenFolder(R"(D:\Data)")->Entries().empty(), world_->HidesDots());
  EXPECT_EQ(files_.FreeFileName(R"(D:\Data)", ".SHOPS"), is_found ? ".SHOPS1" : ".SHOPS");
}

TEST_P(FileSystemContract, FindFilesIsEmptyWhenThereIsNoFolder) {
  Put(R"(D:\Data\tmp.shp)");
  for (const char* pattern :
       {R"(D:\Missing\tmp.*)", R"(Q:\tmp.*)", R"(D:\Data\tmp.shp\*)", R"(\\server\share\*)"}) {
    EXPECT_THAT(files_.FindFiles(pattern), IsEmpty()) << pattern;
  }
}

// --- ReadFile and WriteFile

TEST_P(FileSystemContract, WrittenBytesAreReadBack) {
  std::string bytes;
  for (int i = 0; i < 200'000; ++i) bytes += static_cast<char>(i);
  for (const std::string& content : {std::string(), std::string("a\0\r\n\xff", 5), bytes}) {
    files_.WriteFile(R"(D:\Data\a.xml)", content);
    EXPECT_TRUE(files_.ReadFile(R"(D:\Data\a.xml)") == content) << content.size();
  }
}

TEST_P(FileSystemContract, ReadFileHasNothingForWhateverIsNoFile) {
  Put(R"(D:\Data\shops.dbf)");
  world_->AddLink(R"(D:\Data\link)");
  for (const char* path : {"", " ", R"(D:\Data)", R"(D:\)", R"(D:\Data\missing)", R"(Q:\a)",
                           R"(D:\Data\shops.dbf\x)", R"(D:\Data\link)", R"(\\server\share\a)"}) {
    EXPECT_EQ(files_.ReadFile(path), std::nullopt) << path;
  }
}

TEST_P(FileSystemContract, WriteFileReplacesTheFileOfAnotherLetterCase) {
  Put(R"(D:\Data\Shops.xml)", "old");
  files_.WriteFile(R"(d:\data\SHOPS.XML)", "new");
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\*)"), ElementsAre("Shops.xml"));
  EXPECT_THAT(files_.ReadFile(R"(D:\Data\Shops.xml)"), Optional(std::string("new")));
}

TEST_P(FileSystemContract, WriteFileKeepsTheFileHidden) {
  Put(R"(D:\Data\a.xml)", "old");
  world_->SetAttributes(R"(D:\Data\a.xml)", kHiddenAttribute);
  files_.WriteFile(R"(D:\Data\a.xml)", "new");
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\*)"), IsEmpty());
  EXPECT_THAT(files_.ReadFile(R"(D:\Data\a.xml)"), Optional(std::string("new")));
}

TEST_P(FileSystemContract, WriteFileReplacesALinkByAFile) {
  world_->AddLink(R"(D:\Data\link)");
  const int error = WriteError(R"(D:\Data\link)");
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Files(), ElementsAre("link"));
  // The link under Wine is one to a folder.
  EXPECT_EQ(error, world_->IsWine() ? kPathFileAccess : 0);
  EXPECT_EQ(files_.ReadFile(R"(D:\Data\link)").has_value(), !world_->IsWine());
}

TEST_P(FileSystemContract, WriteFileNeedsItsFolder) {
  Put(R"(D:\Data\shops.dbf)");
  for (const char* path : {R"(D:\Missing\a)", R"(D:\Data\shops.dbf\a)", R"(Q:\a)", R"(Q:\)", "",
                           " ", R"(\\server\share\a)"}) {
    EXPECT_EQ(WriteError(path), kPathNotFound) << path;
  }
}

TEST_P(FileSystemContract, WriteFileRefusesBadNames) {
  for (const char* path : {R"(D:\Data\a*)", R"(D:\Data\a:b)", "D:\\Data\\a\nb", "D:\\Data\\\xc3"}) {
    EXPECT_EQ(WriteError(path), kBadFileName) << path;
  }
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\*)"), IsEmpty());
}

TEST_P(FileSystemContract, WriteFileDoesNotReplaceAFolder) {
  files_.CreateFolder(R"(D:\Data\North)");
  EXPECT_EQ(WriteError(R"(D:\Data\North)"), kPathFileAccess);
  EXPECT_EQ(WriteError(R"(D:\)"), kPathFileAccess);
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), ElementsAre("North"));
}

TEST_P(FileSystemContract, WriteFileDoesNotReplaceAReadOnlyFile) {
  Put(R"(D:\Data\a.xml)", "old");
  world_->SetAttributes(R"(D:\Data\a.xml)", kReadOnlyAttribute);
  EXPECT_EQ(WriteError(R"(D:\Data\a.xml)"), kPermissionDenied);
  EXPECT_THAT(files_.ReadFile(R"(D:\Data\a.xml)"), Optional(std::string("old")));
}

TEST_P(FileSystemContract, ErrorsNameThePath) {
  try {
    files_.CreateFolder(R"(D:\Missing\North)");
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_STREQ(error.what(), R"(Path not found: D:\Missing\North)");
  }
}

}  // namespace
}  // namespace kvdm
