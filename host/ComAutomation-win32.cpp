#include "ComAutomation.h"

// clang-format off
#include "QvWin32.h"
#include <objbase.h>
#include <oleauto.h>
// clang-format on

#include "QvExceptions.h"

namespace qvhost {

namespace {

using qv::win32::Utf8;
using qv::win32::Wide;

// COM for the calling thread, for as long as the thread lives.
void InitialiseComOnThisThread() {
  struct TApartment {
    bool Ok = SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    ~TApartment() {
      if (Ok) CoUninitialize();
    }
  };
  thread_local TApartment apartment;
  (void)apartment;
}

std::string Text(BSTR s) {
  return s ? Utf8(std::wstring_view(s, SysStringLen(s))) : std::string();
}

// An IDispatch object whose properties are read as text.
class TComDispatch : public qv::TInterfacedObject, public qv::IQvDispatch {
 public:
  explicit TComDispatch(IDispatch* object) : FObject(object) {}
  ~TComDispatch() override { FObject->Release(); }

  std::string GetProperty(const std::string& name) override {
    std::wstring wide = Wide(name);
    LPOLESTR names[] = {wide.data()};
    DISPID id = 0;
    if (FAILED(FObject->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id)))
      throw qv::Exception("The object has no property \"" + name + "\"");
    DISPPARAMS none{};
    VARIANT value;
    VariantInit(&value);
    HRESULT hr = FObject->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                 &value, nullptr, nullptr);
    if (SUCCEEDED(hr)) hr = VariantChangeType(&value, &value, 0, VT_BSTR);
    std::string text = SUCCEEDED(hr) ? Text(value.bstrVal) : std::string();
    VariantClear(&value);
    if (FAILED(hr))
      throw qv::Exception("Property \"" + name +
                          "\" cannot be read: " + qv::win32::ErrorText(static_cast<DWORD>(hr)));
    return text;
  }

 protected:
  void* GetInterface(const qv::TGUID& iid) override {
    if (void* p = qv::QueryInterfaceList<qv::IQvDispatch>(this, iid)) return p;
    return qv::TInterfacedObject::GetInterface(iid);
  }

 private:
  IDispatch* FObject;
};

class TComAutomation : public qv::IQvAutomationServices {
 public:
  // Null when no provider answers to the moniker (no IIS, no such site).
  qv::IntfPtr<qv::IQvDispatch> CoGetObject(const std::string& moniker) override {
    InitialiseComOnThisThread();
    IDispatch* object = nullptr;
    if (FAILED(::CoGetObject(Wide(moniker).c_str(), nullptr, IID_IDispatch,
                             reinterpret_cast<void**>(&object))) ||
        !object)
      return nullptr;
    return qv::IntfPtr<qv::IQvDispatch>(new TComDispatch(object));
  }
};

}  // namespace

std::shared_ptr<qv::IQvAutomationServices> NewComAutomation() {
  return std::make_shared<TComAutomation>();
}

}  // namespace qvhost
