// kvdm analysis properties: an analysis's name, comments and parameters as a JSON file.
#include <fmt/format.h>

#include "host/checks.h"
#include "host/commands/groups.h"
#include "host/commands/item_commands.h"
#include "host/kinds.h"
#include "host/os.h"
#include "platform/portable/value_set.h"
#include "platform/xml/limits.h"
#include "safety/json.h"

namespace kvdm {
namespace {

// A set of the analysis's values.
std::shared_ptr<NamedValueSet> Exported(IKVAnalysis& analysis) {
  std::shared_ptr<NamedValueSet> set = std::make_shared<ValueSet>();
  if (analysis.WriteToPropertySet(set)) return set;
  throw Failure(ExitCode::kRefused, "The component could not give the properties.");
}

Json ToJson(NamedValueSet& set) {
  Json object = Json::object();
  const auto listing = set.ListAll();
  for (std::size_t i = 0; i < listing.names.size(); ++i) {
    const Value& value = listing.values[i];
    object[listing.names[i]] = value.IsNull() ? Json() : Json(ToText(value));
  }
  return object;
}

[[noreturn]] void CannotTakeOver(const std::string& file, std::string_view sentence) {
  throw Failure(ExitCode::kUnreadable, fmt::format("{} can't be taken over. {}", file, sentence));
}

Json ReadJson(const std::string& file) {
  try {
    return ParseJson(os::ReadBytes(os::ToPath(file), xml::kMaxDocumentBytes));
  } catch (const Failure& failure) {
    CannotTakeOver(file, failure.what());
  } catch (const std::system_error& error) {
    const bool missing = error.code() == std::errc::no_such_file_or_directory;
    if (!missing) CannotTakeOver(file, fmt::format("The system says: {}.", error.code().message()));
    throw Failure(ExitCode::kNotFound, fmt::format("There is no file {}.", file));
  }
}

std::shared_ptr<ValueSet> ToSet(const Json& object, const std::string& file) {
  if (!object.is_object()) CannotTakeOver(file, "It is not a JSON object of names and texts.");
  auto set = std::make_shared<ValueSet>();
  for (const auto& [name, value] : object.items()) {
    const std::string what = fmt::format("The value of \"{}\"", name);
    if (!value.is_string()) CannotTakeOver(file, what + " is no text.");
    const auto text = value.get<std::string>();
    try {
      (name == "Name" ? RequireKey : RequireStorable)(what, text);
      RequireKey(fmt::format("The name \"{}\"", name), name);
    } catch (const Failure& failure) {
      CannotTakeOver(file, failure.what());
    }
    set->PutValue(name, text);
  }
  return set;
}

class PropertiesExport : public ItemCommand<AnalysisKind, ReadingCommand> {
 public:
  explicit PropertiesExport(Arguments arguments) : ItemCommand(arguments) {
    arguments.Required("FILE", file_, "The JSON file to make");
  }

 private:
  void RunOn(const AnalysisKind::Ref& analysis, Session&, Output& out) override {
    const Json object = ToJson(*Exported(*analysis));
    const auto path = os::ToPath(file_);
    if (os::Exists(path)) {
      throw Failure(ExitCode::kConflict,
                    fmt::format("There is a file {} already. It stays as it is.", file_));
    }
    os::Replace(path, object.dump(2) + "\n");
    out.Done({{"name", analysis->Name()},
              {"file", file_},
              {"written", static_cast<std::int64_t>(object.size())}},
             fmt::format("Wrote {} properties of the analysis {} to {}.", object.size(),
                         analysis->Name(), file_));
  }

  std::string file_;
};

class PropertiesImport : public ItemCommand<AnalysisKind, ChangingCommand> {
 public:
  explicit PropertiesImport(Arguments arguments) : ItemCommand(arguments) {
    arguments.Required("FILE", file_, "A JSON object of names and texts");
  }

 private:
  void RunOn(const AnalysisKind::Ref& analysis, Session& session, Output& out) override {
    const Json wanted = ReadJson(file_);
    const auto set = ToSet(wanted, file_);
    if (wanted.contains("Name")) {
      RequireFreeName<AnalysisKind>(AnalysisKind::All(session), wanted["Name"].get<std::string>(),
                                    analysis->AnalysisGUID());
    }
    if (!analysis->ReadFromPropertySet(set)) {
      throw Failure(ExitCode::kRefused, "The component could not take over the properties.");
    }
    RequireTaken(wanted, ToJson(*Exported(*analysis)));
    out.Done({{"name", analysis->Name()},
              {"file", file_},
              {"taken", static_cast<std::int64_t>(wanted.size())}},
             fmt::format("Took over {} properties of the analysis {} from {}.", wanted.size(),
                         analysis->Name(), file_));
  }

  // The component quietly leaves out what it can't take.
  static void RequireTaken(const Json& wanted, const Json& taken) {
    for (const auto& [name, value] : wanted.items()) {
      const bool same = taken.contains(name) && WithPlainLineEnds(taken[name].get<std::string>()) ==
                                                    WithPlainLineEnds(value.get<std::string>());
      if (!same) {
        throw Failure(ExitCode::kRefused,
                      fmt::format("The component did not take over {}. Nothing was saved.", name));
      }
    }
  }

  std::string file_;
};

}  // namespace

void AddAnalysisProperties(const CommandGroup& analysis) {
  const CommandGroup properties =
      analysis.Group("properties", "Name, comments and parameters as a JSON file");
  properties.Add<PropertiesExport>("export", "Write name, comments and parameters to a new file",
                                   "kvdm analysis properties export Sales sales.json");
  properties.Add<PropertiesImport>("import", "Take over what a file says; the rest stays",
                                   "kvdm analysis properties import Sales sales.json");
}

}  // namespace kvdm
