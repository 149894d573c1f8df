// What the XML parser on Windows does at its limits; the rest is in the contract.
#include <gtest/gtest.h>
#include <objbase.h>
#include <windows.h>

#include <thread>

#include <kvdm/platform/error.h>

#include "platform/xml/limits.h"
#include "platform/xml_parser.h"
#include "tests/platform/windows/com_environment.h"
#include "tests/platform/windows/wine.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using xml::kMaxAttributes;
using xml::kMaxDepth;
using xml::kMaxNameBytes;
using xml::kMaxValueBytes;

// Takes whatever comes.
class Anything final : public XmlHandler {
 public:
  bool StartElement(std::string_view /*tag*/, Attributes /*attributes*/) override { return true; }
  bool EndElement() override { return true; }
  bool Characters(std::string_view /*text*/) override { return true; }
  bool Comment(std::string_view /*text*/) override { return true; }
  bool Instruction(std::string_view /*target*/, std::string_view /*data*/) override { return true; }
};

bool Accepts(std::string_view text) {
  Anything handler;
  return MakeXmlParser()->Parse(text, XmlEncoding::kUtf8, handler);
}

std::string Repeated(std::string_view text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

std::string Chain(std::size_t depth) { return Repeated("<A>", depth) + Repeated("</A>", depth); }

std::string WithAttributes(std::size_t count) {
  std::string text = "<A";
  for (std::size_t i = 0; i < count; ++i) text += " a" + std::to_string(i) + "='>'";
  return text + "/>";
}

TEST(MsxmlParserTest, KeepsTheDepth) {
  EXPECT_TRUE(Accepts(Chain(kMaxDepth)));
  EXPECT_FALSE(Accepts(Chain(kMaxDepth + 1)));
  EXPECT_FALSE(Accepts(Chain(100'000)));
}

TEST(MsxmlParserTest, KeepsTheNumberOfAttributes) {
  EXPECT_TRUE(Accepts(WithAttributes(kMaxAttributes)));
  EXPECT_FALSE(Accepts(WithAttributes(kMaxAttributes + 1)));
  EXPECT_FALSE(Accepts(WithAttributes(200'000)));
}

TEST(MsxmlParserTest, TakesTheLongestNamesAndTexts) {
  const std::string name(kMaxNameBytes, 'n');
  EXPECT_TRUE(Accepts("<" + name + " " + name + "=''/>"));
  EXPECT_TRUE(Accepts("<A>" + std::string(kMaxValueBytes, 'v') + "</A>"));
}

TEST(MsxmlParserTest, TakesLargeDocuments) {
  const std::string element = "<A>" + std::string(kMaxValueBytes - 1000, 'v') + "</A>";
  EXPECT_TRUE(Accepts("<A>" + Repeated(element, 6) + "</A>"));
}

// Wine takes no attribute that is this large as it is written, ...
TEST(MsxmlParserTest, TakesTheLongestAttributesExceptWithWine) {
  EXPECT_EQ(Accepts("<A v='" + std::string(kMaxValueBytes, 'v') + "'/>"), !IsWine());
}

// ... and with many attributes no document larger than that.
TEST(MsxmlParserTest, TakesManyLargeAttributesExceptWithWine) {
  const std::string element = "<A v='" + std::string(1'000'000, 'v') + "'/>";
  EXPECT_EQ(Accepts("<A>" + Repeated(element, 20) + "</A>"), !IsWine());
}

TEST(MsxmlParserTest, FailsWhereComIsNotInitialised) {
  std::thread([] { EXPECT_RUNTIME_ERROR(Accepts("<A/>"), CO_E_NOTINITIALIZED); }).join();
}

}  // namespace
}  // namespace kvdm
