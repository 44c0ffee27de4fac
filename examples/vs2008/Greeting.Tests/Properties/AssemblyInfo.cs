using System.Reflection;

// Kept short on purpose: no trademark and no file version here.
[assembly: AssemblyTitle("Greeting.Tests")]
[assembly: AssemblyDescription("Checks for Greeting.Lib")]
[assembly: AssemblyCompany("Harbor Lane Software")]
[assembly: AssemblyProduct("Greeting")]
[assembly: System.Reflection.AssemblyCopyrightAttribute("Copyright © Harbor Lane Software 2008")]
[assembly: AssemblyVersion("1.2.*")]
