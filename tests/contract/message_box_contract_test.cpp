// What every message box does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include <kvdm/platform/portable/callback_sinks.h>

#include "platform/memory/memory_platform.h"
#include "tests/contract/implementations.h"

namespace kvdm {
namespace {

using testing::ElementsAre;

// A message box and what has come out of it.
struct ShownWorld {
  std::shared_ptr<MessageBox> box;
  std::function<std::vector<ShownMessage>()> messages;
};

ShownWorld MakeRecording() {
  const auto box = std::make_shared<RecordingMessageBox>();
  return {box, [box] { return box->Messages(); }};
}

ShownWorld MakeCallback() {
  const auto recorder = std::make_shared<RecordingMessageBox>();
  const auto box = std::make_shared<CallbackMessageBox>(
      [recorder](auto text, auto caption, auto style) { recorder->Show(text, caption, style); });
  return {box, [recorder] { return recorder->Messages(); }};
}

ShownWorld MakeSystem() {
  const auto recorder = std::make_shared<RecordingMessageBox>();
  const Platform platform = SystemPlatform(
      [recorder](auto text, auto caption, auto style) { recorder->Show(text, caption, style); });
  return {platform.message_box, [recorder] { return recorder->Messages(); }};
}

struct BoxImplementation {
  std::string name;
  ShownWorld (*make)();
};

class MessageBoxContractTest : public testing::TestWithParam<BoxImplementation> {
 protected:
  ShownWorld world_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(All, MessageBoxContractTest,
                         testing::Values(BoxImplementation{"Recording", MakeRecording},
                                         BoxImplementation{"Callback", MakeCallback},
                                         BoxImplementation{SystemName(), MakeSystem}),
                         kByName);

TEST_P(MessageBoxContractTest, ShowsTextCaptionAndStyle) {
  world_.box->Show("Can't save", "Kelvaro", MessageStyle::kExclamation);
  EXPECT_THAT(world_.messages(),
              ElementsAre(ShownMessage{"Can't save", "Kelvaro", MessageStyle::kExclamation}));
}

TEST_P(MessageBoxContractTest, ShowsMessagesInOrder) {
  world_.box->Show("one", "", MessageStyle::kPlain);
  world_.box->Show("two\r\nlines", "", MessageStyle::kPlain);
  EXPECT_THAT(world_.messages(),
              ElementsAre(ShownMessage{"one", "", MessageStyle::kPlain},
                          ShownMessage{"two\r\nlines", "", MessageStyle::kPlain}));
}

}  // namespace
}  // namespace kvdm
