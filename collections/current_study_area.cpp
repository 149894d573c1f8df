#include "collections/current_study_area.h"

#include <kvdm/datamanager/study_areas.h>

namespace kvdm {

std::string CurrentFolder(DataManagerFriend& data_manager) {
  const auto state = Required(data_manager.HostObject()).CurrentState();
  const auto name = ToText(Required(state).GetProperty(kStudyAreaNameProperty));
  if (name.empty()) return data_manager.WorkingDirectory();
  const auto study_area = Required(data_manager.StudyAreaCollection()).GetStudyArea(name);
  return study_area ? study_area->StudyAreaDir() : data_manager.WorkingDirectory();
}

}  // namespace kvdm
