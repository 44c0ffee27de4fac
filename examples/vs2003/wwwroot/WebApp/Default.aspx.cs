using System;
using System.Web.UI.WebControls;
using Billing.Core;

namespace WebApp
{
	/// <summary>
	/// Shows the gross amount of a sample invoice.
	/// </summary>
	public class DefaultPage : System.Web.UI.Page
	{
		protected Label GrossLabel;

		private void Page_Load(object sender, System.EventArgs e)
		{
			Invoice invoice = new Invoice("Alder & Sons", 1250m, 190);
			GrossLabel.Text = invoice.Gross.ToString("F2");
		}

		#region Web Form Designer generated code
		override protected void OnInit(EventArgs e)
		{
			InitializeComponent();
			base.OnInit(e);
		}

		/// <summary>
		/// Required method for Designer support - do not modify
		/// the contents of this method with the code editor.
		/// </summary>
		private void InitializeComponent()
		{
			this.Load += new System.EventHandler(this.Page_Load);
		}
		#endregion
	}
}
