// The analyses, over an ANALYSISCOLLECTION element.
#pragma once

#include <kvdm/datamanager/analyses.h>

#include "collections/collection_view.h"

namespace kvdm {

class KVAnalysisCollection final : public Collection<IKVAnalysisCollection> {
 public:
  explicit KVAnalysisCollection(std::shared_ptr<GisCore> gis_core);

  NameListRef AnalysesList() override;
  bool CreateAnalysis(std::string_view name) override;
  bool DeleteAnalysis(std::string_view name) override;
  std::shared_ptr<IKVAnalysis> GetAnalysis(std::string_view name) override;
  bool AnalysisExists(std::string_view name) override;
  NameListRef AnalysesGUIDsList() override;
  bool DeleteAnalysisByGUID(std::string_view guid) override;
  std::shared_ptr<IKVAnalysis> GetAnalysisByGUID(std::string_view guid) override;
  bool AnalysisExistsByGUID(std::string_view guid) override;

 private:
  std::string AppendAnalysis(std::string_view name);
  bool Delete(const char* attribute, std::string_view key);
  std::shared_ptr<IKVAnalysis> Get(const char* attribute, std::string_view key);
};

}  // namespace kvdm
