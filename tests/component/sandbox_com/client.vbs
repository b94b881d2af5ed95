' Uses ADO as a script of the suite does, and writes what it sees; the test compares the lines.
' Argument: the name of an environment variable that holds the connection string.
Option Explicit

' Scripts write truth values in the user's language.
Function Truth(value)
  If value Then Truth = "True" Else Truth = "False"
End Function

Dim environment, connection_string
Set environment = CreateObject("WScript.Shell").Environment("Process")
connection_string = environment(WScript.Arguments(0))

Dim cn, rs, affected, rows, i

Set cn = CreateObject("ADODB.Connection")
WScript.Echo "closed: " & cn.State
cn.ConnectionTimeout = 5
cn.Open connection_string, , , 16
Do While cn.State = 2  ' no WScript.Sleep here: Wine's script host has none
Loop
WScript.Echo "open: " & cn.State

cn.Execute "CREATE TABLE script_products (produto_id INT NOT NULL PRIMARY KEY, nome VARCHAR(50) NULL, preco MONEY NULL, data DATETIME NULL)"
cn.Execute "INSERT INTO script_products VALUES (1, 'Caneta', 12.5, CONVERT(DATETIME,'2017-12-31',102))", affected
cn.Execute "INSERT INTO script_products VALUES (2, null, null, null), (3, 'Lapis', 0.25, null)"

Set rs = cn.Execute("SELECT * FROM script_products ORDER BY produto_id")
WScript.Echo "field: " & rs.Fields(0).Name & " " & rs("produto_id")
WScript.Echo "field: " & rs.Fields("NOME").Name & " " & rs.Fields.Item(1)
WScript.Echo "field: " & rs.Fields("preco").Name & " " & TypeName(rs("preco").Value)
rows = rs.GetRows()
WScript.Echo "rows: " & UBound(rows, 1) & " " & UBound(rows, 2) & " " & rows(1, 2) & " " & Truth(IsNull(rows(1, 1))) & " " & Truth(rs.EOF)
rs.Close

On Error Resume Next
cn.Execute "SELECT * FROM script_nothing"
WScript.Echo Hex(Err.Number) & " " & Err.Description
WScript.Echo cn.Errors.Count & " " & Truth(cn.Errors(0).Number = Err.Number) & " " & Truth(cn.Errors(0).Description = Err.Description)
Err.Clear
Set rs = cn.Execute("SELECT * FROM script_products")
i = rs("nada")
WScript.Echo Err.Number And 65535
rs.Close
Err.Clear
On Error GoTo 0

WScript.Echo "level: " & cn.BeginTrans
cn.Execute "DELETE FROM script_products"
cn.RollbackTrans
Set rs = cn.Execute("SELECT COUNT(*) AS n FROM script_products")
WScript.Echo "after rollback: " & rs("n")
rs.Close
cn.Execute "DROP TABLE script_products"
cn.Close
WScript.Echo "closed: " & cn.State
