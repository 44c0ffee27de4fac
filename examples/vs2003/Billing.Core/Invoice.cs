using System;

namespace Billing.Core
{
	/// <summary>
	/// An invoice amount before tax and the tax rate that applies to it.
	/// </summary>
	public class Invoice
	{
		private string customer;
		private decimal net;
		private int ratePermille;

		/// <param name="customer">Name of the invoiced customer.</param>
		/// <param name="net">Amount before tax.</param>
		/// <param name="ratePermille">Tax rate in tenths of a percent (190 is 19%).</param>
		public Invoice(string customer, decimal net, int ratePermille)
		{
			if (ratePermille < 0)
				throw new ArgumentOutOfRangeException("ratePermille");
			this.customer = customer;
			this.net = net;
			this.ratePermille = ratePermille;
		}

		public string Customer
		{
			get { return customer; }
		}

		public decimal Net
		{
			get { return net; }
		}

		public int RatePermille
		{
			get { return ratePermille; }
		}

		/// <summary>
		/// Tax computed in managed code, rounded half away from zero to cents.
		/// </summary>
		public decimal Tax
		{
			get
			{
				decimal cents = net * ratePermille / 10m;
				return Decimal.Truncate(cents + (cents < 0 ? -0.5m : 0.5m)) / 100m;
			}
		}

		public decimal Gross
		{
			get { return net + Tax; }
		}
	}
}
