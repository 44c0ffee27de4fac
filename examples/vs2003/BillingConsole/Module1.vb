Imports Billing.Core
Imports BillingBridge

Module Module1

    Sub Main()
        Dim invoices() As Invoice = { _
            New Invoice("Alder & Sons", 1250D, 190), _
            New Invoice("Birchwood Ltd", 99.99D, 70), _
            New Invoice("Cedar Works", 0.05D, 190)}

        For Each inv As Invoice In invoices
            Dim nativeTax As Decimal = TaxCalculator.TaxOf(inv)
            Console.WriteLine("{0,-16}{1,10:F2}{2,10:F2}{3,10:F2}", _
                inv.Customer, inv.Net, inv.Tax, nativeTax)
#If DEBUG Then
            Debug.Assert(inv.Tax = nativeTax, "Managed and native tax differ")
#End If
        Next
    End Sub

End Module
