#include "safety/ownership.h"

#include <gtest/gtest.h>

#include "safety/result.h"
#include "tests/safety/work_place.h"

namespace kvdm {
namespace {

class OwnershipTest : public testing::Test {
 protected:
  OwnershipTest() { WriteOwner(workdir_, OwnerFor(workdir_, shops_)); }

  [[nodiscard]] Tenure TenureOfHolder(const Holder& holder) const {
    return TenureOf(workdir_, ReadOwner(workdir_), holder);
  }

  WorkPlace place_;
  std::filesystem::path workdir_ = place_.top / "KVData";
  Holder shops_ = {place_.Write("Shops.kvdm", "{}"), "{A}"};
};

TEST_F(OwnershipTest, RecordReadsAsItWasWritten) {
  const Owner owner = OwnerFor(workdir_, shops_);
  EXPECT_EQ(owner.project, "../Shops.kvdm");
  EXPECT_EQ(owner.id, "{A}");
  EXPECT_FALSE(owner.machine.empty());
  EXPECT_EQ(ReadOwner(workdir_), owner);
  EXPECT_EQ(ProjectOf(workdir_, owner), shops_.file);
}

TEST_F(OwnershipTest, WorkingDirectoryIsThatOfTheProjectInTheRecordAlone) {
  EXPECT_EQ(TenureOfHolder(shops_), Tenure::kOwn);
  EXPECT_EQ(TenureOfHolder({place_.Write("Copy/Shops.kvdm", "{}"), "{A}"}), Tenure::kForeign);
  EXPECT_EQ(TenureOfHolder({place_.Write("Other.kvdm", "{}"), "{B}"}), Tenure::kForeign);
}

TEST_F(OwnershipTest, WithoutARecordItIsNobodys) {
  EXPECT_EQ(TenureOf(workdir_, std::nullopt, shops_), Tenure::kUnclaimed);
  EXPECT_EQ(ReadOwner(place_.top), std::nullopt);
  EXPECT_FALSE(IsClaimed(place_.top));
  EXPECT_TRUE(IsClaimed(workdir_));
}

TEST_F(OwnershipTest, WhatIsSharedIsEverybodys) {
  Owner owner = OwnerFor(workdir_, shops_);
  owner.is_shared = true;
  WriteOwner(workdir_, owner);
  EXPECT_EQ(TenureOfHolder({place_.Write("Other.kvdm", "{}"), "{B}"}), Tenure::kShared);
}

TEST_F(OwnershipTest, MovedProjectKeepsItsWorkingDirectory) {
  std::filesystem::rename(shops_.file, place_.top / "Stores.kvdm");
  EXPECT_EQ(TenureOfHolder({place_.top / "Stores.kvdm", "{A}"}), Tenure::kOwn);
  EXPECT_EQ(TenureOfHolder({place_.top / "Stores.kvdm", "{B}"}), Tenure::kForeign);
}

TEST_F(OwnershipTest, ProjectWithoutAnIdentifierIsNotTakenForTheOneThatIsGone) {
  WriteOwner(workdir_, OwnerFor(workdir_, {shops_.file, ""}));
  std::filesystem::remove(shops_.file);
  EXPECT_EQ(TenureOfHolder({place_.Write("Other.kvdm", "{}"), ""}), Tenure::kForeign);
}

TEST_F(OwnershipTest, RecordOfAnotherComputerIsNotOutdatedByWhatIsNotSeenHere) {
  Owner owner = OwnerFor(workdir_, shops_);
  owner.machine = "elsewhere";
  WriteOwner(workdir_, owner);
  std::filesystem::rename(shops_.file, place_.top / "Stores.kvdm");
  EXPECT_EQ(TenureOfHolder({place_.top / "Stores.kvdm", "{A}"}), Tenure::kForeign);
}

TEST_F(OwnershipTest, FolderMovedAsAWholeKeepsItsOwner) {
  const std::filesystem::path moved = place_.top / "Moved";
  std::filesystem::create_directories(moved);
  std::filesystem::rename(shops_.file, moved / "Shops.kvdm");
  std::filesystem::rename(workdir_, moved / "KVData");
  const auto owner = ReadOwner(moved / "KVData");
  EXPECT_EQ(TenureOf(moved / "KVData", owner, {moved / "Shops.kvdm", ""}), Tenure::kOwn);
}

TEST_F(OwnershipTest, DamagedRecordIsSaidToBe) {
  for (const char* text : {"", "{", "[]", "{\"schema\": \"kvdm.owner/1\"}",
                           R"({"schema": "kvdm.owner/2", "project": "", "id": "", "person": "",
                               "machine": "", "shared": true})"}) {
    place_.Write("KVData/.kvdm/owner.json", text);
    try {
      static_cast<void>(ReadOwner(workdir_));
      ADD_FAILURE() << text;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), ExitCode::kUnreadable) << text;
    }
  }
}

}  // namespace
}  // namespace kvdm
