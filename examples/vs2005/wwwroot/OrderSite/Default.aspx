<%@ Page Language="C#" %>
<%@ Import Namespace="Orders.Core" %>

<!DOCTYPE html PUBLIC "-//W3C//DTD XHTML 1.0 Transitional//EN" "http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd">

<script runat="server">

    protected void Page_Load(object sender, EventArgs e)
    {
        Order order = new Order("100234");
        order.Add("Stapler", 1, 12.5m);
        order.Add("Paper, A4, 500 sheets", 4, 3.95m);
        NumberLabel.Text = order.Number;
        TotalLabel.Text = order.Total.ToString("F2");
    }

</script>

<html xmlns="http://www.w3.org/1999/xhtml" >
<head runat="server">
    <title>Order Desk</title>
</head>
<body>
    <form id="form1" runat="server">
    <div>
        Order <asp:Label ID="NumberLabel" runat="server" />:
        total <asp:Label ID="TotalLabel" runat="server" />
    </div>
    </form>
</body>
</html>
