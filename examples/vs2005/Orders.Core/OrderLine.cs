using System;

namespace Orders.Core
{
    /// <summary>
    /// One article of an order.
    /// </summary>
    public class OrderLine
    {
        private readonly string article;
        private readonly int quantity;
        private readonly decimal unitPrice;

        public OrderLine(string article, int quantity, decimal unitPrice)
        {
            if (quantity <= 0)
                throw new ArgumentOutOfRangeException("quantity");
            this.article = article;
            this.quantity = quantity;
            this.unitPrice = unitPrice;
        }

        public string Article
        {
            get { return article; }
        }

        public int Quantity
        {
            get { return quantity; }
        }

        public decimal UnitPrice
        {
            get { return unitPrice; }
        }

        public decimal Amount
        {
            get { return quantity * unitPrice; }
        }
    }
}
