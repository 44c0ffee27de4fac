using System;
using Greeting.Lib;

namespace Greeting.Tests
{
    /// <summary>
    /// Self-contained checks of the Greeter class. Prints one line per failed
    /// check and a summary; the exit code is the number of failed checks.
    /// </summary>
    class GreeterChecks
    {
        static int failed;
        static int passed;

        static int Main()
        {
            Check("default salutation", "Hello, Ann!", new Greeter().Greet("Ann"));
            Check("own salutation", "Good morning, Bob!", new Greeter("Good morning").Greet("Bob"));
            Check("missing name", "Hello, World!", new Greeter().Greet(null));
            Check("blank name", "Hello, World!", new Greeter().Greet("   "));
            Check("name is trimmed", "Hello, Cy!", new Greeter().Greet("  Cy "));

            bool threw = false;
            try
            {
                new Greeter(null);
            }
            catch (ArgumentNullException)
            {
                threw = true;
            }
            Check("null salutation refused", "True", threw.ToString());

            Console.WriteLine("{0} passed, {1} failed", passed, failed);
            return failed;
        }

        static void Check(string what, string expected, string actual)
        {
            if (expected == actual)
            {
                passed++;
                return;
            }
            failed++;
            Console.WriteLine("FAILED {0}: expected \"{1}\", got \"{2}\"", what, expected, actual);
        }
    }
}
