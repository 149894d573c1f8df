// Analyses.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>
#include <kvdm/platform/gis_core.h>

namespace kvdm {

class IKVAnalysis;

class KVDM_EXPORT IKVAnalysisCollection : public virtual Unknown {
 public:
  virtual NameListRef AnalysesList() = 0;
  // Adds one also when the name exists; False when only its folder could not be made. Saves
  // nothing.
  virtual bool CreateAnalysis(std::string_view name) = 0;
  // Removes the first of that name, and its folder. Saves nothing.
  virtual bool DeleteAnalysis(std::string_view name) = 0;
  virtual std::shared_ptr<IKVAnalysis> GetAnalysis(std::string_view name) = 0;
  virtual bool AnalysisExists(std::string_view name) = 0;  // [errors]
  virtual NameListRef AnalysesGUIDsList() = 0;
  virtual bool DeleteAnalysisByGUID(std::string_view guid) = 0;
  virtual std::shared_ptr<IKVAnalysis> GetAnalysisByGUID(std::string_view guid) = 0;
  virtual bool AnalysisExistsByGUID(std::string_view guid) = 0;  // [errors]
};

class KVDM_EXPORT IKVAnalysis : public virtual Unknown {
 public:
  virtual std::string Name() = 0;  // [errors]
  // Keeps the old name when the new one is taken. Does not save.
  virtual void SetName(std::string_view name) = 0;
  virtual std::string LayerFile() = 0;                      // [quiet]
  virtual void SetLayerFile(std::string_view path) = 0;     // [errors] Saves.
  virtual std::string Comments() = 0;                       // [quiet] Line ends come back as CR LF.
  virtual void SetComments(std::string_view comments) = 0;  // [errors] Saves.
  virtual std::string CreationTime() = 0;                   // [quiet]
  virtual void SetCreationTime(std::string_view time) = 0;  // [quiet] Does not save.
  virtual std::string AnalysisDir() = 0;                    // [quiet]
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;  // Saves.
  virtual std::string GetParameter(std::string_view name) = 0;                   // [quiet]
  virtual NameListRef ParametersList() = 0;
  virtual bool ClearParametersList() = 0;  // [quiet] Saves.
  virtual std::string AnalysisGUID() = 0;  // [quiet]
  // Puts the parameters, then "Name" and "Comments"; makes a set when given none. [quiet]
  virtual bool WriteToPropertySet(std::shared_ptr<NamedValueSet>& set) = 0;
  // Applies every entry it can: "Name", "Comments", any other as a parameter. [quiet]
  virtual bool ReadFromPropertySet(const std::shared_ptr<NamedValueSet>& set) = 0;
};

}  // namespace kvdm
