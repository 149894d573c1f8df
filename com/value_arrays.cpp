#include "com/value_arrays.h"

#include <memory>

#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {
namespace {

struct DestroyArray {
  void operator()(SAFEARRAY* array) const { ::SafeArrayDestroy(array); }
};
using Array = std::unique_ptr<SAFEARRAY, DestroyArray>;

// The element of an array of type VT_VARIANT or VT_BSTR.
Value ElementAt(SAFEARRAY* array, VARTYPE type, LONG position) {
  if (type == VT_BSTR) {
    Bstr text;
    Check(::SafeArrayGetElement(array, &position, text.address()));
    return ToText(text.get());
  }
  Variant element;
  Check(::SafeArrayGetElement(array, &position, element.address()));
  return FromVariant(element.get());
}

std::vector<Value> Elements(SAFEARRAY* array, VARTYPE type) {
  if (::SafeArrayGetDim(array) != 1 || (type != VT_VARIANT && type != VT_BSTR)) {
    throw RuntimeError(kTypeMismatch);
  }
  LONG first = 0;
  LONG last = 0;
  Check(::SafeArrayGetLBound(array, 1, &first));
  Check(::SafeArrayGetUBound(array, 1, &last));
  std::vector<Value> values;
  for (LONG i = first; i <= last; ++i) values.push_back(ElementAt(array, type, i));
  return values;
}

}  // namespace

void PutArray(const std::vector<Value>& values, VARIANT* out) {
  ::VariantInit(out);
  if (values.empty()) return;
  Array array(::SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(values.size())));
  if (!array) throw std::bad_alloc();
  for (LONG i = 0; i < static_cast<LONG>(values.size()); ++i) {
    const Variant element(values[static_cast<std::size_t>(i)]);
    Check(::SafeArrayPutElement(array.get(), &i, const_cast<VARIANT*>(&element.get())));
  }
  V_VT(out) = VT_ARRAY | VT_VARIANT;
  V_ARRAY(out) = array.release();
}

std::vector<Value> FromArray(const VARIANT& array) {
  if (V_VT(&array) == (VT_BYREF | VT_VARIANT)) return FromArray(*V_VARIANTREF(&array));
  if (V_VT(&array) == VT_EMPTY) return {};
  if ((V_VT(&array) & VT_ARRAY) == 0) return {FromVariant(array)};
  SAFEARRAY* elements = (V_VT(&array) & VT_BYREF) != 0 ? *V_ARRAYREF(&array) : V_ARRAY(&array);
  return Elements(elements, V_VT(&array) & VT_TYPEMASK);
}

}  // namespace kvdm::com
