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

// Logs its text and two compiler metrics; Details is a list for assignments to fill.
class TQvTestLogAction : public TCustomQvAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetActionName() const override { return "Log Messages"; }

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
};

const TPropDescriptor kLogProps[] = {
    StrProp<TQvTestLogAction, &TQvTestLogAction::Text>("Text"),
    ListProp<TQvTestLogAction, &TQvTestLogAction::Details>("Details"),
    IntProp<TQvTestLogAction, &TQvTestLogAction::Warnings>("Warnings"),
};
const TPropertyTable TQvTestLogAction::PropertyTable{"TQvTestLogAction",
                                                     &TCustomQvAction::PropertyTable, kLogProps};

// Fails in one of the ways an action can, inside a group it leaves open.
enum class TTestFailMode { fmFailAction, fmException, fmReturnFalse, fmUnknown };
constexpr std::string_view kFailModeNames[] = {"fmFailAction", "fmException", "fmReturnFalse",
                                               "fmUnknown"};
const TEnumTypeInfo TTestFailModeInfo{"TTestFailMode", kFailModeNames};

class TQvTestFailAction : public TCustomQvAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetActionName() const override { return "Fail"; }

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
};

const TPropDescriptor kFailProps[] = {
    StrProp<TQvTestFailAction, &TQvTestFailAction::Message>("Message", "Broken"),
    EnumProp<TQvTestFailAction, &TQvTestFailAction::Mode>("Mode", TTestFailModeInfo,
                                                          "fmFailAction"),
};
const TPropertyTable TQvTestFailAction::PropertyTable{"TQvTestFailAction",
                                                      &TCustomQvAction::PropertyTable, kFailProps};

// Counts its runs in a dynamic property and in the "Build" value of the property set it names.
class TQvTestCounterAction : public TCustomQvAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetActionName() const override { return "Count Builds"; }

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
};

const TPropDescriptor kCounterProps[] = {
    IntProp<TQvTestCounterAction, &TQvTestCounterAction::BuildNumber>("BuildNumber"),
    StrProp<TQvTestCounterAction, &TQvTestCounterAction::PropertySet>("PropertySet"),
};
const TPropertyTable TQvTestCounterAction::PropertyTable{
    "TQvTestCounterAction", &TCustomQvAction::PropertyTable, kCounterProps};

// Keeps its password encrypted: a new one given in NewPassword is encrypted into Password and
// both are saved back, so that the plain text leaves the project.
class TQvTestPasswordAction : public TCustomQvAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetActionName() const override { return "Sign In"; }

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
};

const TPropDescriptor kPasswordProps[] = {
    StrProp<TQvTestPasswordAction, &TQvTestPasswordAction::User>("User"),
    StrProp<TQvTestPasswordAction, &TQvTestPasswordAction::NewPassword>("NewPassword"),
    StrProp<TQvTestPasswordAction, &TQvTestPasswordAction::Password>("Password"),
};
const TPropertyTable TQvTestPasswordAction::PropertyTable{
    "TQvTestPasswordAction", &TCustomQvAction::PropertyTable, kPasswordProps};

// Runs its nested actions once per item.
class TQvTestLoopAction : public TQvBaseIterator {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetActionName() const override { return "Loop Over Items"; }

  bool BeforeFirstIteration() override {
    SetIterationCount(Items.Count());
    return true;
  }
  std::string GetCurrentValue() override { return Items[GetCurrentIteration() - 1]; }

  TStringList Items;
};

const TPropDescriptor kLoopProps[] = {
    ListProp<TQvTestLoopAction, &TQvTestLoopAction::Items>("Items"),
};
const TPropertyTable TQvTestLoopAction::PropertyTable{"TQvTestLoopAction",
                                                      &TQvBaseIterator::PropertyTable, kLoopProps};

// Runs a program with its arguments.
class TQvTestRunAction : public TQvExecuteAbstractAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetActionName() const override { return "Run Program"; }

  std::string GetExecutable() override { return Program; }
  bool GetCommandLine(ICommandLineBuilder* builder) override {
    builder->AddArgument(Arguments, "", 0);
    return true;
  }

  std::string Program, Arguments;
};

const TPropDescriptor kRunProps[] = {
    StrProp<TQvTestRunAction, &TQvTestRunAction::Program>("Program"),
    StrProp<TQvTestRunAction, &TQvTestRunAction::Arguments>("Arguments"),
};
const TPropertyTable TQvTestRunAction::PropertyTable{
    "TQvTestRunAction", &TQvExecuteAbstractAction::PropertyTable, kRunProps};

// Options: a tool folder found in the registry when the store has none, and a level.
class TQvTestOptions : public TQvOptionsObject {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetName() const override { return "Host Test Options"; }
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
};

const TPropDescriptor kOptionsProps[] = {
    StrProp<TQvTestOptions, &TQvTestOptions::ToolFolder>("ToolFolder"),
    IntProp<TQvTestOptions, &TQvTestOptions::Level>("Level", "1"),
};
const TPropertyTable TQvTestOptions::PropertyTable{"TQvTestOptions",
                                                   &TQvOptionsObject::PropertyTable, kOptionsProps};

// Shows the options and a framework folder as the host supplies them; can change the level.
class TQvTestEnvironmentAction : public TCustomQvAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }
  std::string GetActionName() const override { return "Show Environment"; }

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
};

const TPropDescriptor kEnvironmentProps[] = {
    StrProp<TQvTestEnvironmentAction, &TQvTestEnvironmentAction::Framework>("Framework"),
    IntProp<TQvTestEnvironmentAction, &TQvTestEnvironmentAction::NewLevel>("NewLevel"),
};
const TPropertyTable TQvTestEnvironmentAction::PropertyTable{
    "TQvTestEnvironmentAction", &TCustomQvAction::PropertyTable, kEnvironmentProps};

const TPackageInfoTable kTable{"TestActionsPackage", 0, nullptr, 0, nullptr};

}  // namespace

QV_PACKAGE_EXPORT void Initialize() {}
QV_PACKAGE_EXPORT void Finalize() {}
QV_PACKAGE_EXPORT const TPackageInfoTable* GetPackageInfoTable() {
  return &kTable;
}

QV_PACKAGE_EXPORT void QvRegister(bool designTime) {
  auto& actions = *QvActionServices;
  auto& scripting = *QvScriptingServices;
  const auto& log = ActionClassOf<TQvTestLogAction>();
  actions.RegisterAction("Log Messages", kCategory, "TESTLOG", log);
  // The script method and global object are only listed, never called.
  scripting.RegisterMethod(
      log, "Describe", "function _Describe(const Prefix: string): string",
      [](TCustomQvAction&, const std::vector<TScriptValue>&) { return TScriptValue(); });
  actions.RegisterAction("Fail", kCategory, "TESTFAIL", ActionClassOf<TQvTestFailAction>());
  scripting.RegisterEnumeration(TTestFailModeInfo);
  actions.RegisterAction("Count Builds", kCategory, "TESTCOUNT",
                         ActionClassOf<TQvTestCounterAction>());
  actions.RegisterAction("Sign In", kCategory, "TESTSIGNIN",
                         ActionClassOf<TQvTestPasswordAction>());
  actions.RegisterAction("Loop Over Items", kCategory, "TESTLOOP",
                         ActionClassOf<TQvTestLoopAction>());
  actions.RegisterAction("Run Program", kCategory, "TESTRUN", ActionClassOf<TQvTestRunAction>());
  actions.RegisterAction("Show Environment", kCategory, "TESTENV",
                         ActionClassOf<TQvTestEnvironmentAction>());
  QvOptionsServices->RegisterOptions(OptionsClassOf<TQvTestOptions>(), "TESTOPTIONS");
  scripting.RegisterGlobalObject("HostTestOptions", "function HostTestOptions: Variant",
                                 [](const std::vector<TScriptValue>&) { return TScriptValue(); });
  scripting.RegisterConstant("TestAnswer", 42);
  if (!designTime) return;
  actions.RegisterPropertyEditor("string", log, "Text", "TTestTextEditor");
  actions.RegisterActionPages(log, {"TTestLogFrame", "TTestDetailsFrame"});
  actions.RegisterActionPages(ActionClassOf<TQvTestLoopAction>(), {"TTestLoopFrame"});
  QvOptionsServices->RegisterOptionPages(OptionsClassOf<TQvTestOptions>(), {"TTestOptionsFrame"});
  scripting.RegisterConstant("TestDesignLevel", 2);
}
