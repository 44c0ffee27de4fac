// Stamping the AssemblyInfo files of a 500-project solution (C#, half of the files with a
// UTF-8 byte-order mark), timed against the same rewrite done by `sed -i` on the same files.
// Prints the times; asserts nothing.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "Qvassemblyinfo.h"

using namespace qv;
namespace fs = std::filesystem;

namespace {
constexpr int ProjectCount = 500;

const char* AssemblyInfo =
    "using System.Reflection;\r\nusing System.Runtime.InteropServices;\r\n\r\n"
    "[assembly: AssemblyTitle(\"Project\")]\r\n[assembly: AssemblyDescription(\"\")]\r\n"
    "[assembly: AssemblyConfiguration(\"\")]\r\n[assembly: AssemblyCompany(\"Contoso\")]\r\n"
    "[assembly: AssemblyProduct(\"Project\")]\r\n"
    "[assembly: AssemblyCopyright(\"Copyright 2008\")]\r\n"
    "[assembly: AssemblyTrademark(\"\")]\r\n[assembly: ComVisible(false)]\r\n"
    "[assembly: Guid(\"3f5e8c2a-1b4d-4e6f-9a7c-0d2e4b6f8a1c\")]\r\n"
    "[assembly: AssemblyVersion(\"1.0.*\")]\r\n[assembly: AssemblyFileVersion(\"1.0.0.0\")]\r\n";

// The build action's settings: title, company and both versions.
class BenchAction : public TQvMultiExecAction, public IQvAssemblyInfoSettings {
 public:
  std::string GetActionName() const override { return "Bench"; }
  bool GetUpdateAssemblyAttribute(TQvAssemblyAttribute a) override {
    return a == TQvAssemblyAttribute::aaTitle || a == TQvAssemblyAttribute::aaCompany ||
           a == TQvAssemblyAttribute::aaVersion || a == TQvAssemblyAttribute::aaFileVersion;
  }
  std::string GetAssemblyAttributeValue(TQvAssemblyAttribute a) override {
    return a == TQvAssemblyAttribute::aaTitle     ? "Stamped"
           : a == TQvAssemblyAttribute::aaCompany ? "Fabrikam"
                                                  : "2|1|40|0";
  }
  bool GetLinkAssemblyFileVersionInfo() override { return true; }
  int GetProjLocationDetectMethodValue() override { return 0; }
  int32_t GetWMIWebsiteNum() override { return 1; }
  std::string GetSharePath() override { return {}; }
  std::string GetWebDAVUsername() override { return {}; }
  std::string GetWebDAVPassword() override { return {}; }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IQvAssemblyInfoSettings>(this, iid)) return p;
    return TQvMultiExecAction::GetInterface(iid);
  }
};

void Write(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

// Writes the solution, its projects and their AssemblyInfo files; returns the solution.
std::string MakeSolution(const fs::path& dir) {
  std::string sln = "Microsoft Visual Studio Solution File, Format Version 10.00\r\n";
  for (int i = 0; i < ProjectCount; ++i) {
    std::string name = "P" + std::to_string(i);
    char guid[40];
    std::snprintf(guid, sizeof guid, "{%08X-0000-0000-0000-000000000000}", i);
    sln += "Project(\"{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}\") = \"" + name + "\", \"" + name +
           "\\" + name + ".csproj\", \"" + guid + "\"\r\nEndProject\r\n";
    Write(dir / name / (name + ".csproj"),
          "<Project><ItemGroup><Compile Include=\"Properties\\AssemblyInfo.cs\" />"
          "</ItemGroup></Project>\r\n");
    Write(dir / name / "Properties" / "AssemblyInfo.cs",
          std::string(i % 2 ? "\xEF\xBB\xBF" : "") + AssemblyInfo);
  }
  Write(dir / "Bench.sln", sln + "Global\r\nEndGlobal\r\n");
  return (dir / "Bench.sln").string();
}

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}
}  // namespace

int main() {
  fs::path dir = fs::temp_directory_path() / ("qvbench-assemblyinfo-" + std::to_string(getpid()));
  std::string sln = MakeSolution(dir);

  auto start = std::chrono::steady_clock::now();
  BenchAction action;
  GetAssemblyInfoUpdater(OpenSolution(sln, false), action)->UpdateAllAssemblyInfo();
  double ours = Seconds(start);

  MakeSolution(dir);  // the same files again, for sed
  std::string cmd = "cd '" + dir.string() +
                    "' && sed -i"
                    " -e 's/AssemblyTitle(\"[^\"]*\")/AssemblyTitle(\"Stamped\")/'"
                    " -e 's/AssemblyCompany(\"[^\"]*\")/AssemblyCompany(\"Fabrikam\")/'"
                    " -e 's/AssemblyVersion(\"[^\"]*\")/AssemblyVersion(\"2.1.40.0\")/'"
                    " -e 's/AssemblyFileVersion(\"[^\"]*\")/AssemblyFileVersion(\"2.1.40.0\")/'"
                    " P*/Properties/AssemblyInfo.cs";
  start = std::chrono::steady_clock::now();
  int rc = std::system(cmd.c_str());
  double sed = Seconds(start);

  std::printf("AssemblyInfo stamping, %d C# projects (half with BOM): %.3f s\n", ProjectCount,
              ours);
  std::printf("The same rewrite with sed -i (no backups, no solution): %.3f s%s\n", sed,
              rc == 0 ? "" : " (sed failed)");
  fs::remove_all(dir);
  return 0;
}
