// The command `set` of every kind of item: its settable fields, each an option.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/arguments.h"
#include "host/items.h"

namespace kvdm {

// A field that people can set. Errors of `set` end the command.
template <class Item>
struct SettableField {
  const char* option;  // "--name-field"
  const char* help;
  void (*set)(const std::shared_ptr<Item>& item, const std::string& text);
};

// A setter of an item as `SettableField::set`.
//
//   {"--id-field", "...", &SetText<&IKVStoreLayer::SetIDField>}
template <auto Setter, class Item>
void SetText(const std::shared_ptr<Item>& item, const std::string& text) {
  (item.get()->*Setter)(text);
}

// Gives an item another identifier, as a layer editor does. Failure kUsage for what is none.
template <class Item>
void SetIdentifier(const std::shared_ptr<Item>& item, const std::string& guid) {
  RequireGuid(guid);
  Required(Query<IKVLayerEdit>(item)).SetGUID(guid);
}

// Gives an item another layer file, as a layer editor does.
template <class Item>
void SetEditedLayerFile(const std::shared_ptr<Item>& item, const std::string& path) {
  Required(Query<IKVLayerEdit>(item)).SetLayerFile(path);
}

// A kind has `kWord`, `Find` and its `SettableFields()`.
template <class Kind>
class ItemSet : public ChangingCommand {
 public:
  explicit ItemSet(Arguments arguments) : fields_(Kind::SettableFields()), values_(fields_.size()) {
    arguments.Required("NAME", name_, SelectorHelp(Kind::kWord));
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      arguments.Optional(fields_[i].option, values_[i], fields_[i].help, RequireStorable);
    }
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto item = Kind::Find(session, name_);
    Record record = {{"name", item->Name()}};
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      if (!values_[i]) continue;
      fields_[i].set(item, *values_[i]);
      record.emplace_back(FieldName(fields_[i].option), *values_[i]);
    }
    if (record.size() == 1) {
      throw Failure(ExitCode::kUsage, "Nothing to set was given. '--help' shows what can be set.");
    }
    out.Done(std::move(record), fmt::format("Changed the {} {}.", Kind::kWord, item->Name()));
  }

  // "--name-field" -> "name_field"
  static std::string FieldName(std::string_view option) {
    std::string name(option.substr(2));
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
  }

  std::string name_;
  std::vector<SettableField<typename Kind::Item>> fields_;
  std::vector<std::optional<std::string>> values_;
};

}  // namespace kvdm
