// What every file system does in an open folder, and what is deleted there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/contract/file_system_contract.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OpenFolderContract : public FileSystemContract {};

INSTANTIATE_TEST_SUITE_P(On, OpenFolderContract, ::testing::ValuesIn(FileWorldMakers()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(OpenFolderContract, OpenFolderNeedsAFolder) {
  Put(R"(D:\Data\shops.dbf)");
  const auto error = [&](const char* path) {
    return ErrorOf([&] { std::ignore = files_.OpenFolder(path); });
  };
  EXPECT_EQ(error(R"(D:\Data\shops.dbf)"), kPathFileAccess);
  for (const char* path : {"", R"(D:\Missing)", R"(D:\Data\shops.dbf\x)", R"(Q:\)"}) {
    EXPECT_EQ(error(path), kPathNotFound) << path;
  }
}

TEST_P(OpenFolderContract, ADirectoryListsWhatIsSeen) {
  for (const char* name : {"b.dbf", "A.shp", "read", "hidden", "system"}) {
    Put(std::string(R"(D:\Data\)") + name);
  }
  files_.CreateFolder(R"(D:\Data\North)");
  files_.CreateFolder(R"(D:\Data\Secret)");
  files_.HideFolder(R"(D:\Data\Secret)");
  world_->SetAttributes(R"(D:\Data\read)", kReadOnlyAttribute);
  world_->SetAttributes(R"(D:\Data\hidden)", kHiddenAttribute);
  world_->SetAttributes(R"(D:\Data\system)", kSystemAttribute);
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  EXPECT_THAT(folder->Files(), ElementsAre("A.shp", "b.dbf", "read"));
  EXPECT_THAT(folder->Entries(), ElementsAre("A.shp", "b.dbf", "North", "read"));
}

TEST_P(OpenFolderContract, DeleteFilesPassesOverFoldersAndProtectedFiles) {
  for (const char* name : {"a", "b", "read", "hidden", "system"}) {
    Put(std::string(R"(D:\Data\)") + name, name);
  }
  files_.CreateFolder(R"(D:\Data\North)");
  world_->SetAttributes(R"(D:\Data\read)", kReadOnlyAttribute);
  world_->SetAttributes(R"(D:\Data\hidden)", kHiddenAttribute);
  world_->SetAttributes(R"(D:\Data\system)", kSystemAttribute);
  files_.OpenFolder(R"(D:\Data)")->DeleteFiles();
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), ElementsAre("North", "read"));
  EXPECT_TRUE(files_.ReadFile(R"(D:\Data\hidden)"));
  EXPECT_TRUE(files_.ReadFile(R"(D:\Data\system)"));
  EXPECT_FALSE(files_.ReadFile(R"(D:\Data\a)"));
}

TEST_P(OpenFolderContract, DeleteFilesWithoutAMatchIsError53) {
  files_.CreateFolder(R"(D:\Data\North)");
  Put(R"(D:\Data\read)");
  world_->SetAttributes(R"(D:\Data\read)", kReadOnlyAttribute);
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  EXPECT_EQ(ErrorOf([&] { folder->DeleteFiles(); }), kFileNotFound);
  EXPECT_TRUE(files_.ReadFile(R"(D:\Data\read)"));
}

TEST_P(OpenFolderContract, ALinkIsAFile) {
  world_->AddLink(R"(D:\Data\link)");
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  EXPECT_THAT(folder->Files(), ElementsAre("link"));
  EXPECT_EQ(ErrorOf([&] { folder->Enter("link"); }), kPathFileAccess);
  EXPECT_EQ(ErrorOf([&] { folder->RemoveFolder("link"); }), kPathFileAccess);
  EXPECT_THAT(folder->Files(), ElementsAre("link"));
}

TEST_P(OpenFolderContract, ALinkIsDeletedItself) {
  world_->AddLink(R"(D:\Data\link)");
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  const int error = ErrorOf([&] { folder->DeleteFiles(); });
  // Wine would delete what the link leads to.
  EXPECT_EQ(error, world_->IsWine() ? kPathFileAccess : 0);
  EXPECT_EQ(folder->Entries().empty(), !world_->IsWine());
}

TEST_P(OpenFolderContract, FoldersInsideAreFoundByTheirNamesInAnyLetterCase) {
  files_.CreateFolder(R"(D:\Data\North )");
  Put(R"(D:\Data\North \shops.dbf)");
  for (const char* name : {"North ", "NORTH "}) {
    const auto folder = files_.OpenFolder(R"(D:\Data)");
    folder->Enter(name);
    EXPECT_THAT(folder->Files(), ElementsAre("shops.dbf")) << name;
  }
  files_.OpenFolder(R"(d:\data\NORTH \)")->DeleteFiles();
  files_.OpenFolder(R"(D:\Data)")->RemoveFolder("NORTH ");
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), IsEmpty());
}

TEST_P(OpenFolderContract, NothingIsDeletedInAFolderWhoseNameOnlyLooksAlike) {
  for (const char* name : {"Study Area", "West ", "South."}) {
    files_.CreateFolder(R"(D:\Data\)" + std::string(name) + "\\");
    files_.CreateFolder(R"(D:\Data\)" + std::string(name) + R"(\Inner)");
  }
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  for (const std::string name :
       {"Study Area ", "Study Area.", "West", "West.", "South", "South "}) {
    EXPECT_EQ(ErrorOf([&] { folder->Enter(name); }), kPathNotFound) << name;
    EXPECT_EQ(ErrorOf([&] { folder->RemoveFolder(name); }), kPathNotFound) << name;
    for (const char* inside : {"\\", R"(\Inner)"}) {
      const std::string path = R"(D:\Data\)" + name + inside;
      EXPECT_TRUE(files_.FolderExists(path)) << path;
      EXPECT_EQ(ErrorOf([&] { std::ignore = files_.OpenFolder(path); }), kPathNotFound) << path;
      EXPECT_FALSE(DeleteFolderTree(files_, R"(D:\Data\)" + name + "\\")) << path;
    }
  }
  EXPECT_THAT(folder->Entries(), ElementsAre("South.", "Study Area", "West "));
}

TEST_P(OpenFolderContract, AFolderOfBlanksIsDeleted) {
  for (const char* path : {R"(D:\Data\ \)", R"(D:\Data\   \)"}) {
    files_.CreateFolder(path);
    Put(std::string(path) + "a");
    files_.CreateFolder(std::string(path) + R"( \)");
    EXPECT_TRUE(DeleteFolderTree(files_, path)) << "'" << path << "'";
    EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), IsEmpty()) << "'" << path << "'";
  }
}

TEST_P(OpenFolderContract, AnUnclosedPathIsThatOfAFolderWithoutFolders) {
  files_.CreateFolder(R"(D:\Data\North)");
  files_.CreateFolder(R"(D:\Data\North\1)");
  files_.CreateFolder(R"(D:\Data\North1)");
  Put(R"(D:\Data\North\go)");
  Put(R"(D:\Data\North1\keep)");
  EXPECT_FALSE(DeleteFolderTree(files_, R"(D:\Data\North)"));
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data\North)")->Entries(), ElementsAre("1"));
  EXPECT_TRUE(files_.ReadFile(R"(D:\Data\North1\keep)"));
  EXPECT_TRUE(DeleteFolderTree(files_, R"(D:\Data\North1)"));
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Entries(), ElementsAre("North"));
}

TEST_P(OpenFolderContract, WhatTookThePlaceOfAFolderIsNeitherEnteredNorRemoved) {
  files_.CreateFolder(R"(D:\Data\North)");
  files_.CreateFolder(R"(D:\Data\South)");
  files_.CreateFolder(R"(D:\Other)");
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  std::ignore = folder->Entries();
  folder->Enter("South");
  folder->Leave();
  for (const char* name : {"North", "South"}) {
    world_->MoveFolder(R"(D:\Data\)" + std::string(name), R"(D:\Other\)" + std::string(name));
    files_.CreateFolder(R"(D:\Data\)" + std::string(name));
    EXPECT_EQ(ErrorOf([&] { folder->Enter(name); }), kPathFileAccess) << name;
    EXPECT_EQ(ErrorOf([&] { folder->RemoveFolder(name); }), kPathFileAccess) << name;
  }
  EXPECT_THAT(folder->Entries(), ElementsAre("North", "South"));
  folder->Enter("North");
  folder->Leave();
  folder->RemoveFolder("North");
  EXPECT_THAT(folder->Entries(), ElementsAre("South"));
}

TEST_P(OpenFolderContract, LeavingLeadsBackToTheFolderAround) {
  files_.CreateFolder(R"(D:\Data\North)");
  files_.CreateFolder(R"(D:\Data\North\Inner)");
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  folder->Enter("north");
  folder->Enter("inner");
  EXPECT_THAT(folder->Entries(), IsEmpty());
  folder->Leave();
  EXPECT_THAT(folder->Entries(), ElementsAre("Inner"));
  folder->Leave();
  EXPECT_THAT(folder->Entries(), ElementsAre("North"));
}

TEST_P(OpenFolderContract, EnterTakesTheNameOfAFolderInside) {
  Put(R"(D:\Data\shops.dbf)");
  files_.CreateFolder(R"(D:\Data\North)");
  files_.CreateFolder(R"(D:\Data\North\Inner)");
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  EXPECT_EQ(ErrorOf([&] { folder->Enter("shops.dbf"); }), kPathFileAccess);
  for (const char* name : {"Missing", "", ".", "..", "North/Inner", "/", "N*"}) {
    EXPECT_EQ(ErrorOf([&] { folder->Enter(name); }), kPathNotFound) << name;
  }
}

TEST_P(OpenFolderContract, RemoveFolderRemovesAnEmptyFolder) {
  files_.CreateFolder(R"(D:\Data\North )");
  files_.OpenFolder(R"(D:\Data)")->RemoveFolder("North ");
  EXPECT_FALSE(files_.FolderExists(R"(D:\Data\North)"));
}

TEST_P(OpenFolderContract, RemoveFolderLeavesEverythingElse) {
  Put(R"(D:\Data\shops.dbf)");
  files_.CreateFolder(R"(D:\Data\Full)");
  Put(R"(D:\Data\Full\hidden)");
  world_->SetAttributes(R"(D:\Data\Full\hidden)", kHiddenAttribute);
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  const auto error = [&](const char* name) { return ErrorOf([&] { folder->RemoveFolder(name); }); };
  EXPECT_EQ(error("Full"), kPathFileAccess);
  EXPECT_EQ(error("shops.dbf"), kPathFileAccess);
  for (const char* name : {"Missing", "", ".", ".."}) EXPECT_EQ(error(name), kPathNotFound) << name;
  EXPECT_THAT(folder->Entries(), ElementsAre("Full", "shops.dbf"));
}

TEST_P(OpenFolderContract, ARecoveryFileGoesWithItsFolder) {
  files_.CreateFolder(R"(D:\Data\North)");
  files_.CreateFolder(R"(D:\Data\North\Sales)");
  for (const std::string folder : {R"(D:\Data\North\)", R"(D:\Data\North\Sales\)"}) {
    files_.WriteFile(folder + kRecoveryFile, "{}");
  }
  EXPECT_TRUE(DeleteFolderTree(files_, R"(D:\Data\North\)"));
  EXPECT_FALSE(files_.FolderExists(R"(D:\Data\North)"));
}

TEST_P(OpenFolderContract, ADirectoryStaysTheSameFolderWhenItIsMoved) {
  files_.CreateFolder(R"(D:\Data\North)");
  const auto folder = files_.OpenFolder(R"(D:\Data\North)");
  world_->MoveFolder(R"(D:\Data\North)", R"(D:\Data\South)");
  files_.CreateFolder(R"(D:\Data\North)");
  Put(R"(D:\Data\North\keep)");
  Put(R"(D:\Data\North\same)");
  Put(R"(D:\Data\South\same)");
  EXPECT_THAT(folder->Files(), ElementsAre("same"));
  folder->DeleteFiles();
  EXPECT_THAT(files_.FindFiles(R"(D:\Data\North\*)"), ElementsAre("keep", "same"));
  // Wine looks for the file in the old place, and leaves the other one that is there alone.
  EXPECT_EQ(files_.ReadFile(R"(D:\Data\South\same)").has_value(), world_->IsWine());
}

TEST_P(OpenFolderContract, ADirectoryThatIsGoneIsEmpty) {
  files_.CreateFolder(R"(D:\Data\North)");
  const auto folder = files_.OpenFolder(R"(D:\Data\North)");
  world_->RemoveTree(R"(D:\Data\North)");
  EXPECT_THAT(folder->Entries(), IsEmpty());
  EXPECT_EQ(ErrorOf([&] { folder->DeleteFiles(); }), kFileNotFound);
  EXPECT_EQ(ErrorOf([&] { folder->Enter("Inner"); }), kPathNotFound);
}

}  // namespace
}  // namespace kvdm
