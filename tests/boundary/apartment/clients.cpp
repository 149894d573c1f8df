#include "tests/boundary/apartment/clients.h"

#include <thread>

namespace kvdm::boundary {
namespace {

class Apartment {
 public:
  explicit Apartment(DWORD model) { ::CoInitializeEx(nullptr, model); }
  ~Apartment() { ::CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

// Lets calls of other apartments in until `ended` is set.
void ServeUntil(HANDLE ended) {
  while (::MsgWaitForMultipleObjects(1, &ended, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
    MSG message;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
      ::DispatchMessageW(&message);
    }
  }
}

void UseFromOtherApartment(IStream* stream, const Session& session) {
  const Apartment apartment(COINIT_APARTMENTTHREADED);
  ComPtr<::IKVDataManager> proxy;
  ::CoGetInterfaceAndReleaseStream(stream, IID_PPV_ARGS(&proxy));
  session(proxy);
}

}  // namespace

void RunInMultiThreadedApartment(const Session& session) {
  std::thread([&] {
    const Apartment apartment(COINIT_MULTITHREADED);
    session(Create<::IKVDataManager>(CLSID_KVDataManager));
  }).join();
}

void RunInOtherApartment(const Session& session) {
  const Apartment apartment(COINIT_APARTMENTTHREADED);
  const auto manager = Create<::IKVDataManager>(CLSID_KVDataManager);
  IStream* stream = nullptr;
  ::CoMarshalInterThreadInterfaceInStream(IID_IKVDataManager, manager.Get(), &stream);
  const HANDLE ended = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::thread client([&] {
    UseFromOtherApartment(stream, session);
    ::SetEvent(ended);
  });
  ServeUntil(ended);
  client.join();
  ::CloseHandle(ended);
}

}  // namespace kvdm::boundary
