#include "safety/zip.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "safety/os.h"
#include "safety/result.h"
#include "safety/zip_format.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::SizeIs;

class ZipTest : public testing::Test {
 protected:
  [[nodiscard]] fs::path Archive() const { return folder_.Path("a.zip"); }
  [[nodiscard]] fs::path Target() const { return folder_.Path("out"); }

  // An archive with one entry of this name, and the place of "name" in its list.
  void Write(const std::string& name, const std::string& text = "text") const {
    ZipWriter zip(Archive());
    zip.AddText(name, text);
    zip.Finish();
  }

  // Makes these bytes the archive.
  void Put(std::string_view bytes) const {
    std::ofstream(Archive(), std::ios::binary | std::ios::trunc) << bytes;
  }

  // Replaces bytes from the end of the archive on.
  void Damage(const std::string& from, const std::string& to) const {
    std::string bytes = os::ReadBytes(Archive());
    const auto place = bytes.rfind(from);
    ASSERT_NE(place, bytes.npos);
    bytes.replace(place, from.size(), to);
    Put(bytes);
  }

  // Why the archive is refused; "" when it is unpacked.
  [[nodiscard]] std::string Refusal() const {
    try {
      Unzip(Archive(), ReadZip(Archive()), Target());
      return "";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), ExitCode::kUnreadable);
      return failure.what();
    }
  }

  TempFolder folder_;
};

TEST_F(ZipTest, WhatIsPackedComesBack) {
  std::string large;
  for (int i = 0; i < 40'000; ++i) large += std::to_string(i * 7919 % 10'007);
  const fs::path file = folder_.Path("large.bin");
  std::ofstream(file, std::ios::binary) << large;
  ZipWriter zip(Archive());
  zip.AddFolder("empty");
  zip.AddText("a/Süd.txt", "");
  zip.AddFile("a/b/large.bin", file);
  zip.Finish();
  EXPECT_THAT(ReadZip(Archive()), SizeIs(3));
  EXPECT_EQ(Refusal(), "");
  EXPECT_TRUE(fs::is_directory(Target() / "empty"));
  EXPECT_EQ(os::ReadBytes(Target() / "a" / os::ToPath("Süd.txt")), "");
  EXPECT_EQ(os::ReadBytes(Target() / "a/b/large.bin"), large);
  EXPECT_LT(fs::file_size(Archive()), large.size());
}

TEST_F(ZipTest, NamesThatLeadElsewhereAreRefused) {
  for (const char* name :
       {"../x", "a/../x", "/x", "a//x", "./x", "C:x", "a\\x", "..", "a/.", "", "a\nb", "a?b"}) {
    Write(name);
    EXPECT_THAT(Refusal(), HasSubstr("leads elsewhere")) << name;
    EXPECT_FALSE(fs::exists(Target()));
  }
}

TEST_F(ZipTest, NamesThatAreOneSomewhereAreRefused) {
  ZipWriter zip(Archive());
  zip.AddText("a/X.txt", "1");
  zip.AddText("A/x.txt", "2");
  zip.Finish();
  EXPECT_THAT(Refusal(), HasSubstr("more than once"));
}

TEST_F(ZipTest, OtherBytesThanThosePackedAreRefused) {
  Write("name.txt", "some text that is packed");
  const std::string bytes = os::ReadBytes(Archive());
  const auto end = bytes.find("PK\1\2");
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::string other = bytes;
    other[i] = static_cast<char>(other[i] ^ 0x41);
    Put(other);
    fs::remove_all(Target());
    const std::string refusal = Refusal();
    // Times, versions and names may be others; the packed bytes may not.
    const bool is_packed = i > zip::kLocalHeaderBytes + 28 && i < end;
    EXPECT_TRUE(!is_packed || !refusal.empty()) << i;
    if (i % 8 != 0) continue;
    Put(std::string_view(bytes).substr(0, i));
    EXPECT_NE(Refusal(), "") << i;
  }
}

TEST_F(ZipTest, LinksAreRefused) {
  Write("name.txt");
  std::string bytes = os::ReadBytes(Archive());
  const auto header = bytes.find("PK\1\2");
  bytes[header + 5] = 3;        // made on Unix
  bytes[header + 41] = '\xA1';  // a link
  Put(bytes);
  EXPECT_THAT(Refusal(), HasSubstr("link"));
}

TEST_F(ZipTest, SizesThatCannotBeAreRefused) {
  Write("name.txt", std::string(5'000, 'x'));
  const auto size = [](std::uint64_t number) { return zip::Numbers().Put64(number).Bytes(); };
  Damage(size(5'000), size(std::uint64_t{1} << 40U));
  EXPECT_THAT(Refusal(), HasSubstr("impossible size"));
}

TEST_F(ZipTest, AFileThatGrowsBeyondItsSizeIsRefused) {
  Write("name.txt", std::string(5'000, 'x'));
  const auto size = [](std::uint64_t number) { return zip::Numbers().Put64(number).Bytes(); };
  Damage(size(5'000), size(4'000));
  EXPECT_THAT(Refusal(), HasSubstr("damaged"));
  EXPECT_LE(fs::file_size(Target() / "name.txt"), 4'000U);
}

TEST_F(ZipTest, EntriesThatShareBytesAreRefused) {
  ZipWriter zip(Archive());
  zip.AddText("one.txt", "text");
  zip.AddText("two.txt", "text");
  zip.Finish();
  std::string bytes = os::ReadBytes(Archive());
  const auto second = bytes.rfind("two.txt") + 7 + 4 + 16;  // its place in the list
  bytes.replace(second, 8, std::string(8, '\0'));
  Put(bytes);
  EXPECT_THAT(Refusal(), HasSubstr("impossible size"));
}

}  // namespace
}  // namespace kvdm
