// Path prefix: a folder at the beginning of paths, and the one that takes its place.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kvdm {

// Paths are texts in the component's form, or POSIX ones, which stand on the drive Z. "\" and "/"
// both separate, several count once, and a path keeps the separators that it has: so a prefix that
// is replaced and replaced back leaves the text that was there. Names are equal in any case of
// ASCII letters where `same` says that the two paths lead to one place.
//
//   PathPrefix(R"(D:\Old)", R"(E:\New)").Replaced("d:/Old/Shops.shp")   // "E:/New/Shops.shp"
class PathPrefix {
 public:
  using SamePlace = std::function<bool(std::string_view, std::string_view)>;

  PathPrefix(std::string_view from, std::string_view to, SamePlace same = {});

  [[nodiscard]] const std::string& From() const { return from_; }
  [[nodiscard]] const std::string& To() const { return to_; }

  // The path with the other folder at its beginning; nothing when it is neither the folder nor
  // below it.
  [[nodiscard]] std::optional<std::string> Replaced(std::string_view path) const;

  // The same of a path that the other folder is at the beginning of.
  [[nodiscard]] PathPrefix Reversed() const { return {to_, from_, same_}; }

 private:
  std::string from_;
  std::string to_;
  SamePlace same_;
};

}  // namespace kvdm
