#include "platform/portable/value_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::HasSubstr;

constexpr std::string_view kPath = "D:\\project.kvp";

class ValueFileTest : public testing::Test {
 protected:
  FileVariantStream Open() { return {world_.files, world_.xml_parser, std::string(kPath)}; }

  MemoryPlatform world_;
};

TEST_F(ValueFileTest, HasOneLineForEachValue) {
  FileVariantStream stream = Open();
  stream.Write("a\r\nb");
  stream.Write(true);
  stream.Write(DateTime{2026, 1, 5, 0, 7, 9});
  stream.Write(std::string("\x01", 1));
  stream.Commit();
  EXPECT_EQ(world_.files->ReadFile(kPath),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
            "<VALUES>\r\n"
            "<ITEM TYPE=\"Text\" VALUE=\"a&#13;&#10;b\"/>\r\n"
            "<ITEM TYPE=\"Boolean\" VALUE=\"True\"/>\r\n"
            "<ITEM TYPE=\"Date\" VALUE=\"2026-01-05T00:07:09\"/>\r\n"
            "<ITEM TYPE=\"Bytes\" VALUE=\"01\"/>\r\n"
            "</VALUES>\r\n");
}

TEST_F(ValueFileTest, NothingIsStoredWithoutCommit) {
  world_.files->AddFile(kPath, "old");
  {
    FileVariantStream stream = Open();
    stream.Write("new");
  }
  EXPECT_EQ(world_.files->ReadFile(kPath), "old");
}

TEST_F(ValueFileTest, CommitStoresAllThatWasWritten) {
  FileVariantStream stream = Open();
  stream.Write(1);
  stream.Commit();
  stream.Write(2);
  stream.Commit();
  FileVariantStream saved = Open();
  EXPECT_EQ(saved.Read(), Value(1));
  EXPECT_EQ(saved.Read(), Value(2));
}

TEST_F(ValueFileTest, ReadsTheFileAsItWasAtFirst) {
  FileVariantStream stream = Open();
  stream.Write(1);
  stream.Write(2);
  stream.Commit();
  FileVariantStream reader = Open();
  EXPECT_EQ(reader.Read(), Value(1));
  world_.files->AddFile(kPath, "replaced");
  EXPECT_EQ(reader.Read(), Value(2));
}

TEST_F(ValueFileTest, AMissingFileIsNotFound) {
  EXPECT_RUNTIME_ERROR(Open().Read(), kFileNotFound);
}

TEST_F(ValueFileTest, ARefusedWriteReachesTheCaller) {
  world_.files->RefuseWrites("D:\\");
  FileVariantStream stream = Open();
  stream.Write(1);
  EXPECT_RUNTIME_ERROR(stream.Commit(), kPermissionDenied);
}

struct DamageCase {
  std::string_view bytes;
  std::string_view complaint;
};

TEST_F(ValueFileTest, DamageIsNamed) {
  constexpr DamageCase kCases[] = {
      {"", "well-formed"},
      {"<VALUES><ITEM", "well-formed"},
      {"<LAYERMETADATA/>", "LAYERMETADATA"},
      {"<VALUES><ITEM VALUE=\"1\"/></VALUES>", "TYPE"},
      {"<VALUES><ITEM TYPE=\"Long\"/></VALUES>", "VALUE"},
      {"<VALUES><ITEM TYPE=\"Matrix\" VALUE=\"1\"/></VALUES>", "Matrix"},
      {"<VALUES><ITEM TYPE=\"Long\" VALUE=\"1x\"/></VALUES>", "1x"},
      {"<VALUES><ITEM TYPE=\"Long\" VALUE=\"2147483648\"/></VALUES>", "2147483648"},
      {"<VALUES><ITEM TYPE=\"Double\" VALUE=\"1,5\"/></VALUES>", "1,5"},
      {"<VALUES><ITEM TYPE=\"Boolean\" VALUE=\"yes\"/></VALUES>", "yes"},
      {"<VALUES><ITEM TYPE=\"Date\" VALUE=\"2026-01-05\"/></VALUES>", "2026-01-05"},
      {"<VALUES><ITEM TYPE=\"Date\" VALUE=\"2026-01-05T00:07:09Z\"/></VALUES>", "09Z"},
      {"<VALUES><ITEM TYPE=\"Bytes\" VALUE=\"0\"/></VALUES>", "Bytes"},
      {"<VALUES><ITEM TYPE=\"Bytes\" VALUE=\"0g\"/></VALUES>", "0g"},
  };
  for (const DamageCase& row : kCases) {
    world_.files->AddFile(kPath, row.bytes);
    try {
      Open().Read();
      ADD_FAILURE() << "read " << row.bytes;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.number(), kAutomationFailure) << row.bytes;
      EXPECT_THAT(error.what(), HasSubstr(row.complaint));
      EXPECT_THAT(error.what(), HasSubstr(kPath));
    }
  }
}

}  // namespace
}  // namespace kvdm
