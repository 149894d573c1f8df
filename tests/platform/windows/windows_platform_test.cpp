#include "platform/windows/windows_platform.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <kvdm/platform/portable/portable_services.h>

#include "platform/windows/com_siblings.h"
#include "platform/windows/text.h"

namespace kvdm {
namespace {

TEST(WindowsPlatformTest, EveryServiceIsThere) {
  const Platform platform = MakeWindowsPlatform({});
  EXPECT_TRUE(platform.files && platform.registry && platform.message_box && platform.xml_parser &&
              platform.clock && platform.gis_core && platform.siblings && platform.log);
}

TEST(WindowsPlatformTest, MessagesAreShownAsAMessageBoxShowsThem) {
  std::string shown;
  const Platform platform =
      MakeWindowsPlatform({.message_box = [&](auto text, auto caption, auto /*style*/) {
        shown = std::string(caption) + ": " + std::string(text);
      }});
  platform.message_box->Show("\u00FC\u0416", "\u65E5", MessageStyle::kExclamation);
  EXPECT_EQ(shown, FromAnsi(ToAnsi("\u65E5: \u00FC\u0416")));
}

TEST(WindowsPlatformTest, LogLinesGoWhereTheHostWants) {
  std::string noted;
  const Platform platform = MakeWindowsPlatform({.log = [&](auto line) { noted = line; }});
  platform.log->Note("line \u65E5");
  EXPECT_EQ(noted, "line \u65E5");
}

TEST(WindowsPlatformTest, SiblingsAreTheRegisteredOnesOrTheHosts) {
  const Platform registered = MakeWindowsPlatform({});
  EXPECT_NE(std::dynamic_pointer_cast<ComSiblings>(registered.siblings), nullptr);
  const auto own = MakePortableSiblings();
  EXPECT_EQ(MakeWindowsPlatform({.siblings = own}).siblings, own);
}

TEST(WindowsPlatformTest, TheClockTellsTheLocalTime) {
  SYSTEMTIME before{};
  SYSTEMTIME after{};
  ::GetLocalTime(&before);
  const DateTime now = MakeWindowsPlatform({}).clock->Now();
  ::GetLocalTime(&after);
  const auto text = [](const SYSTEMTIME& time) {
    return DateText({time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond});
  };
  EXPECT_TRUE(DateText(now) == text(before) || DateText(now) == text(after)) << DateText(now);
}

}  // namespace
}  // namespace kvdm
