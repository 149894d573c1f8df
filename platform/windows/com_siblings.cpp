#include "platform/windows/com_siblings.h"

#include <kvdm/platform/error.h>

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;

class ComResourceFinder final : public ResourceFinder {
 public:
  explicit ComResourceFinder(ComPtr<IDispatch> object) : object_(std::move(object)) {}

  std::string FindString(std::string_view id) override {
    const Bstr text(id);
    return ToText(FromVariant(object_.Call("FindString", {Passed(text)}).get()));
  }

 private:
  LateObject object_;
};

// Run-time error 429 for whatever reason there is no object.
ComPtr<IDispatch> Create(const wchar_t* class_name) {
  CLSID id{};
  ComPtr<IDispatch> object;
  if (FAILED(::CLSIDFromProgID(class_name, &id)) ||
      FAILED(::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)))) {
    throw RuntimeError(kCannotCreateObject);
  }
  return object;
}

}  // namespace

Value ComDatasetManager::Initialize() { return FromVariant(object_.Call("Initialize").get()); }

std::shared_ptr<DatasetManager> ComSiblings::CreateDatasetManager() {
  return std::make_shared<ComDatasetManager>(Create(L"QSObjectModel.QSManager"));
}

std::shared_ptr<ResourceFinder> ComSiblings::CreateResourceFinder() {
  return std::make_shared<ComResourceFinder>(Create(L"KVDMRes.clsFindResource"));
}

}  // namespace kvdm
