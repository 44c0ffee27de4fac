using System;
using System.Collections.Generic;

namespace Orders.Core
{
    /// <summary>
    /// A customer order: a number and its lines.
    /// </summary>
    public class Order
    {
        private readonly string number;
        private readonly List<OrderLine> lines = new List<OrderLine>();

        public Order(string number)
        {
            if (String.IsNullOrEmpty(number))
                throw new ArgumentException("An order needs a number.", "number");
            this.number = number;
        }

        public string Number
        {
            get { return number; }
        }

        public IList<OrderLine> Lines
        {
            get { return lines.AsReadOnly(); }
        }

        public void Add(string article, int quantity, decimal unitPrice)
        {
            lines.Add(new OrderLine(article, quantity, unitPrice));
        }

        public decimal Total
        {
            get
            {
                decimal total = 0m;
                foreach (OrderLine line in lines)
                    total += line.Amount;
                return total;
            }
        }
    }
}
