using System;
using Greeting.Lib;

namespace Greeting.ConsoleApp
{
    /// <summary>
    /// Prints a greeting, then the conditional compilation symbols that this
    /// program and the library were compiled with, for example:
    ///   Hello, World!
    ///   Version: 1.2.42.0
    ///   Symbols: DEBUG=on TRACE=on EXTRA=off
    ///   Library symbols: DEBUG TRACE
    /// </summary>
    class Program
    {
        static int Main(string[] args)
        {
            Greeter greeter = new Greeter();
            string name = args.Length > 0 ? String.Join(" ", args) : null;

            Console.WriteLine(greeter.Greet(name));
            Console.WriteLine("Version: " + typeof(Program).Assembly.GetName().Version);
            Console.WriteLine("Symbols: " + DescribeSymbols());
            Console.WriteLine("Library symbols: " + Greeter.BuildSymbols);
            return 0;
        }

        static string DescribeSymbols()
        {
            string text = "";
#if DEBUG
            text += "DEBUG=on";
#else
            text += "DEBUG=off";
#endif
#if TRACE
            text += " TRACE=on";
#else
            text += " TRACE=off";
#endif
#if EXTRA
            text += " EXTRA=on";
#else
            text += " EXTRA=off";
#endif
            return text;
        }
    }
}
