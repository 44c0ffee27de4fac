#include "QvProperties.h"

#include <gtest/gtest.h>

#include "support/ErrorOf.h"

using namespace qv;
using qvtest::ErrorOf;

namespace {

enum class TColour : uint8_t { clRed, clGreen, clBlue };
constexpr std::string_view kColourNames[] = {"clRed", "clGreen", "clBlue"};
const TEnumTypeInfo TColourInfo{"TColour", kColourNames};

class TBase : public TQvPersistent {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string Name = "n";
  int64_t Count = 4;
};

class TDerived : public TBase {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  bool Flag = false;
  TColour Colour = TColour::clGreen;
  TStringList Lines;
  std::string GetUpper() const { return "UP:" + Name; }
  // The setter leaves a mark, so that a write that bypasses it shows.
  const std::string& GetGuarded() const { return FGuarded; }
  void SetGuarded(const std::string& v) { FGuarded = "set:" + v; }

 private:
  std::string FGuarded;
};

const TPropDescriptor kBaseProps[] = {
    StrProp<TBase, &TBase::Name>("Name", "n"),
    IntProp<TBase, &TBase::Count>("Count", "4"),
};
const TPropertyTable TBase::PropertyTable{"TBase", nullptr, kBaseProps};

const TPropDescriptor kDerivedProps[] = {
    BoolProp<TDerived, &TDerived::Flag>("Flag"),
    EnumProp<TDerived, &TDerived::Colour>("Colour", TColourInfo, "clGreen"),
    ListProp<TDerived, &TDerived::Lines>("Lines"),
    StrProp<TDerived, &TDerived::GetUpper, nullptr>("Upper", nullptr, false),
    StrProp<TDerived, &TDerived::GetGuarded, &TDerived::SetGuarded>("Guarded"),
};
const TPropertyTable TDerived::PropertyTable{"TDerived", &TBase::PropertyTable, kDerivedProps};

TEST(Properties, ListsParentPropertiesFirstInDeclarationOrder) {
  std::vector<std::string> names;
  for (const auto* d : TDerived::PropertyTable.All())
    names.emplace_back(d->Name);
  EXPECT_EQ(names, (std::vector<std::string>{"Name", "Count", "Flag", "Colour", "Lines", "Upper",
                                             "Guarded"}));
}

TEST(Properties, TextRoundTripForEveryType) {
  TDerived o;
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"Name", "Solution.sln", "Solution.sln"},
      {"count", "-12", "-12"},
      {"Flag", "true", "True"},
      {"Flag", "FALSE", "False"},
      {"Flag", "1", "True"},
      {"Colour", " 2 ", "clBlue"},
      {"Colour", "clblue", "clBlue"},
      {"Colour", "0", "clRed"},
      {"Lines", "a\nb\r\nc", "a\r\nb\r\nc\r\n"},
      {"Guarded", "x", "set:x"},
  };
  for (const auto& [name, in, out] : cases) {
    o.SetPropValue(name, in);
    EXPECT_EQ(o.GetPropValue(name), out) << name << "=" << in;
  }
  EXPECT_EQ(o.Colour, TColour::clRed);
  EXPECT_EQ(o.Lines.Count(), 3);
  EXPECT_EQ(o.GetPropValue("Upper"), "UP:Solution.sln");
  o.Colour = static_cast<TColour>(7);  // an ordinal without a name reads as its number
  EXPECT_EQ(o.GetPropValue("Colour"), "7");
}

TEST(Properties, BadValuesAndNamesAreReportedClearly) {
  TDerived o;
  EXPECT_EQ(ErrorOf([&] { o.SetPropValue("Colour", "clPurple"); }),
            "Invalid value 'clPurple' for property \"Colour\": Colour must be one of clRed, "
            "clGreen, clBlue");
  EXPECT_EQ(ErrorOf([&] { o.SetPropValue("Colour", "3"); }),
            "Invalid value '3' for property \"Colour\": Colour must be one of clRed, clGreen, "
            "clBlue");
  EXPECT_EQ(ErrorOf<EConvertError>([&] { o.SetPropValue("Flag", "yes"); }),
            "Invalid value 'yes' for property \"Flag\"");
  EXPECT_EQ(ErrorOf([&] { o.SetPropValue("Count", "4x"); }),
            "Invalid value '4x' for property \"Count\"");
  EXPECT_EQ(ErrorOf([&] { o.SetPropValue("Upper", "x"); }),
            "Property \"Upper\" of TDerived is read-only");
  EXPECT_EQ(ErrorOf([&] { o.GetPropValue("Nope"); }), "Unknown property \"Nope\" of TDerived");
  EXPECT_EQ(ErrorOf([&] { o.GetPropValue("colur"); }),
            "Unknown property \"colur\" of TDerived; did you mean Colour?");
  EXPECT_EQ(ErrorOf([&] { o.GetPropValue("Coun"); }),
            "Unknown property \"Coun\" of TDerived; did you mean Count?");
  EXPECT_EQ(o.Colour, TColour::clGreen) << "a rejected value changes nothing";
}

}  // namespace
