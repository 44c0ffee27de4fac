// Quorvex.MSBuild.Tasks: the MSBuild logger that reports a build to the Quorvex host as
// tagged lines on standard output, read back by TQvMSBuildStructuredOutputHelper
// (QvMSBuildOutput.h).
//
// Usage: MSBuild.exe /logger:<folder>/Quorvex.MSBuild.Tasks.dll /noconlog /v:normal ...
//
// Line protocol (version 1). Every event is exactly one line, written and flushed at once:
//
//   @@qv:<kind>[\t<field>]...
//
// Fields are separated by one tab. Inside a field a backslash is written as \\, a tab as
// \t, a carriage return as \r and a line feed as \n, so a field never holds a tab or a line
// break. A missing text is an empty field; numbers are decimal; Booleans are True or False.
//
//   @@qv:buildStarted
//   @@qv:projectStarted\t<projectFile>\t<targetNames>
//       targetNames as MSBuild gives them (";"-separated, empty for the default targets).
//   @@qv:projectFinished\t<projectFile>\t<True|False>
//   @@qv:error\t<projectFile>\t<file>\t<line>\t<column>\t<code>\t<message>
//   @@qv:warning\t<projectFile>\t<file>\t<line>\t<column>\t<code>\t<message>
//       projectFile: the project that raised it: the event's own project file when MSBuild
//       names one, else the project of its build context, else the innermost project that
//       has started and not yet finished (xbuild names none). line and column are 0 when
//       unknown.
//   @@qv:message\t<High|Normal|Low>\t<text>
//       Only the messages the verbosity asks for: High from minimal on, Normal from normal
//       on, Low from detailed on; none at quiet.
//   @@qv:buildFinished\t<True|False>
//
// Built with QV_PROJECT_INSTANCES defined (for the .NET SDK's MSBuild, not for xbuild), the
// project instance of an event (MSBuild's project context id) is appended: projectStarted gets \t<instance>\t<parent instance>,
// projectFinished, error, warning and message get \t<instance>; the field is empty when
// unknown. With /m events of several projects arrive interleaved, and the instance says
// which project each belongs to.
//
// Projects, errors, warnings and the build events are written at every verbosity: the
// reader builds its log groups and counts from them. Readers ignore kinds they do not
// know, so later versions may add kinds or append fields.
//
// Verbosity: "verbosity=<level>" in the logger parameters
// (/logger:Quorvex.MSBuild.Tasks.dll;verbosity=detailed) wins; then the verbosity the engine
// sets (MSBuild passes /v: on); an engine that sets none (xbuild) has the /v: or
// /verbosity: switch read from its command line; normal otherwise.

using System;
using System.Collections.Generic;
using System.IO;
using System.Text;
using Microsoft.Build.Framework;

namespace Quorvex.MSBuild.Tasks
{
    public class QvStructuredLogger : ILogger
    {
        const string Prefix = "@@qv:";

        LoggerVerbosity verbosity = LoggerVerbosity.Normal;
        string parameters;
        bool verbosityFromParameters;
        bool verbositySet;
        TextWriter output;
        readonly object outputLock = new object();
        readonly List<string> projectStack = new List<string>();
        readonly Dictionary<int, string> projectsByContext = new Dictionary<int, string>();
        readonly StringBuilder line = new StringBuilder(256);

        public LoggerVerbosity Verbosity
        {
            get { return verbosity; }
            set
            {
                verbositySet = true;
                if (!verbosityFromParameters)
                    verbosity = value;
            }
        }

        public string Parameters
        {
            get { return parameters; }
            set
            {
                parameters = value;
                ApplyParameters(value);
            }
        }

        public void Initialize(IEventSource eventSource)
        {
            if (!verbositySet && !verbosityFromParameters)
                verbosity = VerbosityFromCommandLine(Environment.GetCommandLineArgs(), verbosity);
            // Our own writer, so that the text is UTF-8 whatever the console's code page,
            // and so that each line leaves in one write.
            output = new StreamWriter(Console.OpenStandardOutput(), new UTF8Encoding(false));
            eventSource.BuildStarted += OnBuildStarted;
            eventSource.BuildFinished += OnBuildFinished;
            eventSource.ProjectStarted += OnProjectStarted;
            eventSource.ProjectFinished += OnProjectFinished;
            eventSource.ErrorRaised += OnError;
            eventSource.WarningRaised += OnWarning;
            eventSource.MessageRaised += OnMessage;
        }

        public void Shutdown()
        {
            lock (outputLock)
            {
                // Flush only: standard output belongs to the process, not to us.
                if (output != null)
                    output.Flush();
            }
        }

        void ApplyParameters(string text)
        {
            if (string.IsNullOrEmpty(text))
                return;
            foreach (string item in text.Split(';'))
            {
                int eq = item.IndexOf('=');
                if (eq < 0)
                    continue;
                string name = item.Substring(0, eq).Trim();
                string value = item.Substring(eq + 1).Trim();
                if (!string.Equals(name, "verbosity", StringComparison.OrdinalIgnoreCase)
                    && !string.Equals(name, "v", StringComparison.OrdinalIgnoreCase))
                    continue;
                LoggerVerbosity parsed;
                if (TryParseVerbosity(value, out parsed))
                {
                    verbosity = parsed;
                    verbosityFromParameters = true;
                }
            }
        }

        // The last /v: switch wins, as on MSBuild's own command line.
        static LoggerVerbosity VerbosityFromCommandLine(string[] args, LoggerVerbosity fallback)
        {
            LoggerVerbosity result = fallback;
            foreach (string arg in args)
            {
                if (arg.Length < 2 || (arg[0] != '/' && arg[0] != '-'))
                    continue;
                int colon = arg.IndexOf(':');
                if (colon < 0)
                    continue;
                string name = arg.Substring(1, colon - 1).ToLowerInvariant();
                LoggerVerbosity parsed;
                if ((name == "v" || name == "verbosity")
                    && TryParseVerbosity(arg.Substring(colon + 1), out parsed))
                    result = parsed;
            }
            return result;
        }

        static bool TryParseVerbosity(string value, out LoggerVerbosity result)
        {
            switch (value.ToLowerInvariant())
            {
                case "q": case "quiet": result = LoggerVerbosity.Quiet; return true;
                case "m": case "minimal": result = LoggerVerbosity.Minimal; return true;
                case "n": case "normal": result = LoggerVerbosity.Normal; return true;
                case "d": case "detailed": result = LoggerVerbosity.Detailed; return true;
                case "diag": case "diagnostic": result = LoggerVerbosity.Diagnostic; return true;
            }
            result = LoggerVerbosity.Normal;
            return false;
        }

        void OnBuildStarted(object sender, BuildStartedEventArgs e)
        {
            Emit("buildStarted");
        }

        void OnBuildFinished(object sender, BuildFinishedEventArgs e)
        {
            Emit("buildFinished", Bool(e.Succeeded));
        }

        void OnProjectStarted(object sender, ProjectStartedEventArgs e)
        {
            lock (outputLock)
            {
                projectStack.Add(e.ProjectFile ?? "");
                int context = ProjectContextOf(e.BuildEventContext);
                if (context != BuildEventContext.InvalidProjectContextId)
                    projectsByContext[context] = e.ProjectFile ?? "";
            }
#if QV_PROJECT_INSTANCES
            string parent = Instance(e.ParentProjectBuildEventContext);
#else
            string parent = "";
#endif
            Emit("projectStarted", e.ProjectFile, e.TargetNames, Instance(e.BuildEventContext),
                 parent);
        }

        void OnProjectFinished(object sender, ProjectFinishedEventArgs e)
        {
            lock (outputLock)
            {
                // Finishes arrive innermost first; search from the top so that a project
                // built twice closes its latest start.
                string file = e.ProjectFile ?? "";
                int at = projectStack.LastIndexOf(file);
                if (at >= 0)
                    projectStack.RemoveRange(at, projectStack.Count - at);
            }
            Emit("projectFinished", e.ProjectFile, Bool(e.Succeeded), Instance(e.BuildEventContext));
        }

        void OnError(object sender, BuildErrorEventArgs e)
        {
            Emit("error", ProjectOf(e.ProjectFile, e.BuildEventContext), e.File,
                 Number(e.LineNumber), Number(e.ColumnNumber), e.Code, e.Message,
                 Instance(e.BuildEventContext));
        }

        void OnWarning(object sender, BuildWarningEventArgs e)
        {
            Emit("warning", ProjectOf(e.ProjectFile, e.BuildEventContext), e.File,
                 Number(e.LineNumber), Number(e.ColumnNumber), e.Code, e.Message,
                 Instance(e.BuildEventContext));
        }

        void OnMessage(object sender, BuildMessageEventArgs e)
        {
            if (!Wants(e.Importance))
                return;
            Emit("message", e.Importance.ToString(), e.Message, Instance(e.BuildEventContext));
        }

        bool Wants(MessageImportance importance)
        {
            switch (importance)
            {
                case MessageImportance.High:
                    return verbosity >= LoggerVerbosity.Minimal;
                case MessageImportance.Normal:
                    return verbosity >= LoggerVerbosity.Normal;
                default:
                    return verbosity >= LoggerVerbosity.Detailed;
            }
        }

        static int ProjectContextOf(BuildEventContext context)
        {
            return context == null ? BuildEventContext.InvalidProjectContextId
                                   : context.ProjectContextId;
        }

        string ProjectOf(string eventProjectFile, BuildEventContext context)
        {
            if (!string.IsNullOrEmpty(eventProjectFile))
                return eventProjectFile;
            lock (outputLock)
            {
                string file;
                int id = ProjectContextOf(context);
                if (id != BuildEventContext.InvalidProjectContextId
                    && projectsByContext.TryGetValue(id, out file))
                    return file;
                return projectStack.Count > 0 ? projectStack[projectStack.Count - 1] : "";
            }
        }

        // xbuild gives every event a context of its own, which names nothing, and Mono's
        // Microsoft.Build.Framework has no parent context: instances come from MSBuild only.
        static string Instance(BuildEventContext context)
        {
#if QV_PROJECT_INSTANCES
            int id = ProjectContextOf(context);
            return id < 0 ? "" : Number(id);
#else
            return "";
#endif
        }

        static string Bool(bool value)
        {
            return value ? "True" : "False";
        }

        static string Number(int value)
        {
            return value.ToString(System.Globalization.CultureInfo.InvariantCulture);
        }

        void Emit(string kind, params string[] fields)
        {
            lock (outputLock)
            {
                if (output == null)
                    return;
                line.Length = 0;
                line.Append(Prefix).Append(kind);
                foreach (string field in fields)
                {
                    line.Append('\t');
                    AppendEscaped(line, field);
                }
                line.Append('\n');
                output.Write(line.ToString());
                output.Flush();
            }
        }

        static void AppendEscaped(StringBuilder to, string text)
        {
            if (text == null)
                return;
            foreach (char c in text)
            {
                switch (c)
                {
                    case '\\': to.Append("\\\\"); break;
                    case '\t': to.Append("\\t"); break;
                    case '\r': to.Append("\\r"); break;
                    case '\n': to.Append("\\n"); break;
                    default: to.Append(c); break;
                }
            }
        }
    }
}
