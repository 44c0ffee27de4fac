using System;

namespace Greeting.Lib
{
    /// <summary>
    /// Builds greeting texts.
    /// </summary>
    public class Greeter
    {
        private readonly string salutation;

        public Greeter()
            : this("Hello")
        {
        }

        public Greeter(string salutation)
        {
            if (salutation == null)
                throw new ArgumentNullException("salutation");
            this.salutation = salutation;
        }

        public string Salutation
        {
            get { return salutation; }
        }

        /// <summary>
        /// Greets the given name; an empty or missing name greets the world.
        /// </summary>
        public string Greet(string name)
        {
            if (name == null || name.Trim().Length == 0)
                name = "World";
            return salutation + ", " + name.Trim() + "!";
        }

        /// <summary>
        /// The conditional compilation symbols this assembly was compiled with,
        /// separated by blanks, in the order DEBUG, TRACE, EXTRA.
        /// </summary>
        public static string BuildSymbols
        {
            get
            {
                string symbols = "";
#if DEBUG
                symbols += " DEBUG";
#endif
#if TRACE
                symbols += " TRACE";
#endif
#if EXTRA
                symbols += " EXTRA";
#endif
                return symbols.Trim();
            }
        }
    }
}
