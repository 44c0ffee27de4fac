// BillingBridge.h

#pragma once

using namespace System;

namespace BillingBridge
{
	/// Tax computation of NativeCalc.dll, for .NET callers.
	public __gc class TaxCalculator
	{
	public:
		static Decimal TaxOf(Billing::Core::Invoice* invoice);
	};
}
