// A project and the catalogue, as far as they can be read, for those who check and mend them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/recording.h"
#include "safety/check.h"

namespace kvdm {

class CheckedProject {
 public:
  // Reads what there is; what can't be read is part of the subject.
  CheckedProject(std::filesystem::path file, Access access, Output& out);

  [[nodiscard]] const Subject& About() const { return subject_; }

  // What speaks against changing it, as a sentence; "" when nothing does.
  [[nodiscard]] std::string TenureProblem() const;

  // Finishes or takes back what commands that were ended left half done, as Recording::Recover
  // does.
  void Recover(const std::vector<std::string>& command, bool outside);

  // Carries out a repair as one change of `command`: makes folders, stores the documents, the
  // catalogue as a difference, and then changes layers' metadata. A project that can't be read is
  // replaced, and recorded nowhere. Failure kRefused when something can't be written.
  void Store(const Repair& repair, const std::vector<std::string>& command);

 private:
  void ReadProject();
  void ReadCatalogue();
  void ReadOwnership();
  [[nodiscard]] Place GetPlace() const;
  [[nodiscard]] Documents DocumentsIn(const Holdings& holdings) const;

  std::filesystem::path file_;
  Project project_;
  Services services_;
  Subject subject_;
};

}  // namespace kvdm
