#include "platform/windows/automation.h"

#include <dispex.h>

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include "platform/windows/text.h"

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;

constexpr std::uint32_t kNumberMask = 0xFFFF;
// Result codes with this upper half carry a run-time error's number in the lower one.
constexpr std::uint32_t kNumbered = 0x800A0000;

struct KnownResult {
  HRESULT result;
  std::int32_t number;
};

constexpr std::array kKnownResults = {
    KnownResult{E_NOTIMPL, kActionNotSupported},
    KnownResult{E_NOINTERFACE, kInterfaceNotSupported},
    KnownResult{DISP_E_UNKNOWNNAME, kMemberNotSupported},
    KnownResult{DISP_E_MEMBERNOTFOUND, kMemberNotSupported},
    KnownResult{DISP_E_UNKNOWNINTERFACE, kMemberNotSupported},
    KnownResult{DISP_E_TYPEMISMATCH, kTypeMismatch},
    KnownResult{TYPE_E_TYPEMISMATCH, kTypeMismatch},
    KnownResult{DISP_E_OVERFLOW, kOverflow},
    KnownResult{DISP_E_BADINDEX, kSubscriptOutOfRange},
    KnownResult{DISP_E_BADPARAMCOUNT, kWrongArgumentCount},
    KnownResult{E_INVALIDARG, kInvalidCall},
    KnownResult{E_OUTOFMEMORY, kOutOfMemory},
    KnownResult{E_ACCESSDENIED, kPermissionDenied},
    KnownResult{REGDB_E_CLASSNOTREG, kCannotCreateObject},
    KnownResult{CO_E_CLASSSTRING, kCannotCreateObject},
};

std::int32_t NumberOf(HRESULT result) {
  const auto bits = static_cast<std::uint32_t>(result);
  const std::uint32_t number = bits & kNumberMask;
  if (number != 0 && bits - number == kNumbered) return static_cast<std::int32_t>(number);
  const auto* known = std::ranges::find(kKnownResults, result, &KnownResult::result);
  return known == kKnownResults.end() ? result : known->number;
}

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

// A DATE counts days from here; its fraction is the time of that day, also before this day: -1.25
// is six o'clock on the day before.
constexpr sys_days kDayZero{std::chrono::year{1899} / std::chrono::December / 30};
constexpr double kFirstDay = -657434;  // 1 January 100
constexpr double kLastDay = 2958465;   // 31 December 9999
constexpr int kSecondsPerMinute = 60;
constexpr int kSecondsPerHour = 3600;
constexpr int kSecondsPerDay = 86400;

DateTime ToDateTime(DATE date) {
  if (!(date > kFirstDay - 1 && date < kLastDay + 1)) throw RuntimeError(kTypeMismatch);
  double whole = 0;
  const auto second =
      static_cast<int>(std::lround(std::fabs(std::modf(date, &whole)) * kSecondsPerDay));
  const year_month_day day{kDayZero + days{static_cast<int>(whole) + second / kSecondsPerDay}};
  const int in_day = second % kSecondsPerDay;
  return {.year = static_cast<int>(day.year()),
          .month = static_cast<int>(static_cast<unsigned>(day.month())),
          .day = static_cast<int>(static_cast<unsigned>(day.day())),
          .hour = in_day / kSecondsPerHour,
          .minute = in_day % kSecondsPerHour / kSecondsPerMinute,
          .second = in_day % kSecondsPerMinute};
}

DATE ToDate(const DateTime& time) {
  const sys_days day{year_month_day{std::chrono::year{time.year},
                                    std::chrono::month{static_cast<unsigned>(time.month)},
                                    std::chrono::day{static_cast<unsigned>(time.day)}}};
  const auto whole = static_cast<double>((day - kDayZero).count());
  const int second = time.hour * kSecondsPerHour + time.minute * kSecondsPerMinute + time.second;
  const double fraction = static_cast<double>(second) / kSecondsPerDay;
  return whole < 0 ? whole - fraction : whole + fraction;
}

// `value` is a number. (The system's functions take sources that they don't change as pointers to
// what could be changed.)
VARIANT Changed(const VARIANT& value, VARTYPE type) {
  VARIANT changed{};
  Check(::VariantChangeType(&changed, const_cast<VARIANT*>(&value), 0, type));
  return changed;
}

Value FromUnsigned(std::uint32_t number) {
  if (number <= std::numeric_limits<std::int32_t>::max()) return static_cast<std::int32_t>(number);
  return static_cast<double>(number);
}

// Of a value that is not passed by reference.
Value FromPlain(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Null{};
    case VT_BOOL:
      return value.boolVal != VARIANT_FALSE;
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_INT:
      return std::int32_t{Changed(value, VT_I4).lVal};
    case VT_UI4:
    case VT_UINT:
      return FromUnsigned(value.ulVal);
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DECIMAL:
      return Changed(value, VT_R8).dblVal;
    case VT_DATE:
      return ToDateTime(value.date);
    case VT_BSTR:
      return ToText(value.bstrVal);
    case VT_ERROR:
      if (value.scode == DISP_E_PARAMNOTFOUND) return {};
      [[fallthrough]];
    default:
      throw RuntimeError(kTypeMismatch);
  }
}

struct VariantVisitor {
  VARIANT* out;

  void operator()(Empty) const { out->vt = VT_EMPTY; }
  void operator()(Null) const { out->vt = VT_NULL; }
  void operator()(bool flag) const {
    out->vt = VT_BOOL;
    out->boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
  }
  void operator()(std::int32_t number) const {
    out->vt = VT_I4;
    out->lVal = number;
  }
  void operator()(double number) const {
    out->vt = VT_R8;
    out->dblVal = number;
  }
  void operator()(const DateTime& time) const {
    out->vt = VT_DATE;
    out->date = ToDate(time);
  }
  void operator()(const std::string& text) const {
    out->bstrVal = Bstr(text).Release();
    out->vt = VT_BSTR;
  }
};

// Owns the texts of an EXCEPINFO, in which a call by name tells of its failure.
class Exception {
 public:
  Exception() = default;
  ~Exception() {
    ::SysFreeString(info_.bstrSource);
    ::SysFreeString(info_.bstrDescription);
    ::SysFreeString(info_.bstrHelpFile);
  }
  Exception(const Exception&) = delete;
  Exception& operator=(const Exception&) = delete;

  EXCEPINFO* address() { return &info_; }

  [[noreturn]] void Throw() {
    if (info_.pfnDeferredFillIn != nullptr) info_.pfnDeferredFillIn(&info_);
    const HRESULT result =
        info_.scode != 0 ? info_.scode : static_cast<HRESULT>(kNumbered + info_.wCode);
    const RuntimeError error = ErrorOf(result, ToText(info_.bstrSource));
    if (info_.bstrDescription == nullptr) throw error;
    throw RuntimeError(error.number(), error.source(), ToText(info_.bstrDescription));
  }

 private:
  EXCEPINFO info_{};
};

constexpr WORD kCallOrRead = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

HRESULT Invoke(IDispatch& object, std::string_view name, DISPPARAMS& parameters, Variant& result,
               Exception& exception) {
  std::wstring text = ToUtf16(name);
  LPOLESTR names = text.data();
  DISPID id = DISPID_UNKNOWN;
  Check(object.GetIDsOfNames(GUID{}, &names, 1, LOCALE_USER_DEFAULT, &id));
  return object.Invoke(id, GUID{}, LOCALE_USER_DEFAULT, kCallOrRead, &parameters, result.address(),
                       exception.address(), nullptr);
}

// The objects of scripts. Some engines answer names in this way only.
HRESULT Invoke(IDispatchEx& object, std::string_view name, DISPPARAMS& parameters, Variant& result,
               Exception& exception) {
  const Bstr text(name);
  DISPID id = DISPID_UNKNOWN;
  Check(object.GetDispID(text.get(), fdexNameCaseInsensitive, &id));
  return object.InvokeEx(id, LOCALE_USER_DEFAULT, kCallOrRead, &parameters, result.address(),
                         exception.address(), nullptr);
}

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

void SetErrorObject(const RuntimeError& error, const char* default_source, const IID& iid) {
  ComPtr<ICreateErrorInfo> made;
  Check(::CreateErrorInfo(&made));
  const std::string source = error.source().empty() ? default_source : error.source();
  Check(made->SetGUID(iid));
  Check(made->SetSource(Bstr(source).get()));
  Check(made->SetDescription(Bstr(error.what()).get()));
  ComPtr<IErrorInfo> info;
  Check(made.As(&info));
  Check(::SetErrorInfo(0, info.Get()));
}

}  // namespace

RuntimeError ErrorOf(HRESULT result, std::string source) {
  const std::int32_t number = NumberOf(result);
  std::string description(DescriptionOf(number));
  ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, &info) == S_OK) {
    Bstr told_description;
    Bstr told_source;
    info->GetDescription(told_description.address());
    info->GetSource(told_source.address());
    if (::SysStringLen(told_description.get()) > 0) description = ToText(told_description.get());
    if (::SysStringLen(told_source.get()) > 0) source = ToText(told_source.get());
  }
  return {number, std::move(source), description};
}

HRESULT ResultOf(const RuntimeError& error) {
  const std::int32_t number = error.number();
  if (number < 0) return number;
  if (number == 0 || number > static_cast<std::int32_t>(kNumberMask)) return E_FAIL;
  return std::bit_cast<HRESULT>(kNumbered + static_cast<std::uint32_t>(number));
}

void Check(HRESULT result) {
  if (FAILED(result)) throw ErrorOf(result);
}

HRESULT RaiseCurrentError(const char* source, const IID& iid) noexcept {
  try {
    const RuntimeError error = CurrentError();
    SetErrorObject(error, source, iid);
    return ResultOf(error);
  } catch (const std::exception& error) {
    return ResultOf(AsRuntimeError(error));
  }
}

Bstr::Bstr(std::string_view utf8) {
  const std::wstring units = ToUtf16(utf8);
  text_ = ::SysAllocStringLen(units.data(), static_cast<UINT>(units.size()));
  if (text_ == nullptr) throw std::bad_alloc();
}

std::string ToText(BSTR text) { return ToUtf8({text, ::SysStringLen(text)}); }
Variant::Variant(const Value& value) { ToVariant(value, &value_); }

Value FromVariant(const VARIANT& value) {
  if ((value.vt & VT_BYREF) == 0) return FromPlain(value);
  if (value.byref == nullptr) throw RuntimeError(kTypeMismatch);
  Variant plain;
  Check(::VariantCopyInd(plain.address(), const_cast<VARIANT*>(&value)));
  return FromPlain(plain.get());
}

void ToVariant(const Value& value, VARIANT* out) {
  VARIANT made{};
  std::visit(VariantVisitor{&made}, value.storage());
  *out = made;
}

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

Variant LateObject::Call(std::string_view name, std::vector<VARIANT> arguments) const {
  ::SetErrorInfo(0, nullptr);  // An earlier call's error is no answer to this one.
  std::ranges::reverse(arguments);
  DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  Variant result;
  Exception exception;
  Microsoft::WRL::ComPtr<IDispatchEx> script;
  const HRESULT code = SUCCEEDED(object_.As(&script))
                           ? Invoke(*script.Get(), name, parameters, result, exception)
                           : Invoke(*object_.Get(), name, parameters, result, exception);
  if (code == DISP_E_EXCEPTION) exception.Throw();
  Check(code);
  return result;
}

IUnknown* ObjectIn(const VARIANT& value) {
  switch (V_VT(&value)) {
    case VT_EMPTY:
    case VT_NULL:
      return nullptr;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return V_UNKNOWN(&value);
    case VT_BYREF | VT_DISPATCH:
    case VT_BYREF | VT_UNKNOWN:
      return *V_UNKNOWNREF(&value);
    case VT_BYREF | VT_VARIANT:
      return ObjectIn(*V_VARIANTREF(&value));
    default:
      throw RuntimeError(kTypeMismatch);
  }
}

Variant ObjectValue(IUnknown* object) {
  Variant value;
  V_VT(value.address()) = VT_DISPATCH;
  if (object == nullptr || SUCCEEDED(object->QueryInterface(&V_DISPATCH(value.address())))) {
    return value;
  }
  V_VT(value.address()) = VT_UNKNOWN;
  V_UNKNOWN(value.address()) = object;
  object->AddRef();
  return value;
}

VARIANT Passed(const Bstr& text) {
  VARIANT argument{};
  V_VT(&argument) = VT_BSTR;
  V_BSTR(&argument) = text.get();
  return argument;
}

VARIANT Passed(const Variant& value) { return value.get(); }

VARIANT PassedByReference(Variant& variable) {
  VARIANT argument{};
  V_VT(&argument) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&argument) = variable.address();
  return argument;
}

}  // namespace kvdm
