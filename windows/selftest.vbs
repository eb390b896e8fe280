' Tries the component on a machine that has Jet or ACE, and the own engine beside it; without them, the own engine alone.
'
'   %windir%\SysWOW64\cscript.exe //nologo selftest.vbs [another tav.exe]      (the x86 package)
'   cscript.exe //nologo selftest.vbs [another tav.exe]                         (the x64 package)
'
' The class must be registered for that script host, and tav.exe is of the same width. Settings of the user and of the host are not
' touched: everything happens below a new folder in %TEMP% and the key HKEY_CURRENT_USER\Software\TAV_OperationImport.SelfTest,
' which go at the end; with failures, the folder stays. Windows and reports open meanwhile: answer boxes with OK, close nothing else.
'
'   1. The class imports the sample documents and makes the three reports, through the provider; tav.exe does the same with a
'      copy, with its own engine. All files must be the same byte by byte, all rows of all tables the same row by row.
'   2. tav.exe lists what the class has stored, through the provider and with its own engine: the same list.
'   3. The provider compacts the database of the own engine, which it refuses or changes if anything in it is broken; the rows
'      must be the same, and tav.exe finds no fault in the compacted file.
'   4. The taxpayer is cleared, through the provider in one database and with the own engine in the other: the same rows are left.
'   5. The class opens its main window.
'
' What was tried and what came of it stands in selftest.txt beside this script, or in %TEMP% where that cannot be written: the file
' to send. Exit code: 0 all is well, 1 something differs, 2 it could not be tried with a provider.
Option Explicit

Const kTables = "tav_operations_header tav_operations tav_acts tav_operations_type"
Const kKey = "Software\TAV_OperationImport.SelfTest"
Const kInn = "7701234567"
Const kKpp = "770101001"

Dim files, shell, environment, package, work, tav, failures, verdict, verdict_path, provider, component
Set files = CreateObject("Scripting.FileSystemObject")
Set shell = CreateObject("WScript.Shell")
Set environment = shell.Environment("PROCESS")
package = files.GetParentFolderName(WScript.ScriptFullName)
failures = 0
OpenVerdict

tav = package & "\tav.exe"
If WScript.Arguments.Count > 0 Then tav = WScript.Arguments(0)
Note "TAV_OperationImport, self-test of " & Now
Note "tav.exe: " & tav & ", " & VersionOf(tav)
If Not files.FileExists(tav) Then GiveUp "There is no " & tav
If Not files.FolderExists(package & "\samples") Then GiveUp "There are no samples beside this script"
work = files.GetSpecialFolder(2) & "\" & files.GetTempName
files.CreateFolder work
DescribeMachine
provider = FirstProvider()
If provider = "" Then Note "No provider can be used by this script host: the class is tried with its own engine."
If provider <> "" Then Note "Provider: " & provider

SetVariable "TAV_SETTINGS", kKey
If shell.ExpandEnvironmentStrings("%TAV_SETTINGS%") <> kKey Then GiveUp "This script host cannot set a variable, and the settings of the user are not to be touched"
If Run("db create --database " & Quoted(work & "\empty.mdb")) <> 0 Then GiveUp "tav.exe could not make an empty database"
MakePlace "class"
MakePlace "own"
MakeComponent
UsePlace "class"
Note "The class uses: " & FirstLine(Output("db check", "class", EngineOfClass()))

UsePlace "own"
Expect Run("import --inn " & kInn & " --kpp " & kKpp) = 0, "tav.exe imports with its own engine"
Expect Run("report statement " & AStatement("own")) = 0, "tav.exe makes the report of a statement"
Expect Run("report statements --inn " & kInn & " --kpp " & kKpp) = 0, "tav.exe sums up the statements"
Expect Run("report acts --inn " & kInn & " --kpp " & kKpp) = 0, "tav.exe sums up the acts"
UsePlace "class"
UseClass "import"
UseClass "view_v_id"
UseClass "view_v"
UseClass "view_a"
CompareFiles "class\out", "own\out"
CompareFiles "class\in", "own\in"
Compare "read by the own engine, the rows of the class and of tav.exe", Dump("class"), Dump("own")
Compare "the lists of what the class and tav.exe have stored", Output("list", "class", EngineOfClass()), Output("list", "own", "native")
If provider <> "" Then
    Compare "read by the provider, the rows of the class and of tav.exe", Rows("class"), Rows("own")
    TryCompacting
End If
Expect RunWith("clear --inn " & kInn & " --kpp " & kKpp & " --database " & Quoted(Database("class")), EngineOfClass()) = 0, _
    "the taxpayer is cleared as the class would"
Expect Run("clear --inn " & kInn & " --kpp " & kKpp & " --database " & Quoted(Database("own"))) = 0, _
    "the taxpayer is cleared with the own engine"
Compare "the rows that clearing has left", Dump("class"), Dump("own")
UseClass "start"
Finish

Sub DescribeMachine
    On Error Resume Next
    Note "Windows: " & shell.RegRead("HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion\ProductName") & ", build " & _
        shell.RegRead("HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion\CurrentBuildNumber") & ", script host " & _
        environment("PROCESSOR_ARCHITECTURE")
    Note "The second of March is " & FormatDateTime(DateSerial(2011, 3, 2), 2) & ", one and a half is " & 1.5 & ", a thousand " & _
        FormatNumber(1000, 2)
    Note "Library: " & VersionOf(shell.RegRead("HKCR\CLSID\{3C424FBB-646F-4C50-8A37-CF1795E10B8B}\InprocServer32\"))
End Sub

Function VersionOf(path)
    On Error Resume Next
    VersionOf = path
    VersionOf = path & " " & files.GetFileVersion(path)
End Function

' Whether a provider is here is seen on a file of its own making, so that a fault in ours is not taken for its absence.
Function FirstProvider()
    Dim name, catalog
    On Error Resume Next
    FirstProvider = ""
    For Each name In Array("Microsoft.Jet.OLEDB.4.0", "Microsoft.ACE.OLEDB.16.0", "Microsoft.ACE.OLEDB.12.0")
        Err.Clear
        Set catalog = CreateObject("ADOX.Catalog")
        catalog.Create "Provider=" & name & ";Data Source=" & work & "\" & name & ".mdb;Jet OLEDB:Engine Type=5"
        If Err.Number = 0 Then
            FirstProvider = name
            Exit Function
        End If
        Note name & ": " & Err.Description
    Next
End Function

' A folder with documents, a folder for reports and an empty database.
Sub MakePlace(name)
    files.CreateFolder work & "\" & name
    files.CreateFolder work & "\" & name & "\out"
    files.CopyFolder package & "\samples", work & "\" & name & "\in"
    files.CopyFile work & "\empty.mdb", Database(name)
End Sub

Function Database(place)
    Database = work & "\" & place & "\PlX_Base.mdb"
End Function

' The settings that name it.
Sub UsePlace(name)
    UseSetting "DataBasePath", work & "\" & name
    UseSetting "ImportPath", work & "\" & name & "\in"
    UseSetting "ExportPath", work & "\" & name & "\out"
End Sub

Sub UseSetting(name, value)
    If Run("settings set " & name & " " & Quoted(value)) <> 0 Then GiveUp "tav.exe could not write the setting " & name
End Sub

Sub MakeComponent
    On Error Resume Next
    Set component = CreateObject("TAV_OperationImport.OpenClass")
    If Err.Number <> 0 Then GiveUp "The class is not registered for this script host: " & Err.Description
End Sub

' The provider, where there is one, has the database open meanwhile: the own engine, which opens a file for itself alone, could
' not write to it. So what is imported here has gone through the provider.
Sub UseClass(operation)
    Dim connection, statement
    On Error Resume Next
    If provider <> "" Then
        Set connection = CreateObject("ADODB.Connection")
        connection.Open "Provider=" & provider & ";Data Source=" & Database("class")
    End If
    If operation = "view_v_id" Then statement = CInt(AStatement("class"))
    SetVariable "TAV_ENGINE", EngineOfClass()
    Err.Clear
    Select Case operation
        Case "import": component.import kInn, kKpp
        Case "view_v_id": component.view_v_id statement
        Case "view_v": component.view_v kInn, kKpp
        Case "view_a": component.view_a kInn, kKpp
        Case "start": component.start kInn, kKpp
    End Select
    Expect Err.Number = 0, "the class: " & operation & " " & Err.Description
    SetVariable "TAV_ENGINE", ""
    connection.Close
End Sub

Function EngineOfClass()
    EngineOfClass = ""
    If provider = "" Then EngineOfClass = "native"
End Function

' The number of a statement that is current.
Function AStatement(place)
    Dim pattern, found
    Set pattern = New RegExp
    pattern.Pattern = """id"": (\d+),\s+""kind"": ""statement"",\s+""current"": true"
    Set found = pattern.Execute(Output("list --json", place, EngineOfClass()))
    AStatement = 0
    If found.Count > 0 Then AStatement = found(0).SubMatches(0)
End Function

Sub TryCompacting
    Dim before, compacted
    before = Rows("own")
    compacted = work & "\compacted.mdb"
    On Error Resume Next
    If provider = "Microsoft.Jet.OLEDB.4.0" Then
        CreateObject("JRO.JetEngine").CompactDatabase "Provider=" & provider & ";Data Source=" & Database("own"), _
            "Provider=" & provider & ";Data Source=" & compacted & ";Jet OLEDB:Engine Type=5"
    Else
        CreateObject("DAO.DBEngine.120").CompactDatabase Database("own"), compacted, ";LANGID=0x0419;CP=1251;COUNTRY=0", 64
    End If
    Expect Err.Number = 0, "the provider compacts the database of the own engine " & Err.Description
    If Err.Number <> 0 Then Exit Sub
    On Error GoTo 0
    MakePlace "compacted"
    files.CopyFile compacted, Database("compacted"), True
    Compare "the rows before and after compacting", before, Rows("compacted")
    Expect Run("db check --database " & Quoted(compacted)) = 0, "tav.exe finds no fault in the compacted file"
    Compare "the rows before and after compacting, read by the own engine", Dump("own"), Dump("compacted")
End Sub

' All rows of all tables as the provider reads them, a line each; sorted, because a table has no order.
Function Rows(place)
    Dim connection, table, answer, field, line, lines
    On Error Resume Next
    Rows = ""
    lines = ""
    Set connection = CreateObject("ADODB.Connection")
    connection.Open "Provider=" & provider & ";Data Source=" & Database(place)
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
        Expect False, "the provider reads the database """ & place & """: " & Err.Description
    Else
        Rows = Sorted(lines)
    End If
    connection.Close
End Function

' What the own engine reads there: the lines without what separates them, sorted as well.
Function Dump(place)
    Dim text, separator
    text = Output("db dump", place, "native")
    For Each separator In Array("}],", "}]", "},")
        text = Replace(text, separator, "}")
    Next
    Dump = Sorted(Replace(text, "[],", "[]"))
End Function

' What tav.exe prints about the database of a place; `engine` as TAV_ENGINE has it.
Function Output(words, place, engine)
    Dim file
    file = work & "\output.txt"
    Output = ""
    If RunCommand("cmd /c """ & Quoted(tav) & " " & words & " --database " & Quoted(Database(place)) & " > " & Quoted(file) & """", engine) <> 0 Then
        Expect False, "tav.exe " & words & " of """ & place & """"
        Exit Function
    End If
    Output = Content(file)
End Function

Function FirstLine(text)
    FirstLine = Left(text, InStr(text & vbLf, vbLf) - 1)
End Function

Function Content(file)
    Content = ContentAs(file, 0)
End Function

Function ContentAs(file, format)
    ContentAs = ""
    If files.GetFile(file).Size > 0 Then ContentAs = files.OpenTextFile(file, 1, False, format).ReadAll
End Function

' Read as pairs of bytes, which no code page changes; the last one of an odd number is seen by the system's.
Function SameBytes(file, other)
    SameBytes = False
    If file.Size <> other.Size Then Exit Function
    If ContentAs(file.Path, -1) <> ContentAs(other.Path, -1) Then Exit Function
    SameBytes = Content(file.Path) = Content(other.Path)
End Function

' The files of two folders, by their names and bytes; those of the documents as they are converted.
Sub CompareFiles(folder, other)
    Dim file, twin, left
    left = 0
    For Each file In files.GetFolder(work & "\" & folder).Files
        left = left + 1
    Next
    For Each file In files.GetFolder(work & "\" & other).Files
        twin = work & "\" & folder & "\" & file.Name
        left = left - 1
        If Not files.FileExists(twin) Then
            Expect False, "there is a file " & twin
        ElseIf Not SameBytes(file, files.GetFile(twin)) Then
            Expect False, "the same bytes: " & twin & ", " & file.Path
        End If
    Next
    Expect left = 0, "the files of """ & folder & """ are those of """ & other & """"
End Sub

Sub Compare(what, text, other_text)
    Expect text <> "" And text = other_text, "the same: " & what
    If text = other_text Then Exit Sub
    Save failures & "a", text
    Save failures & "b", other_text
End Sub

Sub Save(name, text)
    Dim file
    Set file = files.CreateTextFile(work & "\" & name & ".txt", True, True)
    file.Write text
    file.Close
End Sub

' Lines in the order of their letters.
Function Sorted(text)
    Dim lines, gap, i, j, line
    lines = Split(text, vbLf)
    gap = (UBound(lines) + 1) \ 2
    Do While gap > 0
        For i = gap To UBound(lines)
            line = lines(i)
            j = i
            Do While j >= gap
                If lines(j - gap) <= line Then Exit Do
                lines(j) = lines(j - gap)
                j = j - gap
            Loop
            lines(j) = line
        Next
        gap = gap \ 2
    Loop
    Sorted = ""
    For Each line In lines
        Sorted = Sorted & line & vbLf
    Next
End Function

Function Run(words)
    Run = RunWith(words, "native")
End Function

Function RunWith(words, engine)
    RunWith = RunCommand(Quoted(tav) & " " & words, engine)
End Function

Function RunCommand(command, engine)
    SetVariable "TAV_ENGINE", engine
    RunCommand = shell.Run(command, 0, True)
    SetVariable "TAV_ENGINE", ""
End Function

' Of this process and those that it starts. Not every script host can; then what it has been started with holds.
Sub SetVariable(name, value)
    On Error Resume Next
    environment(name) = value
End Sub

Function Quoted(path)
    Quoted = """" & path & """"
End Function

' Each line is in the file as soon as it is known: what ends this script by itself leaves those before it.
Sub OpenVerdict
    Dim folder
    On Error Resume Next
    For Each folder In Array(package, files.GetSpecialFolder(2).Path)
        Err.Clear
        verdict_path = folder & "\selftest.txt"
        Set verdict = files.CreateTextFile(verdict_path, True, True)
        If Err.Number = 0 Then Exit Sub
    Next
End Sub

Sub Note(line)
    If IsObject(verdict) Then verdict.WriteLine line
    WScript.Echo line
End Sub

Sub Expect(truth, what)
    If Not truth Then failures = failures + 1
    If truth Then Note "ok      " & what
    If Not truth Then Note "FAILED  " & what
End Sub

Sub Finish
    Set component = Nothing
    If failures > 0 Then
        Note failures & " failures; the databases are in " & work
        ForgetSettings
        Leave 1
    End If
    CleanUp
    If provider = "" Then
        Note "All is well, but nothing was tried with a provider."
        Leave 2
    End If
    Note "All is well."
    Leave 0
End Sub

Sub GiveUp(why)
    Note why
    CleanUp
    Leave 2
End Sub

Sub Leave(code)
    If IsObject(verdict) Then verdict.Close
    WScript.Echo "To send: " & verdict_path
    WScript.Quit code
End Sub

Sub CleanUp
    On Error Resume Next
    If work <> "" Then files.DeleteFolder work, True
    ForgetSettings
End Sub

Sub ForgetSettings
    shell.Run "reg delete HKCU\" & kKey & " /f", 0, True
End Sub
