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
  // A child may write a line in pieces (dotnet does), and a read may end inside one.
  std::string& tail = FTails[stdErr ? 1 : 0];
  size_t end = chunk.rfind('\n');
  if (end == std::string_view::npos) {
    tail.append(chunk);
    return;
  }
  if (tail.empty()) {
    Send(this, FHandler, stdErr, chunk.substr(0, end + 1));
  } else {
    tail.append(chunk.substr(0, end + 1));
    std::string whole = std::exchange(tail, std::string());
    Send(this, FHandler, stdErr, whole);
  }
  tail.assign(chunk.substr(end + 1));
}

void THostProcess::FlushTails() {
  for (int i = 0; i < 2; ++i) {
    std::string rest = std::exchange(FTails[i], std::string());
    if (!rest.empty() && FCapture && FHandler) Send(this, FHandler, i == 1, rest);
  }
}

qv::IntfPtr<qv::IQvProcess> NewHostProcess() {
  return qv::MakeIntf<qv::IQvProcess, THostProcess>();
}

}  // namespace qvhost
