// The classes of the sibling libraries, in this process.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>

namespace kvdm::client {

// One class with one operation, for as long as this lives.
class SiblingClass {
 public:
  // What the operation answers; its argument is "" for none.
  using Operation = std::function<std::string(const std::string& argument)>;

  // `name` is the class's, such as "QSObjectModel.QSManager". Its identifier is written to the
  // registry of the machine.
  SiblingClass(const wchar_t* name, const CLSID& clsid, const wchar_t* operation_name,
               const Operation& operation);
  SiblingClass(const SiblingClass&) = delete;
  SiblingClass& operator=(const SiblingClass&) = delete;
  ~SiblingClass();

 private:
  // An open key stays the machine's, also when the test gets a registry of its own.
  HKEY classes_;
  std::wstring name_;
  DWORD registration_ = 0;
};

// Both classes.
class SiblingClasses {
 public:
  // `find_text` answers the text with a number.
  explicit SiblingClasses(const SiblingClass::Operation& find_text);

  void LoseDatasetManager() { dataset_manager_.reset(); }
  // How many dataset managers were initialised.
  [[nodiscard]] int InitializedCount() const { return initialized_; }

 private:
  int initialized_ = 0;
  std::unique_ptr<SiblingClass> dataset_manager_;
  std::unique_ptr<SiblingClass> resource_finder_;
};

}  // namespace kvdm::client
