using System.Reflection;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;

// General Information about an assembly is controlled through the following
// set of attributes. Change these attribute values to modify the information
// associated with an assembly.
[assembly: AssemblyTitle("Scribble")]
[assembly: System.Reflection.AssemblyDescriptionAttribute("Drawing sample")]
[assembly: AssemblyConfiguration("")]
[assembly: AssemblyCompany("Contoso Ltd.")]
[assembly: AssemblyProduct("Scribble")]
[assembly: AssemblyCopyright("Copyright © Contoso 2007")]
[assembly: AssemblyTrademark("")]
[assembly: AssemblyCulture("")]
//[assembly: AssemblyComment("not used")]

// Setting ComVisible to false makes the types in this assembly not visible
// to COM components.
[assembly: ComVisible(false)]

// The following GUID is for the ID of the typelib if this project is exposed to COM
[assembly: Guid("3f5e8c2a-1b4d-4e6f-9a7c-0d2e4b6f8a1c")]

#if DEBUG
[assembly: AssemblyVersion("1.0.*")]
#else
    [assembly : AssemblyVersion("1.0.0.0")]
#endif
[assembly: AssemblyFileVersion("1.0.0.0")]
