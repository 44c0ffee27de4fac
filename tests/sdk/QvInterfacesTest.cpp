#include "QvInterfaces.h"

#include <gtest/gtest.h>

#include "support/ErrorOf.h"

using namespace qv;

namespace {

TEST(TGUID, ParsesAndFormatsTheBracedForm) {
  TGUID g = TGUID::Parse("{2f39a06c-b1bb-4982-8b17-16bd323c3104}");
  EXPECT_EQ(g.ToString(), "{2F39A06C-B1BB-4982-8B17-16BD323C3104}");
  EXPECT_EQ(g, MakeGUID("{2F39A06C-B1BB-4982-8B17-16BD323C3104}"));
  EXPECT_EQ(g.D1, 0x2F39A06Cu);
  EXPECT_EQ(g.D4[0], 0x8B);
  EXPECT_EQ(g.D4[7], 0x04);
}

TEST(TGUID, RejectsMalformedText) {
  for (const char* bad :
       {"", "2F39A06C-B1BB-4982-8B17-16BD323C3104", "{2F39A06C-B1BB-4982-8B17-16BD323C310}",
        "{2F39A06C-B1BB-4982-8B17-16BD323C310G}", "{2F39A06CB-1BB-4982-8B17-16BD323C3104}"}) {
    TGUID g;
    EXPECT_FALSE(TGUID::TryParse(bad, g)) << bad;
  }
  EXPECT_EQ(qvtest::ErrorOf([] { TGUID::Parse("{nope}"); }), "'{nope}' is not a valid GUID value");
}

struct IAlpha : virtual IInterface {
  QV_INTERFACE_ID("{11111111-0000-0000-0000-000000000001}");
  virtual int Alpha() = 0;
};
struct IBeta : virtual IInterface {
  QV_INTERFACE_ID("{11111111-0000-0000-0000-000000000002}");
  virtual int Beta() = 0;
};
struct IGamma : virtual IInterface {
  QV_INTERFACE_ID("{11111111-0000-0000-0000-000000000003}");
};
// An interface declared with the same identifier as IBeta: a query for it yields IBeta.
struct IBetaAlias : virtual IInterface {
  QV_INTERFACE_ID("{11111111-0000-0000-0000-000000000002}");
};

class TBoth : public TInterfacedObject, public IAlpha, public IBeta {
 public:
  explicit TBoth(bool* destroyed) : FDestroyed(destroyed) {}
  ~TBoth() override { *FDestroyed = true; }
  int Alpha() override { return 1; }
  int Beta() override { return 2; }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IAlpha, IBeta>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  bool* FDestroyed;
};

TEST(IInterface, OneCountAcrossInterfacesAndPointersFreedOnLastRelease) {
  bool destroyed = false;
  {
    IntfPtr<IAlpha> a = MakeIntf<IAlpha, TBoth>(&destroyed);
    auto* obj = dynamic_cast<TBoth*>(a.Get());
    EXPECT_EQ(a->Alpha(), 1);
    IntfPtr<IBeta> b = Supports<IBeta>(a);
    ASSERT_TRUE(b);
    EXPECT_EQ(b->Beta(), 2);
    EXPECT_EQ(obj->RefCount(), 2);
    IntfPtr<IAlpha> c = a;
    IntfPtr<IAlpha> d = std::move(c);
    EXPECT_FALSE(c);
    EXPECT_EQ(obj->RefCount(), 3);
    d = a;  // assigning the object it already holds
    EXPECT_EQ(obj->RefCount(), 3);
    IntfPtr<IInterface> root = Supports<IInterface>(b);
    IntfPtr<IInterface> up = a;  // converts to a base interface
    EXPECT_EQ(obj->RefCount(), 5);
    d = nullptr;
    up.Reset();
    a.Reset();
    b.Reset();
    EXPECT_EQ(obj->RefCount(), 1);
    EXPECT_FALSE(destroyed);
  }
  EXPECT_TRUE(destroyed);
}

TEST(IInterface, QueriesAnswerByIdentifier) {
  bool destroyed = false;
  IntfPtr<IAlpha> a = MakeIntf<IAlpha, TBoth>(&destroyed);
  EXPECT_FALSE(Supports<IGamma>(a));
  EXPECT_FALSE(Supports<IAlpha>(static_cast<IInterface*>(nullptr)));
  void* p = reinterpret_cast<void*>(1);
  EXPECT_EQ(a->QueryInterface(IGamma::IID, &p), HResult::E_NOINTERFACE);
  EXPECT_EQ(p, nullptr);
  // An identifier shared with another interface answers with the one the object implements.
  ASSERT_EQ(a->QueryInterface(IBetaAlias::IID, &p), HResult::S_OK);
  // What comes back is the object's IBeta, carrying a reference of its own.
  auto beta = IntfPtr<IBeta>::Attach(static_cast<IBeta*>(p));
  EXPECT_EQ(beta->Beta(), 2);
  EXPECT_EQ(dynamic_cast<TBoth*>(a.Get())->RefCount(), 2);
}

}  // namespace
