// The commands `param` of every kind of item that has named parameters.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "host/commands/item_commands.h"

namespace kvdm {

// The parameters' names; none when the component answers with no list.
template <class Ref>
[[nodiscard]] std::vector<std::string> ParameterNames(const Ref& item) {
  std::vector<std::string> names;
  const auto list = item->ParametersList();
  if (!list) return names;
  for (const Value& name : *list) names.push_back(name.IsNull() ? "" : ToText(name));
  return names;
}

template <class Kind>
class ParamList : public ItemCommand<Kind, ReadingCommand> {
 public:
  using ItemCommand<Kind, ReadingCommand>::ItemCommand;

 private:
  void RunOn(const typename Kind::Ref& item, Session&, Output& out) override {
    std::vector<Record> items;
    for (const std::string& key : ParameterNames(item)) {
      items.push_back({{"key", key}, {"value", item->GetParameter(key)}});
    }
    out.Items(std::move(items), fmt::format("The {} has no parameters.", Kind::kWord));
  }
};

template <class Kind>
class ParamGet : public ItemCommand<Kind, ReadingCommand> {
 public:
  explicit ParamGet(Arguments arguments) : ItemCommand<Kind, ReadingCommand>(arguments) {
    arguments.Required("KEY", key_, "The parameter");
  }

 private:
  void RunOn(const typename Kind::Ref& item, Session&, Output& out) override {
    const auto names = ParameterNames(item);
    if (std::find(names.begin(), names.end(), key_) == names.end()) {
      throw Failure(ExitCode::kNotFound,
                    fmt::format("The {} {} has no parameter {}.", Kind::kWord, item->Name(), key_));
    }
    const std::string value = item->GetParameter(key_);
    out.Text({{"name", item->Name()}, {"key", key_}, {"value", value}}, value);
  }

  std::string key_;
};

template <class Kind>
class ParamSet : public ItemCommand<Kind, ChangingCommand> {
 public:
  explicit ParamSet(Arguments arguments) : ItemCommand<Kind, ChangingCommand>(arguments) {
    arguments.Required("KEY", key_, "The parameter", RequireKey);
    arguments.Required("VALUE", value_, "Its value", RequireStorable);
  }
  [[nodiscard]] bool KeepsNames() const override { return true; }

 private:
  void RunOn(const typename Kind::Ref& item, Session&, Output& out) override {
    if (!item->SetParameter(key_, value_)) {
      throw Failure(ExitCode::kRefused, fmt::format("The parameter {} could not be set.", key_));
    }
    out.Done({{"name", item->Name()}, {"key", key_}, {"value", value_}},
             fmt::format("Set {} of the {} {}.", key_, Kind::kWord, item->Name()));
  }

  std::string key_;
  std::string value_;
};

template <class Kind>
class ParamClear : public ItemCommand<Kind, ChangingCommand> {
 public:
  using ItemCommand<Kind, ChangingCommand>::ItemCommand;

 private:
  void RunOn(const typename Kind::Ref& item, Session&, Output& out) override {
    const auto count = static_cast<std::int64_t>(ParameterNames(item).size());
    if (!item->ClearParametersList()) {
      throw Failure(ExitCode::kRefused, "The parameters could not be removed.");
    }
    out.Done({{"name", item->Name()}, {"removed", count}},
             fmt::format("Removed {} parameters of the {} {}.", count, Kind::kWord, item->Name()));
  }
};

template <class Kind>
void AddParamCommands(const CommandGroup& group) {
  const CommandGroup param =
      group.Group("param", fmt::format("Named parameters of one {}", Kind::kWord));
  param.Add<ParamList<Kind>>("list", "List the parameters", ExampleOf<Kind>("param list"));
  param.Add<ParamGet<Kind>>("get", "Show one parameter", ExampleOf<Kind>("param get", " radius"));
  param.Add<ParamSet<Kind>>("set", "Set a parameter", ExampleOf<Kind>("param set", " radius 5"));
  param.Add<ParamClear<Kind>>("clear", "Remove all parameters", ExampleOf<Kind>("param clear"));
}

}  // namespace kvdm
