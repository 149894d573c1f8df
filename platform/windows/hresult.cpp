#include "platform/windows/hresult.h"

#include <oleauto.h>
#include <wrl/client.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "platform/windows/automation.h"

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
  return static_cast<HRESULT>(kNumbered + static_cast<std::uint32_t>(number));
}

void Check(HRESULT result) {
  if (FAILED(result)) throw ErrorOf(result);
}

}  // namespace kvdm
