#include "HostServices.h"

#include <gtest/gtest.h>

#include "QvActions.h"
#include "support/ErrorOf.h"

using qvhost::THostServices;

namespace {

template <int N>
class TAction : public qv::TCustomQvAction {
 public:
  static const qv::TPropertyTable PropertyTable;
  const qv::TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetActionName() const override { return "A"; }
  bool Execute() override { return true; }
};
template <>
const qv::TPropertyTable TAction<1>::PropertyTable{"TFirst", nullptr, {}};
template <>
const qv::TPropertyTable TAction<2>::PropertyTable{"TSecond", nullptr, {}};

TEST(THostServices, FindsActionsByClassNameBeforeCaption) {
  THostServices services;
  const auto& first = qv::ActionClassOf<TAction<1>>();
  const auto& second = qv::ActionClassOf<TAction<2>>();
  services.RegisterAction("TSecond", "C", "I", first);  // a caption that is another's class
  services.RegisterAction("Second Action", "C", "I", second);
  EXPECT_EQ(services.FindAction("tsecond")->Class, &second);
  EXPECT_EQ(services.FindAction("SECOND ACTION")->Class, &second);
  EXPECT_EQ(services.FindAction("TFirst")->Class, &first);
  EXPECT_EQ(services.FindAction("Third"), nullptr);
  EXPECT_EQ(qvtest::ErrorOf([&] { services.RegisterAction("Again", "C", "I", first); }),
            "Action class TFirst is already registered");
}

}  // namespace
