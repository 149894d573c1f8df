#include "library/kvdm_library.h"

#include "datamanager/component.h"
#include "platform/posix/posix_platform.h"
#include "util/guard.h"

std::int32_t KvdmCreateObject(const char* class_identity, const kvdm::Platform* platform,
                              std::shared_ptr<kvdm::Unknown>* object) noexcept {
  if (object == nullptr) return kvdm::kInvalidCall;
  object->reset();
  if (class_identity == nullptr) return kvdm::kInvalidCall;
  std::int32_t number = 0;
  kvdm::guard::Handled([&](const kvdm::RuntimeError& error) { number = error.number(); },
                       [&] {
                         *object = kvdm::CreateObject(
                             class_identity,
                             platform != nullptr ? *platform : kvdm::MakePosixPlatform({}));
                       });
  return number;
}
