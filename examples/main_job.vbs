' The main job through the Windows component, with a script as its host: study areas, analyses and layers are made and
' described, the project is saved, and another data manager restores it.
'
'   cscript //nologo main_job.vbs D:\Data
Option Explicit

' A set of properties, as the host has two: what is open now, and the user's settings.
Class PropertySet
  Private properties

  Private Sub Class_Initialize
    Set properties = WScript.CreateObject("Scripting.Dictionary")
  End Sub

  Public Function GetProperty(name)
    If properties.Exists(name) Then GetProperty = properties.Item(name)
  End Function

  Public Sub SetProperty(name, value)
    If properties.Exists(name) Then properties.Remove name
    properties.Add name, value
  End Sub
End Class

' The application: the component asks it for these two.
Class Application
  Public CurrentState
  Public Settings

  Private Sub Class_Initialize
    Set CurrentState = New PropertySet
    Set Settings = New PropertySet
  End Sub
End Class

' The application's saved document, of which the component fills one value.
Class ProjectStream
  Public SavedText

  Public Sub Write(value)
    SavedText = value
  End Sub

  Public Function Read()
    Read = SavedText
  End Function
End Class

' The metadata that is kept with one layer: a document, once there is one.
Class LayerMetadata
  Private document

  Private Sub Class_Initialize
    Set document = Nothing
  End Sub

  Public Function ReadDocument()
    Set ReadDocument = document
  End Function

  Public Sub WriteDocument(newDocument)
    Set document = newDocument
  End Sub
End Class

Sub Title(text)
  WScript.Echo vbCrLf & "== " & text & " =="
End Sub

Sub ShowList(text, list)
  Dim name, line
  line = text & " (" & list.Count & "):"
  For Each name In list
    line = line & " " & name
  Next
  WScript.Echo line
End Sub

Function Started(host)
  Set Started = WScript.CreateObject("KVDM.KVDataManager")
  Started.DMInitialize host
End Function

If WScript.Arguments.Count <> 1 Then
  WScript.Echo "Name the working directory: cscript //nologo main_job.vbs D:\Data"
  WScript.Quit 2
End If

Dim host, manager
Set host = New Application
host.Settings.SetProperty "VELKKVDirectory", WScript.Arguments(0)
Set manager = Started(host)

Title "The working directory"
WScript.Echo manager.WorkingDirectory

Title "Study areas, kept in the registry"
Dim areas, area
Set areas = manager.StudyAreaCollection
If Not areas.StudyAreaExists("North") Then areas.CreateStudyArea "North"
If Not areas.StudyAreaExists("South") Then areas.CreateStudyArea "South"
Set area = areas.GetStudyArea("North")
area.Comments = "The northern half, without the harbour"
area.SetProperty "TYPE", "rings"
ShowList "Study areas", areas.StudyAreasList
WScript.Echo "North lies in " & area.StudyAreaDir
WScript.Echo "North's TYPE: " & area.GetProperty("TYPE")

Title "An analysis in the open study area"
Dim analyses, analysis, name
host.CurrentState.SetProperty "Study Area Name", "North"
Set analyses = manager.AnalysisCollection
analyses.CreateAnalysis "Sales"
Set analysis = analyses.GetAnalysis("Sales")
analysis.SetParameter "Radius", 500
analysis.SetParameter "Unit", "m"
analysis.Comments = "Shops within 500 metres"
WScript.Echo "Layer file: " & analysis.LayerFile
For Each name In analysis.ParametersList
  WScript.Echo "  " & name & " = " & analysis.GetParameter(name)
Next

Title "Layers of stores and customers, data items, tables"
manager.StoreLayerCollection.CreateStoreLayer "Stores"
manager.StoreLayerCollection.GetStoreLayer("Stores").IDField = "ID"
manager.CustLayerCollection.CreateCustLayer "Members"
manager.DataCollection.CreateDataItem "Streets"
WScript.Echo "Stores:    " & manager.StoreLayerCollection.GetStoreLayer("Stores").LayerFile
WScript.Echo "Members:   " & manager.CustLayerCollection.GetCustLayer("Members").LayerFile
WScript.Echo "Streets:   " & manager.DataCollection.GetDataItem("Streets").LayerFile
WScript.Echo "New table: " & manager.TablesManager.FreeTablePath

Title "The analysis's description goes into its layer's metadata, and comes back"
Dim metadata
Set metadata = New LayerMetadata
analysis.ExportMetadata metadata
WScript.Echo "Entries: " & metadata.ReadDocument().EntryCount
analysis.ClearParametersList
analysis.ImportMetadata metadata
WScript.Echo "Radius, from the metadata: " & analysis.GetParameter("Radius")

Title "Saved with the project, and restored by another data manager"
Dim project, restored
Set project = New ProjectStream
manager.Save project
Set restored = Started(host)
restored.Load project
ShowList "Study areas", restored.StudyAreaCollection.StudyAreasList
ShowList "Analyses", restored.AnalysisCollection.AnalysesList
ShowList "Store layers", restored.StoreLayerCollection.StoreLayersList
ShowList "Customer layers", restored.CustLayerCollection.CustLayersList
WScript.Echo project.SavedText

If restored.AnalysisCollection.GetAnalysis("Sales").GetParameter("Radius") <> "500" Then WScript.Quit 1
