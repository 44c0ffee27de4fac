// A package module of small actions that exercise the host: logging and metrics, failures,
// dynamic properties and property sets, passwords, loops, processes, and an options object
// filled from the options store and the registry.
#include <stdexcept>
#include <string>

#include "QvActions.h"
#include "QvDotNetFramework.h"
#include "QvExceptions.h"
#include "QvOptions.h"
#include "QvPackage.h"
#include "QvRegistry.h"
#include "QvServices.h"
#include "QvSysUtils.h"

using namespace qv;

namespace {

constexpr const char* kCategory = "Host Tests";

// A class's name, its caption (an action's, or an options object's name) and its icon.
struct TNames {
  std::string_view Class, Caption, Icon;
};

// What every class here declares alike: a property table named Names.Class, made of its own
// descriptors (Props, where A names the class) over its base class's.
template <class Self, class Base>
class TTestClass : public Base {
 public:
  using A = Self;
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
};
template <class Self, class Base>
const TPropertyTable TTestClass<Self, Base>::PropertyTable{Self::Names.Class, &Base::PropertyTable,
                                                           Self::Props};

// An action captioned Names.Caption, registered with Names.Icon.
template <class Self, class Base = TCustomQvAction>
class TTestAction : public TTestClass<Self, Base> {
 public:
  std::string GetActionName() const override { return std::string(Self::Names.Caption); }
  static const TQvActionClass& Register() {
    QvActionServices->RegisterAction(std::string(Self::Names.Caption), kCategory,
                                     std::string(Self::Names.Icon), ActionClassOf<Self>());
    return ActionClassOf<Self>();
  }
};

// Logs its text and two compiler metrics; Details is a list for assignments to fill.
struct TQvTestLogAction : TTestAction<TQvTestLogAction> {
  static constexpr TNames Names{"TQvTestLogAction", "Log Messages", "TESTLOG"};
  bool Validate(IQvActionValidationError* errors) override {
    if (!Text.empty()) return true;
    errors->AddError("Text", "There is nothing to log", nullptr);
    return false;
  }
  bool Execute() override {
    std::string text;
    if (!TryExpandExpression("Text", Text, text, true)) return false;
    SendMessage(text);
    SendMetricInt("Compiler", "Warnings", Warnings);
    SendMetricInt("Compiler", "Errors", 0);
    return true;
  }

  std::string Text;
  TStringList Details;
  int64_t Warnings = 0;
  static constexpr TPropDescriptor Props[] = {StrProp<A, &A::Text>("Text"),
                                              ListProp<A, &A::Details>("Details"),
                                              IntProp<A, &A::Warnings>("Warnings")};
};

// Fails in one of the ways an action can, inside a group it leaves open.
enum class TTestFailMode { fmFailAction, fmException, fmReturnFalse, fmUnknown };
constexpr std::string_view kFailModeNames[] = {"fmFailAction", "fmException", "fmReturnFalse",
                                               "fmUnknown"};
const TEnumTypeInfo TTestFailModeInfo{"TTestFailMode", kFailModeNames};

struct TQvTestFailAction : TTestAction<TQvTestFailAction> {
  static constexpr TNames Names{"TQvTestFailAction", "Fail", "TESTFAIL"};
  bool Execute() override {
    StartMessageGroup("Trying", 0, TStatusTag::Plain);
    SendMessage("About to fail");
    switch (Mode) {
      case TTestFailMode::fmFailAction:
        throw EFailAction(Message);
      case TTestFailMode::fmException:
        throw std::runtime_error(Message);
      case TTestFailMode::fmReturnFalse:
        SendMessage(Message, TStatusTag::Error);
        return false;
      case TTestFailMode::fmUnknown:
        throw 42;
    }
    return false;
  }

  std::string Message = "Broken";
  TTestFailMode Mode = TTestFailMode::fmFailAction;
  static constexpr TPropDescriptor Props[] = {
      StrProp<A, &A::Message>("Message", "Broken"),
      EnumProp<A, &A::Mode>("Mode", TTestFailModeInfo, "fmFailAction")};
};

// Counts its runs in a dynamic property and in the "Build" value of the property set it names.
struct TQvTestCounterAction : TTestAction<TQvTestCounterAction> {
  static constexpr TNames Names{"TQvTestCounterAction", "Count Builds", "TESTCOUNT"};
  bool Execute() override {
    ++BuildNumber;
    RegisterDynamicProperty("BuildNumber");
    SendMessage("Build number " + IntToStr(BuildNumber));
    if (IntfPtr<IQvPropertySet> set = FindPropertySet(PropertySet))
      set->SetValue("Build", IntToStr(BuildNumber));
    return true;
  }

  int64_t BuildNumber = 0;
  std::string PropertySet;
  static constexpr TPropDescriptor Props[] = {IntProp<A, &A::BuildNumber>("BuildNumber"),
                                              StrProp<A, &A::PropertySet>("PropertySet")};
};

// Keeps its password encrypted: a new one given in NewPassword is encrypted into Password and
// both are saved back, so that the plain text leaves the project.
struct TQvTestPasswordAction : TTestAction<TQvTestPasswordAction> {
  static constexpr TNames Names{"TQvTestPasswordAction", "Sign In", "TESTSIGNIN"};
  bool Execute() override {
    if (!NewPassword.empty()) {
      Password = EncryptPassword(NewPassword);
      NewPassword.clear();
      RegisterDynamicProperty("Password");
      RegisterDynamicProperty("NewPassword");
    }
    std::string plain = DecryptPassword(Password);
    SendMessage("Signed in as " + User + " with a password of " + IntToStr(plain.size()) +
                " characters");
    return true;
  }

  std::string User, NewPassword, Password;
  static constexpr TPropDescriptor Props[] = {StrProp<A, &A::User>("User"),
                                              StrProp<A, &A::NewPassword>("NewPassword"),
                                              StrProp<A, &A::Password>("Password")};
};

// Runs its nested actions once per item.
struct TQvTestLoopAction : TTestAction<TQvTestLoopAction, TQvBaseIterator> {
  static constexpr TNames Names{"TQvTestLoopAction", "Loop Over Items", "TESTLOOP"};
  bool BeforeFirstIteration() override {
    SetIterationCount(Items.Count());
    return true;
  }
  std::string GetCurrentValue() override { return Items[GetCurrentIteration() - 1]; }

  TStringList Items;
  static constexpr TPropDescriptor Props[] = {ListProp<A, &A::Items>("Items")};
};

// Runs a program with its arguments.
struct TQvTestRunAction : TTestAction<TQvTestRunAction, TQvExecuteAbstractAction> {
  static constexpr TNames Names{"TQvTestRunAction", "Run Program", "TESTRUN"};
  std::string GetExecutable() override { return Program; }
  bool GetCommandLine(ICommandLineBuilder* builder) override {
    builder->AddArgument(Arguments, "", 0);
    return true;
  }

  std::string Program, Arguments;
  static constexpr TPropDescriptor Props[] = {StrProp<A, &A::Program>("Program"),
                                              StrProp<A, &A::Arguments>("Arguments")};
};

// Options: a tool folder found in the registry when the store has none, and a level.
struct TQvTestOptions : TTestClass<TQvTestOptions, TQvOptionsObject> {
  static constexpr TNames Names{"TQvTestOptions", "Host Test Options", "TESTOPTIONS"};
  std::string GetName() const override { return std::string(Names.Caption); }
  std::string GetCategory() const override { return kCategory; }
  std::string GetOptionKey() const override { return "QvHostTest"; }

  void LoadOptions(IQvOptionsReader& reader) override {
    TQvOptionsObject::LoadOptions(reader);
    ToolFolder = reader.ReadString("ToolFolder", "");
    Level = reader.ReadInteger("Level", 1);
    if (ToolFolder.empty())
      FModified = RegistryReadString(TRegistryRoot::LocalMachine, "SOFTWARE\\Quorvex\\HostTest",
                                     "ToolFolder", ToolFolder);
  }
  void SaveOptions(IQvOptionsWriter& writer) override {
    TQvOptionsObject::SaveOptions(writer);
    writer.WriteString("ToolFolder", ToolFolder);
    writer.WriteInteger("Level", Level);
  }

  std::string ToolFolder;
  int64_t Level = 1;
  static constexpr TPropDescriptor Props[] = {StrProp<A, &A::ToolFolder>("ToolFolder"),
                                              IntProp<A, &A::Level>("Level", "1")};
};

// Shows the options and a framework folder as the host supplies them; can change the level.
struct TQvTestEnvironmentAction : TTestAction<TQvTestEnvironmentAction> {
  static constexpr TNames Names{"TQvTestEnvironmentAction", "Show Environment", "TESTENV"};
  bool Execute() override {
    IntfPtr<IInterface> found = QvOptionsServices->FindOptions("Host Test Options", kCategory);
    auto* options = dynamic_cast<TQvTestOptions*>(found.Get());
    if (NewLevel > 0 && NewLevel != options->Level) {
      options->Level = NewLevel;
      options->SetModified(true);
    }
    SendMessage("Tool folder: " + options->ToolFolder);
    SendMessage("Level: " + IntToStr(options->Level));
    if (Framework.empty()) return true;
    IntfPtr<IQvDotNetFramework> fw = QvDotNetInfo->GetFramework(Framework);
    SendMessage(fw ? "Framework " + fw->GetVersion() + ": " + fw->GetFolder()
                   : "Framework " + Framework + " is not installed");
    return true;
  }

  std::string Framework;
  int64_t NewLevel = 0;
  static constexpr TPropDescriptor Props[] = {StrProp<A, &A::Framework>("Framework"),
                                              IntProp<A, &A::NewLevel>("NewLevel")};
};

const TPackageInfoTable kTable{"TestActionsPackage", 0, nullptr, 0, nullptr};

}  // namespace

QV_PACKAGE_EXPORT void Initialize() {}
QV_PACKAGE_EXPORT void Finalize() {}
QV_PACKAGE_EXPORT const TPackageInfoTable* GetPackageInfoTable() {
  return &kTable;
}

QV_PACKAGE_EXPORT void QvRegister(bool designTime) {
  auto& scripting = *QvScriptingServices;
  const auto& log = TQvTestLogAction::Register();
  // The script method and global object are only listed, never called.
  scripting.RegisterMethod(
      log, "Describe", "function _Describe(const Prefix: string): string",
      [](TCustomQvAction&, const std::vector<TScriptValue>&) { return TScriptValue(); });
  TQvTestFailAction::Register();
  scripting.RegisterEnumeration(TTestFailModeInfo);
  TQvTestCounterAction::Register();
  TQvTestPasswordAction::Register();
  const auto& loop = TQvTestLoopAction::Register();
  TQvTestRunAction::Register();
  TQvTestEnvironmentAction::Register();
  const auto& options = OptionsClassOf<TQvTestOptions>();
  QvOptionsServices->RegisterOptions(options, std::string(TQvTestOptions::Names.Icon));
  scripting.RegisterGlobalObject("HostTestOptions", "function HostTestOptions: Variant",
                                 [](const std::vector<TScriptValue>&) { return TScriptValue(); });
  scripting.RegisterConstant("TestAnswer", 42);
  if (!designTime) return;
  QvActionServices->RegisterPropertyEditor("string", log, "Text", "TTestTextEditor");
  QvActionServices->RegisterActionPages(log, {"TTestLogFrame", "TTestDetailsFrame"});
  QvActionServices->RegisterActionPages(loop, {"TTestLoopFrame"});
  QvOptionsServices->RegisterOptionPages(options, {"TTestOptionsFrame"});
  scripting.RegisterConstant("TestDesignLevel", 2);
}
