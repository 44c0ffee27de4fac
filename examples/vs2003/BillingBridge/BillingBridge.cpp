// This is the main DLL file.

#include "stdafx.h"

#include "BillingBridge.h"

// Exported by NativeCalc.dll (see NativeCalc.def).
extern "C" long __stdcall CalcTaxCents(long netCents, long ratePermille);

namespace BillingBridge
{
	Decimal TaxCalculator::TaxOf(Billing::Core::Invoice* invoice)
	{
		if (invoice == 0)
			throw new ArgumentNullException(S"invoice");

		long netCents = Decimal::ToInt32(Decimal::Multiply(invoice->Net, Decimal(100)));
		long taxCents = CalcTaxCents(netCents, invoice->RatePermille);
		return Decimal::Divide(Decimal(taxCents), Decimal(100));
	}
}
