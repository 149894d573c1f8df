// The arguments of a call by name, as the called operation takes them.
#pragma once

#include <vector>

#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {

// Callers by name pass values, or variables by reference, of whatever type they have. Here each
// becomes what its parameter is: a text, an object, an object variable; others stay as they are.
class LateArguments {
 public:
  // Run-time error 13 for an argument that its parameter can't take, 450 for one too many.
  LateArguments(const FUNCDESC& operation, const DISPPARAMS& given);

  // For ITypeInfo::Invoke; valid while this lives.
  [[nodiscard]] DISPPARAMS& Parameters() { return parameters_; }

  // After the call: gives the caller's object variables what they now hold.
  void HandBack();

 private:
  struct Argument {
    Variant value;                            // what was converted, if anything
    Microsoft::WRL::ComPtr<IUnknown> object;  // what an object variable holds
    VARIANT* variable = nullptr;              // the caller's object variable
  };

  VARIANT Converted(const ELEMDESC& parameter, VARIANT& given, Argument& argument);

  std::vector<Argument> arguments_;
  std::vector<VARIANT> passed_;
  DISPPARAMS parameters_;
};

}  // namespace kvdm::com
