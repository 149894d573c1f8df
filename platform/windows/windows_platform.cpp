#undef NOMB  // The system's message box is wanted here, ...
#include <windows.h>
#undef MessageBox  // ... and its name is the component's.

#include <array>
#include <exception>

#include <kvdm/platform/portable/portable_services.h>

#include "platform/windows/automation.h"
#include "platform/windows/com_siblings.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_file_system.h"
#include "platform/windows/windows_platform.h"
#include "platform/windows/windows_registry.h"
#include "platform/xml_parser.h"

namespace kvdm {
namespace {

class DebuggerLog final : public Log {
 public:
  void Note(std::string_view line) override {
    try {
      ::OutputDebugStringW((ToUtf16(line) + L"\r\n").c_str());
    } catch (const std::exception&) {
      ::OutputDebugStringW(L"A line is too long to be noted\r\n");
    }
  }
};

class Win32MessageBox final : public MessageBox {
 public:
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override {
    ::MessageBoxA(nullptr, ToAnsi(text).c_str(), ToAnsi(caption).c_str(), static_cast<UINT>(style));
  }
};

class WindowsClock final : public Clock {
 public:
  DateTime Now() override {
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
  }
};

// A new version-4 identifier in registry form.
std::string WindowsGuid() {
  GUID guid{};
  Check(::CoCreateGuid(&guid));
  std::array<wchar_t, 39> text{};  // 38 characters and a NUL.
  ::StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return ToUtf8(text.data());
}

std::shared_ptr<Log> MakeLog(const CallbackLog::Callback& note) {
  if (!note) return std::make_shared<DebuggerLog>();
  return std::make_shared<CallbackLog>(note);
}

// Shows the text as the system's message box would.
std::shared_ptr<MessageBox> MakeMessageBox(const CallbackMessageBox::Callback& show) {
  if (!show) return std::make_shared<Win32MessageBox>();
  return std::make_shared<CallbackMessageBox>([show](auto text, auto caption, auto style) {
    show(FromAnsi(ToAnsi(text)), FromAnsi(ToAnsi(caption)), style);
  });
}

}  // namespace

Platform MakeWindowsPlatform(const WindowsOptions& options) {
  Platform platform;
  platform.log = MakeLog(options.log);
  platform.files = MakeWindowsFileSystem();
  platform.registry = MakeWindowsRegistry(platform.log);
  platform.message_box = MakeMessageBox(options.message_box);
  platform.xml_parser = MakeXmlParser();
  platform.clock = std::make_shared<WindowsClock>();
  platform.gis_core = MakePortableGisCore(WindowsGuid);
  platform.siblings = options.siblings ? options.siblings : std::make_shared<ComSiblings>();
  return platform;
}

}  // namespace kvdm
