#include "platform/xml/query.h"

#include <kvdm/platform/error.h>

#include "platform/xml/xml_text.h"

namespace kvdm::xml {
namespace {

// Takes an expression apart from its start; whatever is not there as it should be is an error.
class QueryReader {
 public:
  explicit QueryReader(std::string_view expression) : rest_(expression) {}

  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

  bool TryTake(std::string_view token) {
    if (!rest_.starts_with(token)) return false;
    rest_.remove_prefix(token.size());
    return true;
  }

  void Take(std::string_view token) {
    if (!TryTake(token)) throw RuntimeError(kAutomationFailure);
  }

  std::string TakeName() {
    const std::string_view name = TakeUntil("/[ =");
    if (!IsName(name)) throw RuntimeError(kAutomationFailure);
    return std::string(name);
  }

  std::string_view TakeUntil(std::string_view ends) {
    const std::string_view taken = rest_.substr(0, rest_.find_first_of(ends));
    rest_.remove_prefix(taken.size());
    return taken;
  }

 private:
  std::string_view rest_;
};

}  // namespace

Query ParseQuery(std::string_view expression) {
  const std::string clean = Sanitized(expression);
  QueryReader reader(clean);
  Query query;
  reader.TryTake("./");
  do {
    query.tags.push_back(reader.TakeName());
  } while (reader.TryTake("/"));
  if (reader.AtEnd()) return query;

  reader.Take("[@");
  query.attribute = reader.TakeName();
  reader.TryTake(" ");
  reader.Take("=");
  reader.TryTake(" ");
  reader.Take("\"");
  query.key = reader.TakeUntil("\"");
  reader.Take("\"]");
  if (!reader.AtEnd()) throw RuntimeError(kAutomationFailure);
  return query;
}

}  // namespace kvdm::xml
