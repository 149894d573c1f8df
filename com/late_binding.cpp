#include "com/late_binding.h"

#include <algorithm>
#include <utility>

#include "platform/windows/automation.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

// The one named argument that counts as none is the value of a property put.
bool HasNamedArguments(const DISPPARAMS& parameters) {
  const bool is_value =
      parameters.cNamedArgs == 1 && parameters.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  return parameters.cNamedArgs != 0 && !is_value;
}

bool IsVariable(const VARIANT& argument) { return V_VT(&argument) == (VT_BYREF | VT_VARIANT); }

bool IsMissing(const VARIANT& argument) {
  return V_VT(&argument) == VT_ERROR && V_ERROR(&argument) == DISP_E_PARAMNOTFOUND;
}

bool IsResult(const SlotParameter& parameter) { return (parameter.flags & PARAMFLAG_FRETVAL) != 0; }
bool IsOut(const SlotParameter& parameter) {
  return (parameter.flags & (PARAMFLAG_FIN | PARAMFLAG_FOUT)) == PARAMFLAG_FOUT;
}

// Puts `value` into the variable that `argument` refers to, if it can hold it.
void Assign(Variant value, const VARIANT& argument) {
  if (IsVariable(argument)) {
    Check(::VariantClear(V_VARIANTREF(&argument)));
    *V_VARIANTREF(&argument) = value.Release();
  } else if (V_VT(&argument) == (VT_BYREF | VT_UNKNOWN) ||
             V_VT(&argument) == (V_VT(&value.get()) | VT_BYREF)) {
    if (*V_UNKNOWNREF(&argument) != nullptr) (*V_UNKNOWNREF(&argument))->Release();
    VARIANT released = value.Release();
    *V_UNKNOWNREF(&argument) = V_UNKNOWN(&released);
  }
}

// One argument on its way to a slot. Callers by name pass values, or variables by reference, of
// whatever type they have.
class Argument {
 public:
  explicit Argument(const SlotParameter& parameter) : parameter_(parameter) {
    V_VT(&passed_) = parameter.is_pointer ? VARTYPE(VT_BYREF | parameter.type) : parameter.type;
    const bool is_whole = parameter.type == VT_VARIANT;
    if (parameter.is_pointer) {
      V_BYREF(&passed_) = is_whole ? static_cast<void*>(own_.address()) : &V_NONE(own_.address());
    }
  }

  [[nodiscard]] const SlotParameter& parameter() const { return parameter_; }

  // Takes what the caller passed, in the form of the parameter. A failure when it has none.
  [[nodiscard]] HRESULT Take(VARIANT& given) {
    given_ = &given;
    VARIANT& value = IsVariable(given) ? *V_VARIANTREF(&given) : given;
    if (IsOut(parameter_)) return S_OK;
    if (IsMissing(value)) return DISP_E_PARAMNOTOPTIONAL;
    if (parameter_.type == VT_UNKNOWN) return TakeObject(value);
    if (parameter_.type == VT_VARIANT) {
      V_VARIANTREF(&passed_) = &value;
      return S_OK;
    }
    const HRESULT changed = ::VariantChangeType(own_.address(), &value, 0, parameter_.type);
    if (FAILED(changed)) return changed == DISP_E_OVERFLOW ? changed : DISP_E_TYPEMISMATCH;
    if (!parameter_.is_pointer) passed_ = own_.get();
    return S_OK;
  }

  // For DispCallFunc; valid while this stays where it is.
  [[nodiscard]] VARIANT* Passed() { return &passed_; }

  // After the call: gives the caller's variable what the operation stored.
  void HandBack() {
    if (IsOut(parameter_)) {
      Assign(std::move(own_), *given_);
    } else if (parameter_.type == VT_UNKNOWN && parameter_.is_pointer &&
               V_UNKNOWN(&own_.get()) != ObjectIn(*given_)) {
      Assign(ObjectValue(V_UNKNOWN(&own_.get())), *given_);
    }
  }

  // After the call: the operation's result as callers by name can use it, an object as IDispatch
  // where it has that.
  [[nodiscard]] VARIANT Result() {
    if (parameter_.type == VT_VARIANT) return own_.Release();
    V_VT(own_.address()) = parameter_.type;
    return parameter_.type == VT_UNKNOWN ? ObjectValue(V_UNKNOWN(&own_.get())).Release()
                                         : own_.Release();
  }

 private:
  HRESULT TakeObject(const VARIANT& value) {
    ComPtr<IUnknown> object;
    try {
      object = ObjectIn(value);
    } catch (const RuntimeError&) {
      return DISP_E_TYPEMISMATCH;
    }
    V_UNKNOWN(own_.address()) = object.Detach();
    V_VT(own_.address()) = VT_UNKNOWN;
    if (!parameter_.is_pointer) V_UNKNOWN(&passed_) = V_UNKNOWN(&own_.get());
    return S_OK;
  }

  const SlotParameter& parameter_;
  Variant own_;               // what was converted, or room for what comes back
  VARIANT passed_{};          // what the slot gets: a value, or the address of one
  VARIANT* given_ = nullptr;  // the caller's
};

std::vector<Argument> ArgumentsOf(const Operation& operation) {
  return {operation.parameters.begin(), operation.parameters.end()};
}

// Takes the caller's arguments, of which the last stands first.
HRESULT TakeAll(const LateCall& call, std::vector<Argument>& arguments) {
  const UINT count = call.parameters.cArgs;
  const auto wanted = std::ranges::count_if(
      arguments, [](const Argument& each) { return !IsResult(each.parameter()); });
  if (static_cast<UINT>(wanted) != count) return DISP_E_BADPARAMCOUNT;
  for (UINT i = 0; i < count; ++i) {
    const UINT place = count - 1 - i;
    const HRESULT taken = arguments[i].Take(call.parameters.rgvarg[place]);
    if (SUCCEEDED(taken)) continue;
    if (call.wrong_argument != nullptr) *call.wrong_argument = place;
    return taken;
  }
  return S_OK;
}

HRESULT CallSlot(const Operation& operation, IUnknown* object, std::vector<Argument>& arguments) {
  std::vector<VARTYPE> types;
  std::vector<VARIANT*> passed;
  for (Argument& each : arguments) {
    types.push_back(V_VT(each.Passed()));
    passed.push_back(each.Passed());
  }
  VARIANT returned{};
  Check(::DispCallFunc(object, operation.slot, CC_STDCALL, VT_ERROR,
                       static_cast<UINT>(types.size()), types.data(), passed.data(), &returned));
  return V_ERROR(&returned);
}

// Tells of a failed operation what its error object tells, which is no answer any more.
HRESULT Except(HRESULT failure, EXCEPINFO* exception) {
  const RuntimeError error = ErrorOf(failure);
  if (exception == nullptr) return DISP_E_EXCEPTION;
  *exception = {};
  exception->scode = failure;
  exception->bstrSource = Bstr(error.source()).Release();
  exception->bstrDescription = Bstr(error.what()).Release();
  return DISP_E_EXCEPTION;
}

}  // namespace

// Many callers can't tell whether what they call is read: a property is read by a call, too.
const Operation* FindOperation(const ObjectType& type, const LateCall& call) {
  WORD kinds = call.flags;
  if ((kinds & DISPATCH_METHOD) != 0) kinds |= DISPATCH_PROPERTYGET;
  const auto found = std::ranges::find_if(type.operations, [&](const Operation& operation) {
    return operation.id == call.id && (operation.kind & kinds) != 0;
  });
  return found == type.operations.end() ? nullptr : &*found;
}

HRESULT Invoke(const Operation& operation, IUnknown* object, const LateCall& call) {
  if (HasNamedArguments(call.parameters)) return DISP_E_NONAMEDARGS;
  std::vector<Argument> arguments = ArgumentsOf(operation);
  const HRESULT taken = TakeAll(call, arguments);
  if (FAILED(taken)) return taken;
  const HRESULT done = CallSlot(operation, object, arguments);
  if (FAILED(done)) return Except(done, call.exception);
  for (Argument& each : arguments) {
    if (!IsResult(each.parameter())) {
      each.HandBack();
    } else if (call.result != nullptr) {
      *call.result = each.Result();
    }
  }
  return S_OK;
}

}  // namespace kvdm::com
