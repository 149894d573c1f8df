// Calls by name, described by the type library.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/com_headers.h"

namespace kvdm::com {

// The arguments of IDispatch::Invoke.
struct LateCall {
  DISPID id;
  LCID locale;
  WORD flags;
  DISPPARAMS& parameters;
  VARIANT* result;
  EXCEPINFO* exception;
  UINT* wrong_argument;
};

// The operations of an object's interfaces under their names. Only these are reached; names are
// compared without regard to letter case. An identifier stands for a name: a property that is read
// through one interface and set through another has one.
class LateBinding {
 public:
  // Adds the operations of the interface `iid`, which `wrapper` points to for as long as this
  // lives.
  void Add(const IID& iid, IUnknown* wrapper);

  // Nothing for a name that no operation has.
  [[nodiscard]] std::optional<DISPID> IdOf(std::wstring_view name) const;

  // Calls the operation, as IDispatch::Invoke answers. Arguments may be passed by reference.
  HRESULT Invoke(const LateCall& call) const;

 private:
  struct Member {
    std::wstring name;
    DISPID id;
    INVOKEKIND kind;
    UINT index;  // among the operations of `type`
    Microsoft::WRL::ComPtr<ITypeInfo> type;
    IUnknown* wrapper;
  };

  [[nodiscard]] const Member* Find(DISPID id, WORD flags) const;

  std::vector<Member> members_;
};

}  // namespace kvdm::com
