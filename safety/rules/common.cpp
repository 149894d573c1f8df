#include <fmt/format.h>

#include "safety/rules/rules.h"

namespace kvdm {

bool IsYounger(const Survey& survey, std::size_t a, std::size_t b) {
  const auto time = [&](std::size_t index) {
    return SecondsOf(survey.Items()[index].element->Attribute("CREATIONTIME"));
  };
  const auto of_a = time(a);
  const auto of_b = time(b);
  return of_a && of_b && of_a != of_b ? *of_a > *of_b : a > b;
}

std::string NewIdentifier(const Platform& platform) {
  const auto identifier = platform.gis_core->CreateIdentifier();
  identifier->Generate();
  return identifier->GetValue();
}

void SetAttributeOf(const SurveyItem& item, std::string_view attribute, const std::string& value,
                    Repair& repair) {
  const std::string before = item.element->Attribute(attribute);
  repair.steps.push_back(fmt::format("{} of the {}: {} becomes {}", attribute, item.Label(),
                                     before.empty() ? "nothing" : before,
                                     value.empty() ? "nothing" : value));
  item.element->SetAttribute(attribute, value);
}

}  // namespace kvdm
