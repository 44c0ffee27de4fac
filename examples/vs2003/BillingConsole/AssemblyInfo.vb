Imports System
Imports System.Reflection
Imports System.Runtime.InteropServices

' General Information about an assembly is controlled through the following 
' set of attributes. Change these attribute values to modify the information
' associated with an assembly.

' Review the values of the assembly attributes

<Assembly: AssemblyTitle("BillingConsole")> 
<Assembly: AssemblyDescription("Prints invoice totals")> 
<Assembly: AssemblyCompany("Harbor Lane Software")> 
<Assembly: AssemblyProduct("Billing")> 
<Assembly: AssemblyCopyright("Copyright (C) Harbor Lane Software 2004")> 
<Assembly: AssemblyTrademark("")> 
<Assembly: CLSCompliant(True)> 

'The following GUID is for the ID of the typelib if this project is exposed to COM
<Assembly: Guid("6DED8838-01B2-4F5B-A805-22BED67FB2A9")> 

' Version information for an assembly consists of the following four values:
'
'      Major Version
'      Minor Version 
'      Build Number
'      Revision
'
' You can set all the values or you can default the Build and Revision Numbers 
' by using the '*' as shown below:

<Assembly: AssemblyVersion("1.0.*")> 
