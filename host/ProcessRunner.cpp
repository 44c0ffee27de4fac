#include "ProcessRunner.h"

#include <utility>

namespace qvhost {

void* THostProcess::GetInterface(const qv::TGUID& iid) {
  if (void* p = qv::QueryInterfaceList<qv::IQvProcess>(this, iid)) return p;
  return TInterfacedObject::GetInterface(iid);
}

namespace {
void Send(qv::IQvProcess* process, qv::IQvProcessOutputHandler* handler, bool stdErr,
          std::string_view chunk) {
  if (stdErr)
    handler->OnStdErrData(process, chunk);
  else
    handler->OnStdOutData(process, chunk);
}
}  // namespace

void THostProcess::Deliver(bool stdErr, std::string_view chunk) {
  if (!FCapture || !FHandler || chunk.empty()) return;
  FLines[stdErr ? 1 : 0].Feed(chunk, [&](std::string_view c) { Send(this, FHandler, stdErr, c); });
}

void THostProcess::FlushTails() {
  for (int i = 0; i < 2; ++i)
    FLines[i].Finish([&](std::string_view c) {
      if (FCapture && FHandler) Send(this, FHandler, i == 1, c);
    });
}

qv::IntfPtr<qv::IQvProcess> NewHostProcess() {
  return qv::MakeIntf<qv::IQvProcess, THostProcess>();
}

}  // namespace qvhost
