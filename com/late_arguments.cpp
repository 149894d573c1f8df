#include "com/late_arguments.h"

#include "platform/windows/automation.h"

namespace kvdm::com {
namespace {

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

// What a parameter points to; VT_EMPTY when it is no pointer.
VARTYPE PointeeOf(const ELEMDESC& parameter) {
  const bool is_pointer = parameter.tdesc.vt == VT_PTR;
  return is_pointer ? parameter.tdesc.lptdesc->vt : static_cast<VARTYPE>(VT_EMPTY);
}

}  // namespace

// The last argument stands first.
LateArguments::LateArguments(const FUNCDESC& operation, const DISPPARAMS& given)
    : arguments_(given.cArgs), passed_(given.cArgs), parameters_(given) {
  for (UINT i = 0; i < given.cArgs; ++i) {
    const auto position = static_cast<int>(given.cArgs - 1 - i);
    if (position >= operation.cParams) Check(DISP_E_BADPARAMCOUNT);
    passed_[i] = Converted(operation.lprgelemdescParam[position], given.rgvarg[i], arguments_[i]);
  }
  parameters_.rgvarg = passed_.data();
}

VARIANT LateArguments::Converted(const ELEMDESC& parameter, VARIANT& given, Argument& argument) {
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

void LateArguments::HandBack() {
  for (const Argument& argument : arguments_) {
    if (argument.variable == nullptr) continue;
    if (argument.object.Get() == ObjectIn(*argument.variable)) continue;
    Assign(argument.object.Get(), *argument.variable);
  }
}

}  // namespace kvdm::com
