# Runs the database contract on this machine's genuine ADO and a SQL Server, and writes a report for docs/ado.md.
#
#   powershell -ExecutionPolicy Bypass -File confirm_ado.ps1 -Server .\SQLEXPRESS -Catalogue Ensaio
#
# Needs ado_contract_tests.exe of either width beside it, and a SQL Server login that may create tables in the catalogue:
# the suite makes tables named contract_..., and drops them again. User and password are asked for; they are handed to the
# tests through the environment of this one process and are written nowhere.
param(
    [Parameter(Mandatory = $true)] [string] $Server,
    [Parameter(Mandatory = $true)] [string] $Catalogue,
    [string] $Options = "",
    [string] $Tests = (Join-Path $PSScriptRoot "ado_contract_tests.exe"),
    [string] $Report = (Join-Path (Get-Location) "confirm_ado_report.txt")
)
$ErrorActionPreference = "Stop"

if (-not (Test-Path $Tests)) { throw "There is no $Tests." }
$class = "Registry::HKEY_CLASSES_ROOT\CLSID\{00000514-0000-0010-8000-00AA006D2EA4}\InprocServer32"
$library = [Environment]::ExpandEnvironmentVariables((Get-ItemProperty $class)."(default)")
if ($library -notmatch "msado15\.dll") { throw "ADODB.Connection is $library here, not the genuine one." }

$credential = Get-Credential -Message "SQL Server login that may create tables in $Catalogue"
$login = $credential.GetNetworkCredential()
$env:QUENTA_CONTRACT_SERVER = $Server
$env:QUENTA_CONTRACT_CATALOGUE = $Catalogue
$env:QUENTA_CONTRACT_USER = $credential.UserName.TrimStart("\")
$env:QUENTA_CONTRACT_PASSWORD = $login.Password
$env:QUENTA_CONTRACT_OPTIONS = $Options
Remove-Item Env:QUENTA_CONTRACT_FOLDER -ErrorAction SilentlyContinue

try {
    $connection = New-Object -ComObject ADODB.Connection
    $connection.Open("Provider=SQLOLEDB.1;Initial Catalog=$Catalogue;Data Source=$Server;$Options",
        $env:QUENTA_CONTRACT_USER, $env:QUENTA_CONTRACT_PASSWORD)
    $serverVersion = $connection.Execute("SELECT @@VERSION AS v").Fields.Item("v").Value
    $collation = $connection.Execute(
        "SELECT CONVERT(VARCHAR(100), DATABASEPROPERTYEX(DB_NAME(), 'Collation')) AS c").Fields.Item("c").Value
    $connection.Close()

    @(
        "Date:      $(Get-Date -Format s)"
        "Windows:   $([Environment]::OSVersion.VersionString)"
        "ADO:       $($connection.Version), $library $((Get-Item $library).VersionInfo.FileVersion)"
        "Server:    $serverVersion"
        "Collation: $collation"
        "Options:   $Options"
        ""
    ) | Set-Content -Encoding UTF8 $Report

    # Every test by itself in the report: one row of docs/ado.md hangs on each.
    $ErrorActionPreference = "Continue"
    & $Tests "--gtest_color=no" 2>&1 | ForEach-Object { "$_" } | Add-Content -Encoding UTF8 $Report
    $failed = $LASTEXITCODE
}
finally {
    Remove-Item Env:QUENTA_CONTRACT_PASSWORD, Env:QUENTA_CONTRACT_USER -ErrorAction SilentlyContinue
}

Get-Content $Report | Select-String "^\[  (PASSED|FAILED)"
Write-Host "The report is in $Report."
exit $failed
