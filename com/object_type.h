// Type information of the component's objects, read from the type library inside the DLL.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/com_headers.h"

namespace kvdm::com {

// A parameter as its slot takes it: a value of this type, or a pointer to one.
struct SlotParameter {
  VARTYPE type;
  bool is_pointer;
  USHORT flags;  // PARAMFLAG_FIN, PARAMFLAG_FOUT and PARAMFLAG_FRETVAL
};

// An operation of one of an object's interfaces.
struct Operation {
  std::wstring name;
  DISPID id;
  INVOKEKIND kind;
  std::size_t interface_index;
  ULONG_PTR slot;  // as an offset in the interface's table
  std::vector<SlotParameter> parameters;
};

// What all objects of a kind have in common.
struct ObjectType {
  // The dispatch interface that describes them to callers by name.
  Microsoft::WRL::ComPtr<ITypeInfo> view;
  IID view_iid;
  // Null when they have no class.
  Microsoft::WRL::ComPtr<ITypeInfo> class_info;
  // An operation has the identifier that its name has in `view`: a property that is read through
  // one interface and set through another has one.
  std::vector<Operation> operations;

  // The identifier of a name, without regard to letter case; DISPID_UNKNOWN for one that no
  // operation has.
  [[nodiscard]] DISPID IdOf(std::wstring_view name) const;
};

// The type of the objects that errors call `identity`, which have these interfaces, in order. The
// library is read once for each identity.
[[nodiscard]] const ObjectType& TypeOf(const std::string& identity,
                                       const std::vector<IID>& interfaces);

}  // namespace kvdm::com
