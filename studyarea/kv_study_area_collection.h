// The study areas of the catalogue, over its root element.
#pragma once

#include <kvdm/datamanager/study_areas.h>

#include "collections/collection_view.h"

namespace kvdm {

class KVStudyAreaCollection final : public Collection<IKVStudyAreaCollection>,
                                    private CatalogueView {
 public:
  explicit KVStudyAreaCollection(std::shared_ptr<GisCore> gis_core);

  NameListRef StudyAreasList() override;
  bool CreateStudyArea(std::string_view name) override;
  bool DeleteStudyArea(std::string_view name) override;
  std::shared_ptr<IKVStudyArea> GetStudyArea(std::string_view name) override;
  bool StudyAreaExists(std::string_view name) override;
  NameListRef StudyAreasGUIDsList() override;
  bool DeleteStudyAreaByGUID(std::string_view guid) override;
  std::shared_ptr<IKVStudyArea> GetStudyAreaByGUID(std::string_view guid) override;
  bool StudyAreaExistsByGUID(std::string_view guid) override;

  // What the data manager follows.
  static std::shared_ptr<CatalogueView> Followed(
      const std::shared_ptr<KVStudyAreaCollection>& areas) {
    return {areas, areas.get()};
  }

 private:
  [[nodiscard]] const xml::Element& CatalogueElement() const override { return view_.node(); }
  void Rebind(xml::Element element) noexcept override { view_.SetNode(std::move(element)); }

  [[nodiscard]] std::string StudyAreasFolder() const;
  [[nodiscard]] std::string FolderOf(const std::string& folder_name) const;
  std::string AppendStudyArea(std::string_view name);
  void CloseIfCurrent(std::string_view name);
  bool Delete(const char* attribute, std::string_view key, bool below_study_areas);
  std::shared_ptr<IKVStudyArea> Get(const char* attribute, std::string_view key);
};

}  // namespace kvdm
