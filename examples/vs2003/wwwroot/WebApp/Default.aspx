<%@ Page language="c#" Codebehind="Default.aspx.cs" AutoEventWireup="false" Inherits="WebApp.DefaultPage" %>
<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 4.0 Transitional//EN" >
<HTML>
	<HEAD>
		<title>Billing</title>
		<meta name="GENERATOR" Content="Microsoft Visual Studio .NET 7.1">
		<meta name="CODE_LANGUAGE" Content="C#">
	</HEAD>
	<body>
		<form id="Form1" method="post" runat="server">
			<P>Gross amount:
				<asp:Label id="GrossLabel" runat="server"></asp:Label></P>
		</form>
	</body>
</HTML>
