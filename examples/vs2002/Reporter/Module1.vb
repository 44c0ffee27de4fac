Imports Tools.Core

Module Module1

    ' Exported by NativeHelper.dll (see NativeHelper.def).
    Private Declare Ansi Function NativeChecksum Lib "NativeHelper.dll" (ByVal text As String) As Integer

    Sub Main()
        Dim report As New ReportBuilder("Weekly totals")
        report.AddLine("Widgets", 42)
        report.AddLine("Gadgets", 17)
        report.AddLine("Sprockets", 5)

        Dim text As String = report.ToString()
        Console.WriteLine(text)
        Console.WriteLine("Checksum: " & NativeChecksum(text).ToString("X4"))
    End Sub

End Module
