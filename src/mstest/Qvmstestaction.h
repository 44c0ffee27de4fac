// The "Run MSTest" action: runs MSTest.exe over a test container or a test metadata file,
// optionally publishing the results to a Team Foundation server, and turns the runner's
// summary line into metrics.
#pragma once

#include <string>

#include "QvActions.h"
#include "Qvvsdotnetoptions.h"

namespace qv {

enum class TMSTestPublishMode : uint8_t { pbNone, pbAuto, pbSpecify };
extern const TEnumTypeInfo TMSTestPublishModeInfo;

class TQvMSTestAction : public TQvExecuteAbstractAction {
 public:
  TQvMSTestAction();

  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  std::string GetActionName() const override { return "Run MSTest"; }
  std::string GetActionKeywords() const override { return "VisualStudio VS.Net"; }
  int GetHelpTopicID() const override { return 3500; }
  std::string GetQuickHelpFilename() const override { return "Plugins\\MSTest.html"; }
  // The description and " [ CONTAINER ]" (or the metadata file).
  std::string GetFormattedDescription() const override;

  // MSTest.exe in the chosen Visual Studio's folder or the standalone folder; empty when
  // that folder is not configured.
  std::string GetExecutable() override;
  // The switches in their fixed order; false when an expansion fails.
  bool GetCommandLine(ICommandLineBuilder* builder) override;
  // The folder of the test container (empty keeps the host's).
  std::string GetStartingDir() override;
  bool InterpretResult(int exitCode) override { return exitCode == 0; }
  // Logs the lines and sends the summary line's counts (not when publishing automatically).
  void OnStdOutData(IQvProcess* process, std::string_view chunk) override;
  // Reports a missing MSTest.exe, container or metadata file.
  bool Validate(IQvActionValidationError* errors) override;

  // The Team Build switches for the publish mode; false when an expansion fails.
  bool GetPublishArguments(ICommandLineBuilder* builder);
  bool AutoPublishing() const { return FAutoPublishing; }

 private:
  static const TPropDescriptor FProps[];

  bool AddExpanded(ICommandLineBuilder* builder, const char* caption, const std::string& text,
                   const char* switchText, bool required, bool skipEmpty);
  bool AddList(ICommandLineBuilder* builder, const char* caption, const std::string& text,
               const char* switchText);

  std::string FAssemblyFileName, FConfigFileName, FOutputFileName;
  TVSDotNetVersion FVisualStudioVer = TVSDotNetVersion::vs2005;
  bool FUseStandaloneMSTest = false, FUseMetadataFile = false;
  std::string FMetadataFile;
  bool FSpecifyTestList = false;
  std::string FTestList;
  bool FSpecifyTests = false;
  std::string FTests;
  bool FShowBanner = false;
  TMSTestPublishMode FPublishMode = TMSTestPublishMode::pbAuto;
  std::string FTeamServer, FTeamProject, FBuildId, FBuildPlatform = "Any CPU",
                                                   FBuildFlavor = "Quorvex";
  bool FAutoPublishing = false;
};

}  // namespace qv
