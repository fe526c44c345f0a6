# miraclient from PowerShell, by way of the C# class. UNTRIED: this script is read, not run, by those
# who keep it. A 32-bit DLL needs the 32-bit PowerShell (SysWOW64). What it expects is the simulated
# machine "locked": let it run with MIRA_SIM=locked.
#
#   powershell -File tour.ps1 -Library C:\mira\sim\miraclient.dll

param([Parameter(Mandatory)][string]$Library)

$ErrorActionPreference = 'Stop'
# The class finds the DLL by its name once it is loaded.
Add-Type -Namespace Native -Name Loader -MemberDefinition @'
[DllImport("kernel32", CharSet = CharSet.Unicode, SetLastError = true)]
public static extern IntPtr LoadLibrary(string path);
'@
if ([Native.Loader]::LoadLibrary($Library) -eq [IntPtr]::Zero) { throw "$Library cannot be loaded" }
Add-Type -Path (Join-Path $PSScriptRoot '../csharp/MiraClient.cs')

function Send-MiraRequest($Machine, [hashtable]$Request, $Secrets) {
    ConvertFrom-Json $Machine.Request((ConvertTo-Json $Request -Depth 8), $Secrets, $null)
}

$machine = [MiraClient.Machine]::new()
try {
    $list = Send-MiraRequest $machine @{ command = 'attr.list' }
    $list.attributes | Select-Object name, current | Format-Table

    $secrets = [System.Collections.Generic.Dictionary[string, byte[]]]::new()
    $secrets['password'] = [Text.Encoding]::UTF8.GetBytes('setup1')
    $change = @{ command = 'attr.set'; name = 'FanFloor'; value = 30 }
    try { Send-MiraRequest $machine $change } catch { "Without the password: $($_.Exception.Message)" }
    Send-MiraRequest $machine $change $secrets
    [Array]::Clear($secrets['password'], 0, $secrets['password'].Length)

    $record = [MiraClient.Record]::Of(0, 0, @([uint32]0x78))
    [void]$machine.Call([ref]$record, $null)
    "The setting at 0x78 is $($record.Results[0])"
} finally {
    $machine.Dispose()
}
