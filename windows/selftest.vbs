' Tries the component on a machine that has the Jet engine, and the native engine of tav.exe beside it:
'
'   %windir%\SysWOW64\cscript.exe //nologo selftest.vbs [another tav.exe]
'
' The class must be registered, and SysWOW64 is for the 32-bit class: Jet 4.0 has no other width. tav.exe is told to use
' the native engine, whatever else it finds. Settings of the user and of the host are not touched: everything happens below a
' new folder in %TEMP% and the key HKEY_CURRENT_USER\Software\TAV_OperationImport.SelfTest, which go at the end; with failures, the folder stays.
'
'   1. The class imports the sample documents through ADO and Jet, tav.exe those of a copy with its own engine.
'   2. Jet reads both databases: all rows of all tables must be the same.
'   3. Jet compacts the database of tav.exe, which it refuses or changes if anything in it is broken; the rows must be the same.
'   4. tav.exe checks and dumps the compacted file, which Jet alone has written; the dump must be the same as before.
'
' Exit code: 0 all is well, 1 something differs, 2 it could not be tried.
Option Explicit

Const kJet = "Provider=Microsoft.Jet.OLEDB.4.0;Data Source="
Const kTables = "tav_operations_header tav_operations tav_acts tav_operations_type"
Const kKey = "Software\TAV_OperationImport.SelfTest"
Const kInn = "7701234567"
Const kKpp = "770101001"

Dim files, shell, environment, package, work, tav, failures, sorting
Set files = CreateObject("Scripting.FileSystemObject")
Set shell = CreateObject("WScript.Shell")
Set environment = shell.Environment("PROCESS")
package = files.GetParentFolderName(WScript.ScriptFullName)
failures = 0

tav = package & "\tav.exe"
If WScript.Arguments.Count > 0 Then tav = WScript.Arguments(0)
If Not files.FileExists(tav) Then GiveUp "There is no " & tav
If Not files.FolderExists(package & "\samples") Then GiveUp "There are no samples beside this script"
work = files.GetSpecialFolder(2) & "\" & files.GetTempName
files.CreateFolder work
CheckRegion
CheckJet work & "\probe.mdb"
If Run("db create --database " & Quoted(work & "\empty.mdb")) <> 0 Then GiveUp "tav.exe could not make an empty database"
Rows work & "\empty.mdb"
If failures > 0 Then Finish

environment("TAV_SETTINGS") = kKey
MakePlace "jet"
MakePlace "native"

UsePlace "jet"
ImportByClass
UsePlace "native"
If Run("import --inn " & kInn & " --kpp " & kKpp) <> 0 Then Fail "tav.exe could not import"

Dim by_jet, by_native, compacted
by_jet = Rows(work & "\jet\PlX_Base.mdb")
by_native = Rows(work & "\native\PlX_Base.mdb")
If Len(by_jet) < 1000 Then Fail "the class has not imported through Jet"
Compare "imported through Jet", by_jet, "imported by the native engine", by_native

compacted = work & "\compacted.mdb"
If Compacts(work & "\native\PlX_Base.mdb", compacted) Then
    Compare "before compacting", by_native, "after compacting", Rows(compacted)
    If Run("db check --database " & Quoted(compacted)) <> 0 Then Fail "tav.exe finds faults in what Jet has compacted"
    Compare "dumped before compacting", Dump(work & "\native\PlX_Base.mdb", "before"), _
        "dumped after compacting", Dump(compacted, "after")
End If
Finish

Sub Finish
    If failures > 0 Then
        WScript.Echo failures & " failures; the databases are in " & work
        ForgetSettings
        WScript.Quit 1
    End If
    WScript.Echo "All is well."
    CleanUp
    WScript.Quit 0
End Sub

' A folder with documents and an empty database.
Sub MakePlace(name)
    files.CreateFolder work & "\" & name
    files.CopyFolder package & "\samples", work & "\" & name & "\in"
    files.CopyFile work & "\empty.mdb", work & "\" & name & "\PlX_Base.mdb"
End Sub

' The settings that name it.
Sub UsePlace(name)
    UseSetting "DataBasePath", work & "\" & name
    UseSetting "ImportPath", work & "\" & name & "\in"
End Sub

Sub UseSetting(name, value)
    If Run("settings set " & name & " " & Quoted(value)) <> 0 Then GiveUp "tav.exe could not write the setting " & name
End Sub

' Jet reads dates and amounts as the region writes them.
Sub CheckRegion
    Dim right
    On Error Resume Next
    right = Month(CDate("02.03.2011")) = 3 And CDbl("1,5") = 1.5
    If Err.Number <> 0 Or Not right Then GiveUp "The regional settings are not those of the documents (dd.mm.yyyy, decimal comma)"
End Sub

' Whether Jet is here is seen on a file of its own making, so that a fault in ours is not taken for its absence.
Sub CheckJet(database)
    Dim catalog
    On Error Resume Next
    Set catalog = CreateObject("ADOX.Catalog")
    catalog.Create kJet & database & ";Jet OLEDB:Engine Type=5"
    If Err.Number <> 0 Then GiveUp "Jet 4.0 cannot be used here, so nothing was tried: " & Err.Description
End Sub

' Jet has the database open meanwhile: the native engine, which opens a file for itself alone, could not write to it. So
' what is imported here has gone through Jet.
Sub ImportByClass
    Dim component, connection
    On Error Resume Next
    Set component = CreateObject("TAV_OperationImport.OpenClass")
    If Err.Number <> 0 Then GiveUp "The class is not registered for this script host: " & Err.Description
    Set connection = CreateObject("ADODB.Connection")
    connection.Open kJet & work & "\jet\PlX_Base.mdb"
    component.import kInn, kKpp
    If Err.Number <> 0 Then Fail "import: " & Err.Description
    connection.Close
End Sub

Function Compacts(source, target)
    Dim engine
    On Error Resume Next
    Set engine = CreateObject("JRO.JetEngine")
    engine.CompactDatabase kJet & source, kJet & target & ";Jet OLEDB:Engine Type=5"
    Compacts = Err.Number = 0
    If Err.Number <> 0 Then Fail "Jet could not compact the file: " & Err.Description
End Function

' All rows of all tables as Jet reads them, a line each; sorted, because a table has no order.
Function Rows(database)
    Dim connection, table, answer, field, line, lines
    On Error Resume Next
    Rows = ""
    lines = ""
    Set connection = CreateObject("ADODB.Connection")
    connection.Open kJet & database
    For Each table In Split(kTables)
        If Err.Number = 0 Then Set answer = connection.Execute("select * from " & table)
        Do Until Err.Number <> 0
            If answer.EOF Then Exit Do
            line = table
            For Each field In answer.Fields
                line = line & "|" & field.Name & "=" & field.Value
            Next
            lines = lines & line & vbLf
            answer.MoveNext
        Loop
    Next
    If Err.Number <> 0 Then
        Fail "Jet could not read " & database & ": " & Err.Description
    Else
        Rows = Sorted(lines)
    End If
    connection.Close
End Function

' What tav.exe reads there: the lines without what separates them, sorted as well.
Function Dump(database, name)
    Dim file, text, separator
    file = work & "\" & name & ".json"
    Dump = ""
    If RunNative("cmd /c """ & Quoted(tav) & " db dump --database " & Quoted(database) & " > " & Quoted(file) & """") <> 0 Then
        Fail "tav.exe could not read " & database
        Exit Function
    End If
    text = files.OpenTextFile(file).ReadAll
    For Each separator In Array("}],", "}]", "},")
        text = Replace(text, separator, "}")
    Next
    Dump = Sorted(Replace(text, "[],", "[]"))
End Function

Sub Compare(name, text, other_name, other_text)
    If text = other_text Then
        WScript.Echo "The same: " & name & ", " & other_name
    Else
        Fail "Not the same: " & name & ", " & other_name
        Save name, text
        Save other_name, other_text
    End If
End Sub

Sub Save(name, text)
    Dim file
    Set file = files.CreateTextFile(work & "\" & name & ".txt", True, True)
    file.Write text
    file.Close
End Sub

' Lines in the order of their letters.
Function Sorted(text)
    sorting = Split(text, vbLf)
    SortPart 0, UBound(sorting)
    Sorted = Join(sorting, vbLf)
End Function

Sub SortPart(first, last)
    Dim low, high, middle, spare
    low = first
    high = last
    If low >= high Then Exit Sub
    middle = sorting((first + last) \ 2)
    Do While low <= high
        Do While sorting(low) < middle
            low = low + 1
        Loop
        Do While middle < sorting(high)
            high = high - 1
        Loop
        If low <= high Then
            spare = sorting(low)
            sorting(low) = sorting(high)
            sorting(high) = spare
            low = low + 1
            high = high - 1
        End If
    Loop
    SortPart first, high
    SortPart low, last
End Sub

Function Run(words)
    Run = RunNative(Quoted(tav) & " " & words)
End Function

' The class, which lives in this process, must not see the variable.
Function RunNative(command)
    environment("TAV_ENGINE") = "native"
    RunNative = shell.Run(command, 0, True)
    environment.Remove "TAV_ENGINE"
End Function

Function Quoted(path)
    Quoted = """" & path & """"
End Function

Sub Fail(what)
    failures = failures + 1
    WScript.Echo "FAILED: " & what
End Sub

Sub GiveUp(why)
    WScript.Echo why
    CleanUp
    WScript.Quit 2
End Sub

Sub CleanUp
    On Error Resume Next
    If work <> "" Then files.DeleteFolder work, True
    ForgetSettings
End Sub

Sub ForgetSettings
    shell.Run "reg delete HKCU\" & kKey & " /f", 0, True
End Sub
