#include "platform/windows/automation.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <type_traits>

#include <kvdm/platform/error.h>

#include "platform/windows/hresult.h"
#include "platform/windows/utf16.h"

namespace kvdm {
namespace {

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

}  // namespace

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

}  // namespace kvdm
