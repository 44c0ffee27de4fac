#include "ProcessRunner.h"

namespace qvhost {

void* THostProcess::GetInterface(const qv::TGUID& iid) {
  if (void* p = qv::QueryInterfaceList<qv::IQvProcess>(this, iid)) return p;
  return TInterfacedObject::GetInterface(iid);
}

void THostProcess::Deliver(bool stdErr, std::string_view chunk) {
  if (!FCapture || !FHandler || chunk.empty()) return;
  if (stdErr)
    FHandler->OnStdErrData(this, chunk);
  else
    FHandler->OnStdOutData(this, chunk);
}

qv::IntfPtr<qv::IQvProcess> NewHostProcess() {
  return qv::MakeIntf<qv::IQvProcess, THostProcess>();
}

}  // namespace qvhost
