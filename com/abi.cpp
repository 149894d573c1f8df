#include "com/abi.h"

#include <exception>

namespace kvdm::com::abi {
namespace {

using Microsoft::WRL::ComPtr;

void SetErrorObject(const RuntimeError& error, const char* class_identity, const IID& iid) {
  ComPtr<ICreateErrorInfo> made;
  Check(::CreateErrorInfo(&made));
  const std::string source = error.source().empty() ? class_identity : error.source();
  Check(made->SetGUID(iid));
  Check(made->SetSource(Bstr(source).get()));
  Check(made->SetDescription(Bstr(error.what()).get()));
  ComPtr<IErrorInfo> info;
  Check(made.As(&info));
  Check(::SetErrorInfo(0, info.Get()));
}

}  // namespace

HRESULT RaiseCurrentError(const char* class_identity, const IID& iid) noexcept {
  try {
    const RuntimeError error = CurrentError();
    SetErrorObject(error, class_identity, iid);
    return ResultOf(error);
  } catch (const std::exception& error) {
    return ResultOf(AsRuntimeError(error));
  }
}

}  // namespace kvdm::com::abi
