Imports Orders.Core

Module Module1

    ' Exported by OrderNative.dll (see OrderNative.def).
    Private Declare Function OrderCheckDigit Lib "OrderNative.dll" (ByVal number As String) As Integer

    Function Main(ByVal args() As String) As Integer
        Dim number As String = "100234"
        If args.Length > 0 Then number = args(0)

        Dim order As New Order(number)
        order.Add("Paper, A4, 500 sheets", 4, 3.95D)
        order.Add("Stapler", 1, 12.5D)

        Console.WriteLine("Order {0}-{1}", order.Number, OrderCheckDigit(order.Number))
        For Each line As OrderLine In order.Lines
            Console.WriteLine("  {0,-24}{1,4} x {2,8:F2} = {3,9:F2}", line.Article, line.Quantity, line.UnitPrice, line.Amount)
        Next
        Console.WriteLine("  {0,-24}{1,26:F2}", "Total", order.Total)
#If DEBUG Then
        Console.WriteLine("(debug build)")
#End If
        Return 0
    End Function

End Module
