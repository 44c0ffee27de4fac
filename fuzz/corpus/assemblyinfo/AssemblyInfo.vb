Imports System
Imports System.Reflection
Imports System.Runtime.InteropServices

' General Information about an assembly is controlled through the following
' set of attributes. Change these attribute values to modify the information
' associated with an assembly.

' Review the values of the assembly attributes

<Assembly: AssemblyTitle("Ledger")>
<Assembly: AssemblyDescription("")>
<Assembly: AssemblyCompany("Contoso Ltd.")>
<Assembly: AssemblyProduct("Ledger")>
<Assembly: AssemblyCopyright("Copyright © Contoso 2005")>
<Assembly: AssemblyTrademark("")>
<Assembly: CLSCompliant(True)>

'The following GUID is for the ID of the typelib if this project is exposed to COM
<Assembly: Guid("8b2c6d4e-0f1a-4b3c-9d5e-7f8a9b0c1d2e")>

' Version information for an assembly consists of the following four values:
'
'      Major Version
'      Minor Version
'      Build Number
'      Revision
'
' You can specify all the values or you can default the Build and Revision Numbers
' by using the '*' as shown below:

<Assembly: AssemblyVersion("1.0.*")>
