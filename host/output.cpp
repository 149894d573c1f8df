#include "host/output.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <iostream>

#include <kvdm/platform/error.h>

#include "host/program_fields.h"
#include "host/text.h"
#include "safety/json.h"

namespace kvdm {
namespace {

// The answer of a command such as "kvdm area list", of the version that its fields have.
Json AnswerOf(std::string_view command, bool ok) {
  std::string schema(command);
  std::ranges::replace(schema, ' ', '.');
  return {{"schema", schema + "/1"}, {"ok", ok}};
}

// Bytes that are not UTF-8 are shown as U+FFFD.
void PrintJson(const Json& object, bool in_a_line) {
  std::cout << PrintableJson(
                   object.dump(in_a_line ? -1 : 2, ' ', false, Json::error_handler_t::replace))
            << '\n';
}

std::string ToText(const Field& field) {
  if (const auto* text = std::get_if<std::string>(&field)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&field)) return fmt::format("{}", *number);
  if (const auto* answer = std::get_if<bool>(&field)) return *answer ? "yes" : "no";
  return "-";
}

// "layer_file" -> "LAYER FILE"
std::string Heading(std::string name) {
  for (char& letter : name) {
    letter = letter == '_' ? ' ' : static_cast<char>(std::toupper(letter));
  }
  return name;
}

// "layer_file" -> "Layer file:"
std::string Label(std::string name) {
  if (name == "guid") return "GUID:";
  if (name == "id_field") return "ID field:";
  if (name == "dll") return "DLL:";
  std::replace(name.begin(), name.end(), '_', ' ');
  name.front() = static_cast<char>(std::toupper(name.front()));
  return name + ":";
}

// The lines of `text` with all but the first moved right by `columns`.
std::string Indented(std::string_view text, std::size_t columns) {
  std::string result;
  for (const char character : text) {
    result += character;
    if (character == '\n') result.append(columns, ' ');
  }
  return result;
}

std::string FieldLines(const Record& fields) {
  std::size_t width = 0;
  for (const auto& [name, field] : fields) width = std::max(width, Label(name).size() + 2);
  std::string lines;
  for (const auto& [name, field] : fields) {
    const std::string value = Indented(PrintableLines(ToText(field)), width);
    lines += (value.empty() ? Label(name) : Padded(Label(name), width) + value) + "\n";
  }
  return lines;
}

std::string TableLine(const std::vector<std::string>& cells,
                      const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) line += Padded(cells[i], widths[i] + 2);
  return line.substr(0, line.find_last_not_of(' ') + 1);
}

// What an error is to people: the message that it kept from being shown, if there is one.
std::string SentenceOf(const RuntimeError& error) {
  const std::string& unsent = error.unsent_message();
  const std::string text = unsent.empty() ? error.what() : unsent;
  return fmt::format("{} (run-time error {})", text, error.number());
}

}  // namespace

void Output::Items(std::vector<Record> items, std::string_view none) {
  list_name_ = "items";
  list_ = std::move(items);
  if (!list_.empty()) {
    text_ = Table(list_);
  } else if (!options_.json) {
    Tell(none);
  }
}

void Output::Fields(Record fields) {
  fields_ = std::move(fields);
  text_ = FieldLines(fields_);
}

void Output::Section(std::string_view name, std::vector<Record> rows) {
  list_name_ = name;
  list_ = std::move(rows);
  if (!list_.empty()) text_ += "\n" + Table(list_);
}

void Output::Done(Record fields, std::string_view sentence) {
  fields_ = std::move(fields);
  text_ = options_.quiet ? "" : Printable(sentence) + "\n";
}

void Output::Text(Record fields, std::string_view text) {
  fields_ = std::move(fields);
  text_ = PrintableLines(text);
  if (!text_.empty() && text_.back() != '\n') text_ += '\n';
}

void Output::Lines(Record fields, std::string_view name, std::vector<Record> rows,
                   std::string_view lines) {
  Text(std::move(fields), lines);
  list_name_ = name;
  list_ = std::move(rows);
}

void Output::Message(std::string_view text) {
  if (quiet_) {
    Note(text);
    return;
  }
  messages_.emplace_back(text);
  Tell(fmt::format("kvdm: {}", text));
}

void Output::Note(std::string_view line) {
  if (noted_.empty()) noted_ = line;
  if (options_.debug) Tell(fmt::format("kvdm: log: {}", line));
}

void Output::Tell(std::string_view text) { std::cerr << PrintableLines(text) << '\n'; }

std::string Output::Table(const std::vector<Record>& rows) const {
  std::vector<std::vector<std::string>> lines(1);
  for (const auto& [name, field] : rows.front()) lines.front().push_back(Heading(name));
  for (const Record& row : rows) {
    auto& cells = lines.emplace_back();
    for (const auto& [name, field] : row) cells.push_back(Printable(ToText(field)));
  }
  std::vector<std::size_t> widths(lines.front().size());
  for (const auto& cells : lines) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth(cells[i]));
    }
  }
  std::string table = TableLine(lines.front(), widths);
  if (options_.bold) table = "\033[1m" + table + "\033[0m";
  for (std::size_t i = 1; i < lines.size(); ++i) table += "\n" + TableLine(lines[i], widths);
  return table + "\n";
}

void Output::Print(std::string_view command) const {
  if (options_.json) {
    Json object = AnswerOf(command, true);
    const auto add = [&](const Record& fields, Json& to) {
      for (const auto& [name, field] : drives_ ? ForPrograms(fields, *drives_) : fields) {
        to[name] = ToJson(field);
      }
    };
    add(fields_, object);
    if (!list_name_.empty()) object[list_name_] = Json::array();
    for (const Record& row : list_) add(row, object[list_name_].emplace_back(Json::object()));
    if (!messages_.empty()) object["messages"] = messages_;
    PrintJson(object, options_.lines);
  } else {
    std::cout << text_;
  }
  if (!std::cout.flush()) throw Failure(ExitCode::kRefused, "The result can't be printed.");
}

int Output::PrintFailure(std::string_view command, const Failure& failure) const {
  return PrintReport(command, {failure.code(), failure.what(), {}}, failure.candidates());
}

int Output::PrintError(std::string_view command, const std::exception& error) const {
  const auto chain = ErrorChain(error);
  const RuntimeError& first = chain.front();
  const int status = PrintReport(
      command, {ExitCode::kRuntimeError, SentenceOf(first), std::int64_t{first.number()}}, {});
  for (std::size_t i = 1; options_.debug && i < chain.size(); ++i) {
    Tell(fmt::format("  caused by {}", SentenceOf(chain[i])));
  }
  return status;
}

int Output::PrintReport(std::string_view command, const Report& report,
                        const std::vector<Record>& candidates) const {
  Tell(fmt::format("{}: {}", command, report.sentence));
  if (!candidates.empty()) std::cerr << Table(candidates);
  if (options_.json) {
    Json object = AnswerOf(command, false);
    object["error"] = {{"code", static_cast<int>(report.code)},
                       {"message", report.sentence},
                       {"number", ToJson(report.number)}};
    if (!candidates.empty()) object["candidates"] = ToJson(candidates);
    object["messages"] = messages_;
    PrintJson(object, options_.lines);
  }
  return static_cast<int>(report.code);
}

}  // namespace kvdm
