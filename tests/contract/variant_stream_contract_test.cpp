// What every variant stream does.
#include <gtest/gtest.h>

#include <limits>

#include "platform/memory/memory_platform.h"
#include "platform/portable/value_file.h"
#include "platform/portable/variant_list.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

// Saves values and opens what was saved for reading.
class StreamWorld {
 public:
  virtual ~StreamWorld() = default;
  virtual std::shared_ptr<VariantStream> Saved(const std::vector<Value>& values) = 0;
};

void WriteAll(VariantStream& stream, const std::vector<Value>& values) {
  for (const Value& value : values) stream.Write(value);
}

class ListWorld : public StreamWorld {
 public:
  std::shared_ptr<VariantStream> Saved(const std::vector<Value>& values) override {
    auto stream = std::make_shared<VariantList>();
    WriteAll(*stream, values);
    return stream;
  }
};

class FileWorld : public StreamWorld {
 public:
  std::shared_ptr<VariantStream> Saved(const std::vector<Value>& values) override {
    FileVariantStream stream(world_.files, world_.xml_parser, "D:\\project.kvp");
    WriteAll(stream, values);
    stream.Commit();
    return std::make_shared<FileVariantStream>(world_.files, world_.xml_parser, "D:\\project.kvp");
  }

 private:
  MemoryPlatform world_;
};

struct Implementation {
  std::string name;
  std::unique_ptr<StreamWorld> (*make)();
};

class VariantStreamContractTest : public testing::TestWithParam<Implementation> {
 protected:
  std::shared_ptr<VariantStream> Saved(const std::vector<Value>& values) {
    return world_->Saved(values);
  }

 private:
  std::unique_ptr<StreamWorld> world_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(All, VariantStreamContractTest,
                         testing::Values(Implementation{"List",
                                                        []() -> std::unique_ptr<StreamWorld> {
                                                          return std::make_unique<ListWorld>();
                                                        }},
                                         Implementation{"File",
                                                        []() -> std::unique_ptr<StreamWorld> {
                                                          return std::make_unique<FileWorld>();
                                                        }}),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(VariantStreamContractTest, ReadsValuesInOrder) {
  const auto stream = Saved({"one", 2, true});
  EXPECT_EQ(stream->Read(), Value("one"));
  EXPECT_EQ(stream->Read(), Value(2));
  EXPECT_EQ(stream->Read(), Value(true));
}

TEST_P(VariantStreamContractTest, ReadingPastTheEndFails) {
  const auto stream = Saved({"one"});
  stream->Read();
  EXPECT_RUNTIME_ERROR(stream->Read(), kInputPastEnd);
}

TEST_P(VariantStreamContractTest, AnEmptyStreamHasNothingToRead) {
  EXPECT_RUNTIME_ERROR(Saved({})->Read(), kInputPastEnd);
}

TEST_P(VariantStreamContractTest, ValuesKeepTypeAndContent) {
  using Doubles = std::numeric_limits<double>;
  const std::vector<Value> values = {
      Value(),
      Null{},
      true,
      false,
      std::numeric_limits<std::int32_t>::min(),
      std::numeric_limits<std::int32_t>::max(),
      0.1,
      -0.0,
      1.0 / 3,
      Doubles::max(),
      Doubles::denorm_min(),
      Doubles::infinity(),
      DateTime{},
      DateTime{2026, 1, 5, 0, 7, 9},
      "",
      " blanks ",
      "lines\r\nand\rmore\n\ttab",
      "<A B=\"1\">&amp;'\"</A>",
      "\u00FC\u65E5\U0001F600\uFFFD",
      std::string("nul\0 and \x01\x1F", 11),
      "not UTF-8: \xFF\xC3",
      "\uFFFE\uFFFF",
  };
  const auto stream = Saved(values);
  for (const Value& value : values) EXPECT_EQ(stream->Read(), value);
}

TEST_P(VariantStreamContractTest, LongTextsAreKept) {
  std::string text;
  while (text.size() < 4'000'000) text += "<\u00FC\u65E5\U0001F600>\r\n";
  EXPECT_TRUE(Saved({text})->Read() == Value(text));
}

}  // namespace
}  // namespace kvdm
