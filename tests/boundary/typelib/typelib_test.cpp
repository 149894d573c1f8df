// Reads the compiled type library as importers do, and compares it with the frozen boundary, letter
// for letter: names, identities, slots, kinds, types and directions. Everything has a help text.
//
//   boundary_typelib_test kvdm.tlb frozen.txt
#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <string>

#include "platform/windows/automation.h"
#include "platform/windows/text.h"

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;
using Lines = std::set<std::string>;

std::string GuidText(const GUID& guid) {
  std::wstring text(39, L'\0');
  ::StringFromGUID2(guid, text.data(), 39);
  return ToUtf8(text.substr(1, 36));
}

TYPEATTR AttributesOf(ITypeInfo& type) {
  TYPEATTR* attributes = nullptr;
  Check(type.GetTypeAttr(&attributes));
  const TYPEATTR copy = *attributes;
  type.ReleaseTypeAttr(attributes);
  return copy;
}

struct Documented {
  std::string name;
  bool has_help;
};

Documented Documentation(ITypeInfo& type, MEMBERID member = MEMBERID_NIL) {
  Bstr name;
  Bstr help;
  Check(type.GetDocumentation(member, name.address(), help.address(), nullptr, nullptr));
  return {ToText(name.get()), ::SysStringLen(help.get()) > 0};
}

ComPtr<ITypeInfo> Referred(ITypeInfo& type, HREFTYPE reference) {
  ComPtr<ITypeInfo> referred;
  Check(type.GetRefTypeInfo(reference, &referred));
  return referred;
}

ComPtr<ITypeInfo> Implemented(ITypeInfo& type, UINT position) {
  HREFTYPE reference = 0;
  Check(type.GetRefTypeOfImplType(position, &reference));
  return Referred(type, reference);
}

// A type as the description writes it.
std::string TypeText(ITypeInfo& type, const TYPEDESC& described) {
  switch (described.vt) {
    case VT_PTR:
      return TypeText(type, *described.lptdesc) + "*";
    case VT_USERDEFINED:
      return Documentation(*Referred(type, described.hreftype).Get()).name;
    case VT_BSTR:
      return "BSTR";
    case VT_VARIANT:
      return "VARIANT";
    case VT_BOOL:
      return "VARIANT_BOOL";
    case VT_I4:
      return "long";
    case VT_UNKNOWN:
      return "IUnknown*";
    default:
      return "type " + std::to_string(described.vt);
  }
}

std::string DirectionText(USHORT flags) {
  if ((flags & PARAMFLAG_FRETVAL) != 0) return "[out, retval] ";
  const bool in = (flags & PARAMFLAG_FIN) != 0;
  if ((flags & PARAMFLAG_FOUT) == 0) return in ? "[in] " : "[] ";
  return in ? "[in, out] " : "[out] ";
}

// "get Name([out, retval] BSTR* result)"
std::string OperationText(ITypeInfo& type, const FUNCDESC& operation) {
  constexpr UINT kMost = 8;
  BSTR names[kMost] = {};
  UINT count = 0;
  Check(type.GetNames(operation.memid, names, kMost, &count));
  std::string text = operation.invkind == INVOKE_PROPERTYGET   ? "get "
                     : operation.invkind == INVOKE_PROPERTYPUT ? "let "
                                                               : "";
  text += ToText(names[0]) + "(";
  for (SHORT i = 0; i < operation.cParams; ++i) {
    const ELEMDESC& parameter = operation.lprgelemdescParam[i];
    text += (i == 0 ? "" : ", ") + DirectionText(parameter.paramdesc.wParamFlags) +
            TypeText(type, parameter.tdesc);
    // The value that a property is set to has no name.
    const UINT name = static_cast<UINT>(i) + 1;
    if (name < count && operation.invkind != INVOKE_PROPERTYPUT) text += " " + ToText(names[name]);
  }
  for (UINT i = 0; i < count; ++i) ::SysFreeString(names[i]);
  return text + ")";
}

void AddInterface(ITypeInfo& type, Lines& lines) {
  const auto [name, has_help] = Documentation(type);
  const TYPEATTR attributes = AttributesOf(type);
  lines.insert("interface " + name + " " + GuidText(attributes.guid));
  if (!has_help) lines.insert("no help: " + name);
  // Slots are counted from the interface's own first one.
  const UINT inherited = (attributes.cbSizeVft / sizeof(void*)) - attributes.cFuncs;
  for (UINT i = 0; i < attributes.cFuncs; ++i) {
    FUNCDESC* operation = nullptr;
    Check(type.GetFuncDesc(i, &operation));
    const UINT slot = operation->oVft / sizeof(void*) - inherited + 1;
    const std::string place = name + " " + std::to_string(slot) + " ";
    if (!Documentation(type, operation->memid).has_help) lines.insert("no help: " + place);
    lines.insert(place + OperationText(type, *operation));
    type.ReleaseFuncDesc(operation);
  }
}

void AddType(ITypeInfo& type, Lines& lines) {
  constexpr UINT kInterfaceOfDual = static_cast<UINT>(-1);
  const TYPEATTR attributes = AttributesOf(type);
  const auto [name, has_help] = Documentation(type);
  const std::string identity = GuidText(attributes.guid);
  if (attributes.typekind == TKIND_COCLASS) {
    std::string line = "class " + name + " " + identity;
    for (UINT i = 0; i < attributes.cImplTypes; ++i) {
      line += " " + Documentation(*Implemented(type, i).Get()).name;
    }
    lines.insert(line);
  } else if (attributes.typekind == TKIND_INTERFACE) {
    AddInterface(type, lines);
  } else if ((attributes.wTypeFlags & TYPEFLAG_FDUAL) != 0) {
    AddInterface(*Implemented(type, kInterfaceOfDual).Get(), lines);
  } else {
    lines.insert("view " + name + " " + identity);
  }
  if (!has_help) lines.insert("no help: " + name);
}

Lines LibraryLines(const std::string& file) {
  ComPtr<ITypeLib> library;
  Check(::LoadTypeLibEx(ToUtf16(file).c_str(), REGKIND_NONE, &library));
  TLIBATTR* attributes = nullptr;
  Check(library->GetLibAttr(&attributes));
  Lines lines{"library " + GuidText(attributes->guid)};
  library->ReleaseTLibAttr(attributes);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> type;
    Check(library->GetTypeInfo(i, &type));
    AddType(*type.Get(), lines);
  }
  return lines;
}

// The line of a class that has got another interface follows the one that it had before.
Lines FileLines(const std::string& file) {
  std::ifstream source(file);
  Lines lines;
  for (std::string line; std::getline(source, line);) lines.insert(line);
  std::erase_if(lines, [&](const std::string& line) {
    const auto next = lines.upper_bound(line);
    return line.starts_with("class ") && next != lines.end() && next->starts_with(line + " ");
  });
  return lines;
}

// Shows what only `one` has, and answers how much that is.
std::size_t ShowOnlyIn(const char* title, const Lines& one, const Lines& other) {
  Lines only;
  std::ranges::set_difference(one, other, std::inserter(only, only.end()));
  for (const std::string& line : only) std::cout << title << line << "\n";
  return only.size();
}

}  // namespace
}  // namespace kvdm

int main(int count, char** arguments) {
  if (count != 3) return EXIT_FAILURE;
  const auto library = kvdm::LibraryLines(arguments[1]);
  const auto frozen = kvdm::FileLines(arguments[2]);
  const auto differences = kvdm::ShowOnlyIn("only in the library: ", library, frozen) +
                           kvdm::ShowOnlyIn("not in the library: ", frozen, library);
  std::cout << library.size() << " lines, " << differences << " differences\n";
  return differences == 0 && !frozen.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
