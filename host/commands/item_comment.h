// The command `comment` of every kind of item that has comments.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/arguments.h"
#include "host/items.h"

namespace kvdm {

// Shows the comments; they are lines, ended by LF.
template <auto Source>
class ItemComment : public ProjectCommand {
 public:
  explicit ItemComment(Arguments arguments) {
    arguments.Required("NAME", name_, "The item, by name or {GUID}");
    arguments.Optional("TEXT", text_, "New comments, or - to read them from standard input",
                       RequireStorable);
    arguments.Flag("--clear", clear_, "Remove the comments");
  }

 private:
  [[nodiscard]] bool Changes() const override { return clear_ || text_; }

  void Run(Session& session, Output& out) override {
    if (clear_ && text_) throw Failure(ExitCode::kUsage, "Give either a text or --clear.");
    const auto source = Source(session);
    const auto item = FindItem(source, name_);
    if (clear_) item->SetComments("");
    const std::string wanted = text_ ? TextArgument(*text_) : "";
    if (text_) item->SetComments(wanted);
    const std::string comments = WithPlainLineEnds(item->Comments());
    if (text_ && comments != wanted) {
      throw Failure(ExitCode::kRefused,
                    "The component did not take over the comments: they are too "
                    "long. Nothing was changed.");
    }
    out.Text({{"name", item->Name()}, {"guid", source.guid_of(*item)}, {"comments", comments}},
             comments);
  }

  std::string name_;
  std::optional<std::string> text_;
  bool clear_ = false;
};

template <auto Source>
void AddCommentCommand(const CommandGroup& group, std::string_view examples) {
  group.Add<ItemComment<Source>>("comment", "Show or set the comments", examples);
}

}  // namespace kvdm
