#include "com/object_type.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>

#include "com/module.h"
#include "platform/windows/automation.h"
#include "platform/windows/text.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

bool SameLetters(std::wstring_view a, std::wstring_view b) {
  return ::CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                                static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

TYPEATTR AttributesOf(ITypeInfo& type) {
  TYPEATTR* attributes = nullptr;
  Check(type.GetTypeAttr(&attributes));
  const TYPEATTR copy = *attributes;
  type.ReleaseTypeAttr(attributes);
  return copy;
}

// Null when the library has no type of that name.
ComPtr<ITypeInfo> TypeNamed(ITypeLib& library, std::wstring name) {
  ComPtr<ITypeInfo> type;
  MEMBERID member = MEMBERID_NIL;
  USHORT count = 1;
  const bool found = SUCCEEDED(library.FindName(name.data(), 0, &type, &member, &count));
  return found && member == MEMBERID_NIL ? type : nullptr;
}

// The interface's description with its slot for each operation, also for one that can be called by
// name on its own.
ComPtr<ITypeInfo> SlotsOf(ITypeLib& library, const IID& iid) {
  ComPtr<ITypeInfo> type;
  Check(library.GetTypeInfoOfGuid(iid, &type));
  constexpr UINT kInterfaceOfDual = static_cast<UINT>(-1);
  HREFTYPE reference = 0;
  if (FAILED(type->GetRefTypeOfImplType(kInterfaceOfDual, &reference))) return type;
  ComPtr<ITypeInfo> of_interface;
  Check(type->GetRefTypeInfo(reference, &of_interface));
  return of_interface;
}

SlotParameter ParameterOf(const ELEMDESC& element) {
  const bool is_pointer = element.tdesc.vt == VT_PTR;
  const VARTYPE type = is_pointer ? element.tdesc.lptdesc->vt : element.tdesc.vt;
  // A pointer to a pointer is one to an interface.
  return {type == VT_PTR ? VARTYPE{VT_UNKNOWN} : type, is_pointer, element.paramdesc.wParamFlags};
}

struct ReleaseOperation {
  ITypeInfo* type;
  void operator()(FUNCDESC* operation) const { type->ReleaseFuncDesc(operation); }
};

Operation OperationAt(ITypeInfo& type, UINT index, std::size_t interface_index) {
  FUNCDESC* found = nullptr;
  Check(type.GetFuncDesc(index, &found));
  const std::unique_ptr<FUNCDESC, ReleaseOperation> operation(found, {&type});
  Bstr name;
  Check(type.GetDocumentation(operation->memid, name.address(), nullptr, nullptr, nullptr));
  Operation described{{name.get(), ::SysStringLen(name.get())},
                      DISPID_UNKNOWN,
                      operation->invkind,
                      interface_index,
                      static_cast<ULONG_PTR>(operation->oVft),
                      {}};
  for (SHORT i = 0; i < operation->cParams; ++i) {
    described.parameters.push_back(ParameterOf(operation->lprgelemdescParam[i]));
  }
  return described;
}

void AddOperations(ITypeInfo& type, std::size_t interface_index, ObjectType& to) {
  for (UINT i = 0; i < AttributesOf(type).cFuncs; ++i) {
    Operation operation = OperationAt(type, i, interface_index);
    LPOLESTR name = operation.name.data();
    Check(to.view->GetIDsOfNames(&name, 1, &operation.id));
    to.operations.push_back(std::move(operation));
  }
}

ObjectType Read(const std::string& identity, const std::vector<IID>& interfaces) {
  ComPtr<ITypeLib> library;
  Check(::LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &library));
  const std::wstring name = ToUtf16(identity.substr(identity.find('.') + 1));
  ObjectType type;
  type.class_info = TypeNamed(*library.Get(), name);
  type.view = TypeNamed(*library.Get(), L"_" + name);
  // An interface that can be called by name describes its objects itself.
  if (!type.view) Check(library->GetTypeInfoOfGuid(interfaces.front(), &type.view));
  type.view_iid = AttributesOf(*type.view.Get()).guid;
  for (std::size_t i = 0; i < interfaces.size(); ++i) {
    AddOperations(*SlotsOf(*library.Get(), interfaces[i]).Get(), i, type);
  }
  return type;
}

}  // namespace

DISPID ObjectType::IdOf(std::wstring_view name) const {
  const auto found = std::ranges::find_if(
      operations, [&](const Operation& operation) { return SameLetters(operation.name, name); });
  return found == operations.end() ? DISPID_UNKNOWN : found->id;
}

const ObjectType& TypeOf(const std::string& identity, const std::vector<IID>& interfaces) {
  // Never destroyed: at the program's end the system's part of it may be gone already.
  static std::mutex& guard = *new std::mutex;
  static auto& types = *new std::map<std::string, ObjectType>;
  const std::lock_guard lock(guard);
  const auto known = types.find(identity);
  return known != types.end() ? known->second
                              : types.emplace(identity, Read(identity, interfaces)).first->second;
}

}  // namespace kvdm::com
