' A late-bound client, as a script of the suite would be: every way in which a script passes arguments.
' Ends with "OK" and the number of checks, or with the checks that failed.
Option Explicit

Class Window
  Public hWnd
End Class

Dim checks, failures
checks = 0
failures = 0

Sub Check(what, actual, expected)
  checks = checks + 1
  If TypeName(actual) <> TypeName(expected) Or CStr(actual) <> CStr(expected) Then
    failures = failures + 1
    WScript.Echo what & ": expected " & TypeName(expected) & " " & expected & ", got " & TypeName(actual) & " " & actual
  End If
End Sub

Sub CheckError(what, expected)
  Check what, Hex(Err.Number), expected
  Err.Clear
End Sub

Dim general, user, password, flags, key, index, word, nothingAtAll, nulled, caller, last, target, list
Set general = CreateObject("Quenta_Produtos.General")

' Before the session is open nothing happens, and nothing is raised.
general.Registo Nothing, 5, "", "", Nothing

user = "ana"
password = ""
flags = "0"
Check "Login without settings", general.Login(user, password), False
Check "SQLConnect with variables, literals and a number as text", _
  general.SQLConnect(user, password, "base", "", "Loja", "srv", "srv", flags), True
Check "a variable keeps its type", flags, "0"
Check "a text variable", user, "ana"
Check "Login while connected", general.Login(123, Empty), True

key = 7
index = "8"
word = "tbProdutos"
nulled = Null
Set nothingAtAll = Nothing
Set caller = New Window
caller.hWnd = 0
last = 9.5

general.ObjectOpen Nothing, key, word, "", nothingAtAll, index, nulled, last
general.ObjectOpen nothingAtAll, "11", word, word, caller, 1, caller, 2
general.ObjectOpen Empty, 12.5, Null, 0, Null, Empty, Empty, Empty
general.ObjectOpen , 13
general.ObjectOpen Nothing, CByte(14), , , , CInt(3), 5, CDbl(4)
general.Registo Nothing, CLng(15), word, word, Nothing
general.Registo Nothing, key
list = Array(21, 22)
general.Registo Nothing, list(1), "", "", caller
general.Registo Nothing, Empty, "", "", Nothing
Check "an Integer variable stays one", TypeName(key), "Integer"
Check "a text index stays text", index, "8"
Check "a Null variable stays Null", TypeName(nulled), "Null"
Check "a Double variable stays one", last, 9.5
Check "an object variable stays", nothingAtAll Is Nothing, True

' The last object goes: the session stays with the library.
Set general = Nothing
Set general = CreateObject("Quenta_Produtos.General")
general.Registo Nothing, 31, "", "", Nothing

On Error Resume Next
general.Registo Nothing, 1, "", "", "a text is no window"
CheckError "a text for an object", "D"
general.ObjectOpen Nothing, 1, "", "", Nothing, "words", Empty, 0
CheckError "words for a number", "D"
general.ObjectOpen Nothing, 1, "", "", Nothing, 4000000000, Empty, 0
CheckError "too large a number", "6"
general.Registo Nothing, 1, "", "", Nothing, 6
CheckError "too many arguments", "1C2"
general.Fechar
CheckError "an unknown method", "1B6"
On Error GoTo 0

If failures = 0 Then
  WScript.Echo "OK " & checks & " checks"
Else
  WScript.Echo failures & " of " & checks & " checks failed"
  WScript.Quit 1
End If
