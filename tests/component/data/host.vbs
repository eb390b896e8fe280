' A host in a language that binds late. Arguments: the file for its notes, INN, KPP. Each note is a call and the
' number of its error, 0 when it succeeded.
Option Explicit
Dim files, notes, component, inn, kpp
Set files = CreateObject("Scripting.FileSystemObject")
Set notes = files.CreateTextFile(WScript.Arguments(0), True)
inn = WScript.Arguments(1)
kpp = WScript.Arguments(2)

Sub Note(call_of)
    notes.WriteLine call_of & " = " & Err.Number
    Err.Clear
End Sub

On Error Resume Next
Set component = CreateObject("TAV_OperationImport.OpenClass")
Note "создание"
component.import inn, kpp
Note "import"
component.IMPORT inn, kpp
Note "IMPORT"
component.view_v_id 1
Note "view_v_id 1"
component.view_v_id 32000
Note "view_v_id 32000"
component.start inn, kpp
Note "start без даты"
component.start inn, kpp, #3/31/2011#
Note "start с датой"
component.start inn, kpp, "31.03.2011"
Note "start с текстом даты"
component.view_v inn, kpp
Note "view_v"
component.view_a inn, kpp
Note "view_a"

component.start inn
Note "start с одним аргументом"
component.start inn, kpp, Date, 1
Note "start с четырьмя аргументами"
component.start inn, kpp, "не дата"
Note "start с текстом вместо даты"
component.import
Note "import без аргументов"
component.import inn, Null
Note "import с Null"
component.view_v_id
Note "view_v_id без аргументов"
component.view_v_id "abc"
Note "view_v_id с буквами"
component.view_v_id 40000
Note "view_v_id с большим числом"
component.stop_
Note "stop_"
component.start = 1
Note "start как свойство"

Set component = Nothing
notes.Close
WScript.Quit 7
