#include "com/late_binding.h"

#include <algorithm>
#include <memory>

#include "com/module.h"
#include "platform/windows/automation.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

// Smaller identifiers are those that the type library assigns.
constexpr DISPID kFirstOwnId = 0x60000000;

bool SameLetters(std::wstring_view a, std::wstring_view b) {
  return ::CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                                static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

// The interface's description with its place for each operation, also for one that can be called by
// name on its own.
ComPtr<ITypeInfo> DescriptionOf(const IID& iid) {
  ComPtr<ITypeLib> library;
  Check(::LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &library));
  ComPtr<ITypeInfo> type;
  Check(library->GetTypeInfoOfGuid(iid, &type));
  constexpr UINT kInterfaceOfDual = static_cast<UINT>(-1);
  HREFTYPE reference = 0;
  if (FAILED(type->GetRefTypeOfImplType(kInterfaceOfDual, &reference))) return type;
  ComPtr<ITypeInfo> of_interface;
  Check(type->GetRefTypeInfo(reference, &of_interface));
  return of_interface;
}

UINT OperationCount(ITypeInfo& type) {
  TYPEATTR* attributes = nullptr;
  Check(type.GetTypeAttr(&attributes));
  const UINT count = attributes->cFuncs;
  type.ReleaseTypeAttr(attributes);
  return count;
}

struct ReleaseOperation {
  ITypeInfo* type;
  void operator()(FUNCDESC* operation) const { type->ReleaseFuncDesc(operation); }
};
using Operation = std::unique_ptr<FUNCDESC, ReleaseOperation>;

Operation OperationAt(ITypeInfo& type, UINT index) {
  FUNCDESC* operation = nullptr;
  Check(type.GetFuncDesc(index, &operation));
  return {operation, {&type}};
}

std::wstring NameOf(ITypeInfo& type, MEMBERID id) {
  Bstr name;
  Check(type.GetDocumentation(id, name.address(), nullptr, nullptr, nullptr));
  return {name.get(), ::SysStringLen(name.get())};
}

// The one named argument that counts as none is the value of a property put.
bool HasNamedArguments(const DISPPARAMS& parameters) {
  const bool is_value =
      parameters.cNamedArgs == 1 && parameters.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  return parameters.cNamedArgs != 0 && !is_value;
}

// Gives the caller an object as IDispatch where it has that: callers by name can use no other.
void MakeCallable(VARIANT* result) {
  if (result == nullptr || V_VT(result) != VT_UNKNOWN) return;
  Variant object = ObjectValue(V_UNKNOWN(result));
  ::VariantClear(result);
  *result = object.Release();
}

bool IsVariable(const VARIANT& argument) { return V_VT(&argument) == (VT_BYREF | VT_VARIANT); }

bool IsObjectVariable(const VARIANT& argument) {
  return V_VT(&argument) == (VT_BYREF | VT_DISPATCH) || V_VT(&argument) == (VT_BYREF | VT_UNKNOWN);
}

// Puts `object` into the variable that `argument` refers to.
void Assign(IUnknown* object, VARIANT& argument) {
  Variant value = ObjectValue(object);
  if (IsVariable(argument)) {
    Check(::VariantClear(V_VARIANTREF(&argument)));
    *V_VARIANTREF(&argument) = value.Release();
  } else if (V_VT(&value.get()) == (V_VT(&argument) & VT_TYPEMASK) ||
             V_VT(&argument) == (VT_BYREF | VT_UNKNOWN)) {
    if (*V_UNKNOWNREF(&argument) != nullptr) (*V_UNKNOWNREF(&argument))->Release();
    VARIANT released = value.Release();
    *V_UNKNOWNREF(&argument) = V_UNKNOWN(&released);
  }
}

// The type that a parameter points to; VT_EMPTY when it is no pointer.
VARTYPE PointeeOf(const ELEMDESC& parameter) {
  const bool is_pointer = parameter.tdesc.vt == VT_PTR;
  return is_pointer ? parameter.tdesc.lptdesc->vt : static_cast<VARTYPE>(VT_EMPTY);
}

// Callers by name pass values, or variables by reference, of whatever type they have. Here each
// becomes what its parameter is: a text, an object, an object variable; others stay as they are.
class LateArguments {
 public:
  // Run-time error 13 for an argument that its parameter can't take, 450 for one too many.
  // The last argument stands first.
  LateArguments(const FUNCDESC& operation, const DISPPARAMS& given)
      : arguments_(given.cArgs), passed_(given.cArgs), parameters_(given) {
    for (UINT i = 0; i < given.cArgs; ++i) {
      const auto position = static_cast<int>(given.cArgs - 1 - i);
      if (position >= operation.cParams) Check(DISP_E_BADPARAMCOUNT);
      passed_[i] = Converted(operation.lprgelemdescParam[position], given.rgvarg[i], arguments_[i]);
    }
    parameters_.rgvarg = passed_.data();
  }

  // For ITypeInfo::Invoke; valid while this lives.
  [[nodiscard]] DISPPARAMS& Parameters() { return parameters_; }

  // After the call: gives the caller's object variables what they now hold.
  void ReturnObjects() {
    for (const Argument& argument : arguments_) {
      if (argument.variable == nullptr) continue;
      if (argument.object.Get() == ObjectIn(*argument.variable)) continue;
      Assign(argument.object.Get(), *argument.variable);
    }
  }

 private:
  struct Argument {
    Variant value;                // what was converted, if anything
    ComPtr<IUnknown> object;      // what an object variable holds
    VARIANT* variable = nullptr;  // the caller's object variable
  };

  VARIANT Converted(const ELEMDESC& parameter, VARIANT& given, Argument& argument) {
    VARIANT& value = IsVariable(given) ? *V_VARIANTREF(&given) : given;
    VARIANT passed{};
    if (parameter.tdesc.vt == VT_UNKNOWN) {
      V_VT(&passed) = VT_UNKNOWN;
      V_UNKNOWN(&passed) = ObjectIn(value);
    } else if (PointeeOf(parameter) == VT_UNKNOWN) {
      if (IsVariable(given) || IsObjectVariable(given)) argument.variable = &given;
      argument.object = ObjectIn(value);
      V_VT(&passed) = VT_BYREF | VT_UNKNOWN;
      V_UNKNOWNREF(&passed) = argument.object.GetAddressOf();
    } else if (PointeeOf(parameter) == VT_BSTR) {
      Check(::VariantChangeType(argument.value.address(), &value, 0, VT_BSTR));
      passed = argument.value.get();
    } else {
      passed = PointeeOf(parameter) == VT_VARIANT ? given : value;
    }
    return passed;
  }

  std::vector<Argument> arguments_;
  std::vector<VARIANT> passed_;
  DISPPARAMS parameters_;
};

}  // namespace

void LateBinding::Add(const IID& iid, IUnknown* wrapper) {
  const ComPtr<ITypeInfo> type = DescriptionOf(iid);
  const UINT count = OperationCount(*type.Get());
  for (UINT i = 0; i < count; ++i) {
    const Operation operation = OperationAt(*type.Get(), i);
    std::wstring name = NameOf(*type.Get(), operation->memid);
    const auto known = IdOf(name);
    const DISPID next = kFirstOwnId + static_cast<DISPID>(members_.size());
    const DISPID own = operation->memid < kFirstOwnId ? operation->memid : next;
    members_.push_back(
        {std::move(name), known.value_or(own), operation->invkind, i, type, wrapper});
  }
}

std::optional<DISPID> LateBinding::IdOf(std::wstring_view name) const {
  const auto found = std::ranges::find_if(
      members_, [&](const Member& member) { return SameLetters(member.name, name); });
  if (found == members_.end()) return std::nullopt;
  return found->id;
}

// Reading a property and calling an operation are one thing to many callers.
const LateBinding::Member* LateBinding::Find(DISPID id, WORD flags) const {
  constexpr WORD kCallOrRead = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  if ((flags & kCallOrRead) != 0) flags |= kCallOrRead;
  const auto found = std::ranges::find_if(members_, [&](const Member& member) {
    return member.id == id && (member.kind & flags) != 0;
  });
  return found == members_.end() ? nullptr : &*found;
}

HRESULT LateBinding::Invoke(const LateCall& call) const {
  const Member* member = Find(call.id, call.flags);
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
  if (HasNamedArguments(call.parameters)) return DISP_E_NONAMEDARGS;
  const Operation operation = OperationAt(*member->type.Get(), member->index);
  LateArguments arguments(*operation, call.parameters);
  const HRESULT result = member->type->Invoke(
      member->wrapper, operation->memid, static_cast<WORD>(member->kind), &arguments.Parameters(),
      call.result, call.exception, call.wrong_argument);
  if (FAILED(result)) {
    if (call.result != nullptr) ::VariantInit(call.result);
    return result;
  }

  MakeCallable(call.result);
  arguments.ReturnObjects();
  return result;
}

}  // namespace kvdm::com
