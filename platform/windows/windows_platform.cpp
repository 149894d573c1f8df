#include "platform/windows/windows_platform.h"

#include <kvdm/platform/portable/portable_services.h>

#include "platform/windows/ansi.h"
#include "platform/windows/com_siblings.h"
#include "platform/windows/debugger_log.h"
#include "platform/windows/msxml_parser.h"
#include "platform/windows/win32_message_box.h"
#include "platform/windows/windows_clock.h"
#include "platform/windows/windows_file_system.h"
#include "platform/windows/windows_guid.h"
#include "platform/windows/windows_registry.h"

namespace kvdm {
namespace {

std::shared_ptr<Log> MakeLog(const CallbackLog::Callback& note) {
  if (!note) return std::make_shared<DebuggerLog>();
  return std::make_shared<CallbackLog>(note);
}

// What is shown is what the system's message box would show.
std::shared_ptr<MessageBox> MakeMessageBox(const CallbackMessageBox::Callback& show) {
  if (!show) return std::make_shared<Win32MessageBox>();
  return std::make_shared<CallbackMessageBox>([show](auto text, auto caption, auto style) {
    show(FromAnsi(ToAnsi(text)), FromAnsi(ToAnsi(caption)), style);
  });
}

std::shared_ptr<Siblings> OrRegistered(const std::shared_ptr<Siblings>& siblings) {
  return siblings ? siblings : std::make_shared<ComSiblings>();
}

}  // namespace

Platform MakeWindowsPlatform(const WindowsOptions& options) {
  Platform platform;
  platform.log = MakeLog(options.log);
  platform.files = std::make_shared<WindowsFileSystem>();
  platform.registry = std::make_shared<WindowsRegistry>(platform.log);
  platform.message_box = MakeMessageBox(options.message_box);
  platform.xml_parser = std::make_shared<MsxmlParser>();
  platform.clock = std::make_shared<WindowsClock>();
  platform.gis_core = MakePortableGisCore(WindowsGuid);
  platform.siblings = OrRegistered(options.siblings);
  return platform;
}

}  // namespace kvdm
