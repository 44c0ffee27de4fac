using System;
using System.Text;

namespace Tools.Core
{
	/// <summary>
	/// Collects named values and formats them as a plain-text report
	/// with a total line.
	/// </summary>
	public class ReportBuilder
	{
		private string title;
		private StringBuilder lines = new StringBuilder();
		private int total;

		public ReportBuilder(string title)
		{
			this.title = title;
		}

		public void AddLine(string name, int value)
		{
			lines.AppendFormat("{0,-20}{1,8}\r\n", name, value);
			total += value;
		}

		public int Total
		{
			get { return total; }
		}

		public override string ToString()
		{
			return title + "\r\n" + lines.ToString() + String.Format("{0,-20}{1,8}", "Total", total);
		}
	}
}
