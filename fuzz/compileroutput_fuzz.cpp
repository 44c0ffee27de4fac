// Arbitrary compiler output, read in pieces cut at arbitrary points, through the host's line
// assembly into the build action's classifiers (devenv's and MSBuild's console lines) and the
// MSBuild structured-output reader. The first byte picks the reader and seeds the cuts. The
// assembly must hand over exactly the bytes read, in whole lines; every group a reader opens
// is closed once the run is finished.
#include <cstdlib>
#include <string_view>

#include "QvCanonicalMessage.h"
#include "QvMSBuildOutput.h"
#include "QvProcess.h"
#include "Qvvsdotnetaction.h"
#include "support/CountingActionContext.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  unsigned mode = data[0] % 4, seed = data[0];
  std::string_view output(reinterpret_cast<const char*>(data) + 1, size - 1);

  qv::IntfPtr<qvtest::CountingActionContext> ctx(new qvtest::CountingActionContext);
  qv::TQvVSDotNetAction action;
  action.BindContext(qv::IntfPtr<qv::IQvActionContext>(ctx.Get()));
  action.SetPropValue("VStudioVersion", mode == 0 ? "vs2003" : "vs2008");
  action.SetPropValue("UseMSBuild", mode >= 2 ? "True" : "False");
  qv::TQvMSBuildStructuredOutputHelper helper(&action);
  helper.Start("/src/App.sln", true);

  std::string joined;
  auto deliver = [&](std::string_view chunk) {
    if (!joined.empty() && joined.back() != '\n') std::abort();  // a line was cut
    joined.append(chunk);
    for (size_t at = 0; at < chunk.size();) {
      size_t end = chunk.find('\n', at);
      std::string_view line = chunk.substr(at, end == std::string_view::npos ? end : end - at);
      if (auto m = qv::ParseCanonicalMessage(line); m && (m->Line < 0 || m->Column < 0))
        std::abort();
      if (mode == 3) helper.ProcessLine(line);
      at = end == std::string_view::npos ? chunk.size() : end + 1;
    }
    if (mode != 3) action.OnStdOutData(nullptr, chunk);
  };
  qv::TLineAssembler lines;
  for (size_t at = 0; at < output.size();) {
    seed = seed * 1103515245u + 12345u;
    size_t piece = 1 + (seed >> 16) % 97;
    lines.Feed(output.substr(at, piece), deliver);
    at += piece;
  }
  lines.Finish(deliver);
  helper.Finish();
  if (joined != output || ctx->Depth != 0) std::abort();
  return 0;
}
