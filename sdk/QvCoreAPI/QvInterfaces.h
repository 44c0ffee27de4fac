// COM-style reference-counted interfaces shared by the host and its packages.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

// Windows headers define S_OK and E_NOINTERFACE as macros; this header sets them aside.
#pragma push_macro("S_OK")
#pragma push_macro("E_NOINTERFACE")
#undef S_OK
#undef E_NOINTERFACE

namespace qv {

// A 128-bit interface or class identifier, written "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
struct TGUID {
  uint32_t D1 = 0;
  uint16_t D2 = 0;
  uint16_t D3 = 0;
  uint8_t D4[8] = {};

  // Parses the braced form (hex digits in either case); throws Exception on bad text.
  static TGUID Parse(std::string_view text);
  // Parses the braced form; returns false (and leaves `out` alone) on bad text.
  static bool TryParse(std::string_view text, TGUID& out);
  // The braced upper-case form.
  std::string ToString() const;

  friend constexpr bool operator==(const TGUID& a, const TGUID& b) {
    if (a.D1 != b.D1 || a.D2 != b.D2 || a.D3 != b.D3) return false;
    for (int i = 0; i < 8; ++i)
      if (a.D4[i] != b.D4[i]) return false;
    return true;
  }
};

namespace detail {
consteval uint8_t HexNibble(char c) {
  if (c >= '0' && c <= '9') return static_cast<uint8_t>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<uint8_t>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<uint8_t>(c - 'A' + 10);
  throw "invalid hex digit in GUID literal";
}
consteval uint32_t HexValue(const char* s, int pos, int digits) {
  uint32_t v = 0;
  for (int i = 0; i < digits; ++i)
    v = (v << 4) | HexNibble(s[pos + i]);
  return v;
}
}  // namespace detail

// Compile-time GUID from its braced text; a malformed literal does not compile.
template <size_t N>
consteval TGUID MakeGUID(const char (&s)[N]) {
  static_assert(N == 39, "GUID literal must be {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}");
  if (s[0] != '{' || s[9] != '-' || s[14] != '-' || s[19] != '-' || s[24] != '-' || s[37] != '}')
    throw "malformed GUID literal";
  TGUID g;
  g.D1 = detail::HexValue(s, 1, 8);
  g.D2 = static_cast<uint16_t>(detail::HexValue(s, 10, 4));
  g.D3 = static_cast<uint16_t>(detail::HexValue(s, 15, 4));
  g.D4[0] = static_cast<uint8_t>(detail::HexValue(s, 20, 2));
  g.D4[1] = static_cast<uint8_t>(detail::HexValue(s, 22, 2));
  for (int i = 0; i < 6; ++i)
    g.D4[2 + i] = static_cast<uint8_t>(detail::HexValue(s, 25 + 2 * i, 2));
  return g;
}

// Result codes of QueryInterface.
enum class HResult : int32_t { S_OK = 0, E_NOINTERFACE = static_cast<int32_t>(0x80004002) };

// The root of every interface. Interfaces derive from it virtually so that one object
// carries a single reference count however many interfaces it implements.
struct IInterface {
  static constexpr TGUID IID = MakeGUID("{00000000-0000-0000-C000-000000000046}");

  // Stores the requested interface in *obj (with a reference added) or null.
  virtual HResult QueryInterface(const TGUID& iid, void** obj) = 0;
  virtual int AddRef() = 0;
  virtual int Release() = 0;

 protected:
  virtual ~IInterface() = default;
};

// Declares the identifier of an interface inside its definition.
#define QV_INTERFACE_ID(text) static constexpr ::qv::TGUID IID = ::qv::MakeGUID(text)

// Base of implementation classes. Derived classes override GetInterface to answer the
// identifiers of their own interfaces (see QueryInterfaceList) and defer to their base.
class TInterfacedObject : public virtual IInterface {
 public:
  TInterfacedObject() = default;
  TInterfacedObject(const TInterfacedObject&) = delete;
  TInterfacedObject& operator=(const TInterfacedObject&) = delete;

  HResult QueryInterface(const TGUID& iid, void** obj) override;
  int AddRef() override;
  int Release() override;
  int RefCount() const { return FRefCount.load(); }

 protected:
  ~TInterfacedObject() override = default;
  // The interface pointer for `iid` (without a reference added), or null.
  virtual void* GetInterface(const TGUID& iid);

 private:
  std::atomic<int> FRefCount{0};
};

// Answers `iid` with the first of Intfs whose IID it is; for GetInterface overrides.
template <class... Intfs, class Self>
void* QueryInterfaceList(Self* self, const TGUID& iid) {
  void* result = nullptr;
  (void)((iid == Intfs::IID ? (result = static_cast<Intfs*>(self), true) : false) || ...);
  return result;
}

// Owning pointer to an interface: AddRef on copy, Release on destruction.
template <class T>
class IntfPtr {
 public:
  IntfPtr() = default;
  IntfPtr(std::nullptr_t) {}
  IntfPtr(T* p) : FPtr(p) {
    if (FPtr) FPtr->AddRef();
  }
  IntfPtr(const IntfPtr& other) : IntfPtr(other.FPtr) {}
  IntfPtr(IntfPtr&& other) noexcept : FPtr(std::exchange(other.FPtr, nullptr)) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> IntfPtr(const IntfPtr<U>& other)
      : IntfPtr(static_cast<T*>(other.Get())) {}
  ~IntfPtr() { Reset(); }

  IntfPtr& operator=(IntfPtr other) noexcept {
    std::swap(FPtr, other.FPtr);
    return *this;
  }

  void Reset() {
    if (FPtr) std::exchange(FPtr, nullptr)->Release();
  }
  // Takes over a pointer that already carries a reference (as QueryInterface returns).
  static IntfPtr Attach(T* p) {
    IntfPtr r;
    r.FPtr = p;
    return r;
  }

  T* Get() const { return FPtr; }
  T* operator->() const { return FPtr; }
  T& operator*() const { return *FPtr; }
  explicit operator bool() const { return FPtr != nullptr; }
  friend bool operator==(const IntfPtr& a, const IntfPtr& b) { return a.FPtr == b.FPtr; }
  friend bool operator==(const IntfPtr& a, std::nullptr_t) { return a.FPtr == nullptr; }

 private:
  T* FPtr = nullptr;
};

// Queries `obj` for interface T; null when obj is null or does not implement T.
template <class T>
IntfPtr<T> Supports(IInterface* obj) {
  void* p = nullptr;
  if (obj && obj->QueryInterface(T::IID, &p) == HResult::S_OK && p)
    return IntfPtr<T>::Attach(static_cast<T*>(p));
  return nullptr;
}

template <class T, class U>
IntfPtr<T> Supports(const IntfPtr<U>& obj) {
  return Supports<T>(static_cast<IInterface*>(obj.Get()));
}

// Delphi-style form: true when obj implements T, the interface stored in `out`.
template <class T>
bool Supports(IInterface* obj, IntfPtr<T>& out) {
  out = Supports<T>(obj);
  return static_cast<bool>(out);
}

// Creates an object of class T and hands out its first reference as interface I.
template <class I, class T, class... Args>
IntfPtr<I> MakeIntf(Args&&... args) {
  return IntfPtr<I>(static_cast<I*>(new T(std::forward<Args>(args)...)));
}

}  // namespace qv

#pragma pop_macro("E_NOINTERFACE")
#pragma pop_macro("S_OK")
