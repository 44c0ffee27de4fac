#include "QvInterfaces.h"

#include <cstdio>

#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qv {

namespace {

bool ReadHex(std::string_view s, size_t pos, int digits, uint32_t& out) {
  uint32_t v = 0;
  for (int i = 0; i < digits; ++i) {
    int d = HexDigitValue(s[pos + i]);
    if (d < 0) return false;
    v = (v << 4) | static_cast<uint32_t>(d);
  }
  out = v;
  return true;
}
}  // namespace

bool TGUID::TryParse(std::string_view s, TGUID& out) {
  if (s.size() != 38 || s[0] != '{' || s[9] != '-' || s[14] != '-' || s[19] != '-' ||
      s[24] != '-' || s[37] != '}')
    return false;
  TGUID g;
  uint32_t v = 0;
  if (!ReadHex(s, 1, 8, g.D1)) return false;
  if (!ReadHex(s, 10, 4, v)) return false;
  g.D2 = static_cast<uint16_t>(v);
  if (!ReadHex(s, 15, 4, v)) return false;
  g.D3 = static_cast<uint16_t>(v);
  for (int i = 0; i < 8; ++i) {
    size_t pos = i < 2 ? 20 + 2 * i : 25 + 2 * (i - 2);
    if (!ReadHex(s, pos, 2, v)) return false;
    g.D4[i] = static_cast<uint8_t>(v);
  }
  out = g;
  return true;
}

TGUID TGUID::Parse(std::string_view text) {
  TGUID g;
  if (!TryParse(text, g)) throw Exception("'" + std::string(text) + "' is not a valid GUID value");
  return g;
}

std::string TGUID::ToString() const {
  char buf[39];
  std::snprintf(buf, sizeof buf, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", D1, D2, D3,
                D4[0], D4[1], D4[2], D4[3], D4[4], D4[5], D4[6], D4[7]);
  return buf;
}

HResult TInterfacedObject::QueryInterface(const TGUID& iid, void** obj) {
  void* p = GetInterface(iid);
  *obj = p;
  if (!p) return HResult::E_NOINTERFACE;
  AddRef();
  return HResult::S_OK;
}

int TInterfacedObject::AddRef() {
  return ++FRefCount;
}

int TInterfacedObject::Release() {
  int n = --FRefCount;
  if (n == 0) delete this;
  return n;
}

void* TInterfacedObject::GetInterface(const TGUID& iid) {
  if (iid == IInterface::IID) return static_cast<IInterface*>(this);
  return nullptr;
}

}  // namespace qv
