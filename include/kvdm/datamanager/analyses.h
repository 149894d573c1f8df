/// @file
/// Interfaces of the analyses.
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

/// The analyses: an element of the metadata document and a folder each.
///
/// Several analyses may have one name; the first in the document is the one that is found. Nothing
/// here saves. Reports end in 438.
class KVDM_EXPORT IKVAnalysisCollection : public virtual Unknown {
 public:
  /// The names of all analyses. 438 when one has no name.
  virtual NameListRef AnalysesList() = 0;

  /// Adds an analysis and makes its folder, with the first free name, in the folder "Analyses" of
  /// the current study area, or of the working directory when none is open or the open one is not
  /// there. Names the layer file "Analysis.lyr" in it, which the host is to write.
  ///
  /// A name that exists is no obstacle. False when the folder could not be made: the analysis is
  /// there all the same; and when an analysis has the name with one more underscore at each end:
  /// then nothing is added. 438 without a host, for a double quote in a name, and for whatever else
  /// fails before the folder; then nothing is added.
  virtual bool CreateAnalysis(std::string_view name) = 0;

  /// Removes the first analysis of that name, then its folder. False when there is none. 438 for a
  /// double quote in the name; and for an analysis without DIRNAME, which is then removed.
  virtual bool DeleteAnalysis(std::string_view name) = 0;

  /// A view of the first analysis of that name; Nothing when there is none. 438 for a double quote
  /// in the name.
  virtual std::shared_ptr<IKVAnalysis> GetAnalysis(std::string_view name) = 0;

  /// Whether an analysis has the name. Errors: -2147467259.
  virtual bool AnalysisExists(std::string_view name) = 0;

  /// The identifiers of all analyses; an underscore at both ends is taken off. 438 when one has no
  /// identifier.
  virtual NameListRef AnalysesGUIDsList() = 0;

  /// As DeleteAnalysis, by identifier.
  virtual bool DeleteAnalysisByGUID(std::string_view guid) = 0;

  /// As GetAnalysis, by identifier.
  virtual std::shared_ptr<IKVAnalysis> GetAnalysisByGUID(std::string_view guid) = 0;

  /// Whether an analysis has the identifier. Errors: -2147467259.
  virtual bool AnalysisExistsByGUID(std::string_view guid) = 0;
};

/// One analysis. Also has IKVLayerEdit, which alone changes the identifier, and IKVMetadata.
/// Reports end in 438.
class KVDM_EXPORT IKVAnalysis : public virtual Unknown {
 public:
  /// The name. Errors: 94 when the element has none.
  virtual std::string Name() = 0;

  /// Renames the analysis; its folder and layer file keep their names. Does nothing when an
  /// analysis has the name, this one included. Does not save. 438 for a double quote in the name, a
  /// name that is too long, or a data manager without a metadata document.
  virtual void SetName(std::string_view name) = 0;

  /// The full path of the layer file; "" when none is stored. Quiet.
  virtual std::string LayerFile() = 0;

  /// Stores the path as given. Saves. Errors: 7. IKVLayerEdit::SetLayerFile reports instead.
  virtual void SetLayerFile(std::string_view path) = 0;

  /// The comment; "" without one. Every LF comes back as CR LF, also one behind a CR. Quiet.
  virtual std::string Comments() = 0;

  /// Stores the comment exactly as given. Saves. Errors: 7.
  virtual void SetComments(std::string_view comments) = 0;

  /// The time of creation, in the form of DateText or as it was set; "" without one. Quiet.
  virtual std::string CreationTime() = 0;

  /// Stores the text as given. Does not save. Quiet.
  virtual void SetCreationTime(std::string_view time) = 0;

  /// The full path of the analysis's folder; "" when none is stored. Quiet.
  virtual std::string AnalysisDir() = 0;

  /// Sets a named parameter: changes the first of that name, or adds one. True when it was stored.
  /// Saves. 438 for a double quote in the name, and for a name or value that is too long; a new
  /// parameter whose value is too long stays, without a value.
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;

  /// The value of the first parameter of that name; "" when there is none or it has no value.
  /// Quiet.
  virtual std::string GetParameter(std::string_view name) = 0;

  /// The names of all parameters, repeated ones included; Null for one without a name. 438 when
  /// memory runs out.
  virtual NameListRef ParametersList() = 0;

  /// Removes all parameters. True, also when there were none. Saves. Quiet: after a failure those
  /// removed so far are gone, and nothing is saved.
  virtual bool ClearParametersList() = 0;

  /// The identifier; "" when none is stored. Quiet.
  virtual std::string AnalysisGUID() = 0;

  /// Puts each parameter into the set under its name, then "Name" and "Comments"; makes a set when
  /// given Nothing. Quiet: False when the analysis or a parameter has no name, or the set fails;
  /// what was put until then stays in the set.
  virtual bool WriteToPropertySet(std::shared_ptr<NamedValueSet>& set) = 0;

  /// Applies the entries of the set in its order: "Name" as SetName does, "Comments" as SetComments
  /// does, each other as SetParameter does, with "" for a value that has no text. Saves with each
  /// entry but the name. True also when entries could not be applied; they are passed over. Quiet:
  /// False for Nothing and for a set that can't be listed; then nothing is changed.
  virtual bool ReadFromPropertySet(const std::shared_ptr<NamedValueSet>& set) = 0;
};

}  // namespace kvdm
