#include "Vsnetsln.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <functional>
#include <optional>
#include <thread>
#include <unordered_map>

#include "QvExceptions.h"
#include "QvPaths.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvUtils.h"
#include "VsnetslnOrder.h"
#include "VsnetslnVcproj.h"

namespace qv {

namespace {
constexpr std::string_view kVersionNames[] = {"vs2002", "vs2003", "vs2005", "vs2008", "vsUnknown"};
}  // namespace

const TEnumTypeInfo TVSDotNetVersionInfo{"TVSDotNetVersion", kVersionNames};

void* TVSDotNetObject::GetInterface(const TGUID& iid) {
  if (void* p = QueryInterfaceList<IVSDotNetObject>(this, iid)) return p;
  return TInterfacedObject::GetInterface(iid);
}

namespace {

// What a Visual C++ project file says of the project's resource scripts.
struct TProjectFileInfo {
  TStringList ResourceFiles;
  std::string VersionInfoFile;  // the first script that holds a version resource
};

bool IsVCProjectFile(std::string_view fileName) {
  return LowerCase(ExtractFileExt(fileName)) == ".vcproj";
}

// Each model class answers its one interface and defers to the common base.
#define QV_ANSWERS(Intf)                                         \
 protected:                                                      \
  void* GetInterface(const TGUID& iid) override {                \
    if (void* p = QueryInterfaceList<Intf>(this, iid)) return p; \
    return TVSDotNetObject::GetInterface(iid);                   \
  }

class TVSDotNetSolutionConfiguration : public TVSDotNetObject,
                                       public IVSDotNetSolutionConfiguration {
 public:
  explicit TVSDotNetSolutionConfiguration(std::string name) : FName(std::move(name)) {}
  std::string GetName() override { return FName; }

  QV_ANSWERS(IVSDotNetSolutionConfiguration)
 private:
  std::string FName;
};

class TVSDotNetSolutionConfigurations : public TVSDotNetObject,
                                        public IVSDotNetSolutionConfigurations {
 public:
  IntfPtr<IVSDotNetSolutionConfiguration> GetItem(int index) override {
    if (index < 0 || index >= GetCount()) return nullptr;
    return FItems[static_cast<size_t>(index)];
  }
  int GetCount() override { return static_cast<int>(FItems.size()); }
  void Add(const std::string& name) {
    FItems.push_back(
        MakeIntf<IVSDotNetSolutionConfiguration, TVSDotNetSolutionConfiguration>(name));
  }

  QV_ANSWERS(IVSDotNetSolutionConfigurations)
 private:
  std::vector<IntfPtr<IVSDotNetSolutionConfiguration>> FItems;
};

class TVSDotNetProjectDependancies : public TVSDotNetObject, public IVSDotNetProjectDependancies {
 public:
  std::string GetItem(int index) override {
    return index >= 0 && index < FList.Count() ? FList[index] : std::string();
  }
  int GetCount() override { return FList.Count(); }
  TStringList* GetList() override { return &FList; }
  void Add(const std::string& guid) override { FList.Add(guid); }
  bool Contains(const std::string& guid) override { return FList.IndexOf(guid) >= 0; }

  QV_ANSWERS(IVSDotNetProjectDependancies)
 private:
  TStringList FList;  // compares without regard to case
};

class TVSDotNetProject final : public TVSDotNetObject, public IVSDotNetProject {
 public:
  TVSDotNetProject(std::string name, std::string fileName, std::string typeGuid, std::string guid)
      : FName(std::move(name)),
        FFileName(std::move(fileName)),
        FProjectTypeGUID(std::move(typeGuid)),
        FProjectGUID(std::move(guid)),
        FDependencies(MakeIntf<IVSDotNetProjectDependancies, TVSDotNetProjectDependancies>()) {}

  std::string GetName() override { return FName; }
  std::string GetFileName() override { return FFileName; }
  std::string GetProjectGUID() override { return FProjectGUID; }
  const std::string& GUID() const { return FProjectGUID; }
  std::string GetProjectTypeGUID() override { return FProjectTypeGUID; }
  IntfPtr<IVSDotNetProjectDependancies> GetDependencies() override { return FDependencies; }
  bool IsVCProject() override { return IsVCProjectFile(FFileName); }
  TStringList* GetResourceFiles() override { return &FResourceFiles; }
  std::string GetVersionInfoFile() override { return FVersionInfoFile; }
  const TStringList& GetConfigurationList() override { return FConfigurations; }

  void AddConfiguration(const std::string& solutionConfiguration,
                        const std::string& projectConfiguration, bool isActiveCfg) override {
    int i = FConfigurations.IndexOfName(solutionConfiguration);
    if (i < 0)
      FConfigurations.AddObject(solutionConfiguration + "=" + projectConfiguration, isActiveCfg);
    else if (isActiveCfg)
      FConfigurations.PutObject(i, 1);
  }

  std::string GetProjectConfiguration(const std::string& solutionConfiguration) override {
    int i = FConfigurations.IndexOfName(solutionConfiguration);
    return i < 0 ? std::string() : FConfigurations.ValueFromIndex(i);
  }

  bool IsActiveConfiguration(const std::string& solutionConfiguration) override {
    int i = FConfigurations.IndexOfName(solutionConfiguration);
    return i >= 0 && FConfigurations.Objects(i) != 0;
  }

  void SetProjectFileInfo(TProjectFileInfo info) {
    FResourceFiles = std::move(info.ResourceFiles);
    FVersionInfoFile = std::move(info.VersionInfoFile);
  }

  QV_ANSWERS(IVSDotNetProject)
 private:
  std::string FName, FFileName, FProjectTypeGUID, FProjectGUID;
  IntfPtr<IVSDotNetProjectDependancies> FDependencies;
  TStringList FResourceFiles;
  std::string FVersionInfoFile;
  TStringList FConfigurations;  // solution configuration=project configuration, flag in Objects
};

class TVSDotNetProjects : public TVSDotNetObject, public IVSDotNetProjects {
 public:
  IntfPtr<IVSDotNetProject> GetItem(int index) override {
    if (index < 0 || index >= GetCount()) return nullptr;
    return FItems[static_cast<size_t>(index)];
  }
  int GetCount() override { return static_cast<int>(FItems.size()); }

  IntfPtr<IVSDotNetProject> FindByGUID(const std::string& guid) override {
    return FindByGUID(std::string_view(guid));
  }

  IntfPtr<IVSDotNetProject> FindByGUID(std::string_view guid) { return Find(guid); }

  TVSDotNetProject* Find(std::string_view guid) {
    auto [first, last] = FByGUID.equal_range(guid);
    if (first == last) return nullptr;
    if (std::next(first) == last) return first->second;
    for (const auto& p : FItems)  // several share it: the first in current order wins
      if (p->GUID() == guid) return p.Get();
    return nullptr;
  }

  IntfPtr<IVSDotNetProject> FindByFileName(const std::string& fileName) override {
    for (const auto& p : FItems)
      if (p->GetFileName() == fileName) return p;
    return nullptr;
  }

  void SortByDependency() override;

  void Add(TVSDotNetProject* project) {
    FByGUID.emplace(project->GUID(), project);
    FItems.emplace_back(project);
  }

  QV_ANSWERS(IVSDotNetProjects)
 private:
  std::vector<IntfPtr<TVSDotNetProject>> FItems;
  // The projects carrying each identifier (a view of the project's own), so that the reader's
  // lookups (one per configuration line) do not scan the list.
  std::unordered_multimap<std::string_view, TVSDotNetProject*> FByGUID;
};

class TVSDotNetSolution : public TVSDotNetObject, public IVSDotNetSolution {
 public:
  TVSDotNetSolution(std::string fileName, TVSDotNetVersion version)
      : FProjects(new TVSDotNetProjects), FFileName(std::move(fileName)), FVersion(version) {}

  IntfPtr<IVSDotNetSolutionConfigurations> GetConfigurations() override { return FConfigurations; }
  IntfPtr<IVSDotNetProjects> GetProjects() override { return FProjects; }
  std::string GetReservedText1() override { return FReserved1; }
  std::string GetReservedText2() override { return FReserved2; }
  std::string GetFileName() override { return FFileName; }
  TVSDotNetVersion GetVersion() override { return FVersion; }

  TVSDotNetProjects& Projects() { return *FProjects; }
  void SetConfigurations(IntfPtr<IVSDotNetSolutionConfigurations> c) {
    FConfigurations = std::move(c);
  }

  QV_ANSWERS(IVSDotNetSolution)
 private:
  std::string FReserved1, FReserved2;
  IntfPtr<IVSDotNetSolutionConfigurations> FConfigurations;
  IntfPtr<TVSDotNetProjects> FProjects;
  std::string FFileName;
  TVSDotNetVersion FVersion;
};

// ---- project files ------------------------------------------------------------------------

namespace {
// Whether a resource script's text (any of the encodings a script may have) holds a version
// resource; text that cannot be decoded holds none.
bool HasVersionInfo(std::string_view bytes, const std::string& script) {
  try {
    TTextFormat format;
    std::string decoded;
    return DecodeText(bytes, format, decoded, script).find("VERSIONINFO") != std::string::npos;
  } catch (const std::exception&) {
    return false;
  }
}

// Reads the resource scripts of a Visual C++ project file (`path`, the existing file a project
// names) and finds the version script.
TProjectFileInfo ReadProjectFileInfo(const std::string& path) {
  std::string text, error;
  if (!platform::ReadWholeFile(path, text, error))
    throw Exception("Error parsing project file : " + error + " (" + path + ")");
  std::string projectDir = ExtractFilePath(path);
  TProjectFileInfo info;
  for (const std::string& rel : ReadVcprojResourceScripts(text, path)) {
    std::string script = ExpandRelativePath(rel, projectDir);
    if (!info.VersionInfoFile.empty()) {
      info.ResourceFiles.Add(ResolvePathCase(script));
      continue;
    }
    // Until the version script is found every script is read, the first that holds a
    // version resource being it. A script read as named needs no case resolution.
    std::string bytes;
    bool read = platform::ReadWholeFile(script, bytes, error);
    if (!read) {
      script = ResolvePathCase(script);
      read = platform::ReadWholeFile(script, bytes, error);
    }
    info.ResourceFiles.Add(script);
    if (read && HasVersionInfo(bytes, script)) info.VersionInfoFile = script;
  }
  return info;
}
}  // namespace

namespace {
// Identifiers, compared without regard to (ASCII) case.
struct TNoCaseHash {
  size_t operator()(std::string_view s) const {
    size_t h = 14695981039346656037ull;  // FNV-1a
    for (char c : s)
      h = (h ^ static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + 32 : c)) * 1099511628211ull;
    return h;
  }
};
struct TNoCaseEqual {
  bool operator()(std::string_view a, std::string_view b) const { return SameText(a, b); }
};
}  // namespace

void TVSDotNetProjects::SortByDependency() {
  // The projects carrying each identifier, in list order: the first and last of a chain
  // through `nextSame`.
  struct TChain {
    int First, Last;
  };
  std::unordered_map<std::string_view, TChain, TNoCaseHash, TNoCaseEqual> byGuid;
  std::vector<int> nextSame(FItems.size(), -1);
  for (int i = 0; i < GetCount(); ++i) {
    auto [it, added] = byGuid.try_emplace(FItems[i]->GUID(), TChain{i, i});
    if (!added) nextSame[std::exchange(it->second.Last, i)] = i;
  }
  std::vector<std::vector<int>> dependsOn(FItems.size());
  for (int i = 0; i < GetCount(); ++i) {
    for (const std::string& dep : *FItems[i]->GetDependencies()->GetList()) {
      if (auto it = byGuid.find(dep); it != byGuid.end())
        for (int j = it->second.First; j >= 0; j = nextSame[j])
          dependsOn[i].push_back(j);
    }
  }
  std::vector<int> order =
      DependencyOrder(dependsOn, [this](int i) { return FItems[i]->GetName(); });
  std::vector<IntfPtr<TVSDotNetProject>> sorted;
  sorted.reserve(order.size());
  for (int i : order)
    sorted.push_back(FItems[i]);
  FItems.swap(sorted);
}

// ---- project lines, looked up ahead -------------------------------------------------------------

// The fixed shapes of a solution file's lines.
constexpr size_t kHeaderNumberAt =
    53;  // after "Microsoft Visual Studio Solution File, Format Version "
constexpr size_t kProjectPrefix = 9;  // "Project(\""
constexpr size_t kGuidLength = 38;    // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"

// A project line's fields and the existing file it names ("" when there is none).
struct TProjectLookup {
  int Line = -1;
  std::string TypeGuid, Name, Path, Guid, Existing;
  bool LookedUp = false;
  int Read = -1;  // the reading of its Visual C++ project file, when read ahead
};

// A Visual C++ project file read ahead: what it says, or the error reading it.
struct TProjectFileRead {
  const std::string* Path;
  TProjectFileInfo Info;
  std::exception_ptr Error;
};

// Reads the fields of a project line, `Project("{TYPE}") = "NAME", "PATH", "{GUID}"`; false
// when it has too few.
bool ParseProjectLine(std::string_view line, TProjectLookup& out) {
  std::string_view rest = line.substr(kProjectPrefix);
  out.TypeGuid = rest.substr(0, std::min(kGuidLength, rest.size()));
  rest.remove_prefix(out.TypeGuid.size());
  size_t eq = rest.find('=');
  if (eq == std::string::npos) return false;
  TStringList items;
  items.SetCommaText(TrimmedView(rest.substr(eq + 1)));
  if (items.Count() < 3) return false;
  out.Name = items[0];
  out.Path = items[1];
  out.Guid = items[2];
  return true;
}

void LookUpProjectFile(TProjectLookup& project, const std::string& solutionDir) {
  project.Existing = ResolveExistingFile(ExpandRelativePath(project.Path, solutionDir));
}

// Runs job(i) for each i in [0, count), in ascending order, on a second thread while the caller
// goes on; the caller joins in when it calls Finish, which returns at the end. Jobs do not throw.
class TSideLoop {
 public:
  TSideLoop(size_t count, std::function<void(size_t)> job) : FCount(count), FJob(std::move(job)) {
    constexpr size_t kWorthAThread = 64;
    if (count >= kWorthAThread && std::thread::hardware_concurrency() > 1)
      FThread = std::thread([this] { Run(FCount); });
  }
  ~TSideLoop() { Stop(0); }

  void Finish() { Stop(FCount); }

  // Has the jobs before `needed` done, drops the others not yet started, and waits for the end.
  void Stop(size_t needed) {
    Run(std::min(needed, FCount));
    FNext = FCount;
    if (FThread.joinable()) FThread.join();
  }

 private:
  void Run(size_t end) {
    for (size_t i; (i = FNext++) < end;)
      FJob(i);
  }

  size_t FCount;
  std::function<void(size_t)> FJob;
  std::atomic<size_t> FNext{0};
  std::thread FThread;
};

// Works out the project lines of a solution before the lines are read, on two threads: for a
// large solution, the files the lines name are most of the reading. The project files are
// looked up first (whether a project is kept depends on it); the Visual C++ project files are
// then read while the solution's lines are. What a line says is worked out whatever the line
// turns out to be, but only taken where it is read as a project line: a line read otherwise
// (say, as a dependency) changes nothing, and only the errors of kept projects are raised. A line
// that could not be looked up ahead is looked up when it is read.
class TProjectLookups {
 public:
  // Works out the project lines from `from` up to the "Global" line.
  void Run(const TTextFileLines& lines, int from, const std::string& solutionDir) {
    for (int i = from; i < lines.Count() && lines[i] != "Global"; ++i) {
      std::string_view line = TrimmedView(lines[i]);
      TProjectLookup project;
      project.Line = i;
      if (line.starts_with("Project(\"") && ParseProjectLine(line, project))
        FProjects.push_back(std::move(project));
    }
    TSideLoop(FProjects.size(), [&](size_t i) {
      try {
        LookUpProjectFile(FProjects[i], solutionDir);
        FProjects[i].LookedUp = true;
      } catch (...) {  // looked up again, and reported, when the line is read
      }
    }).Finish();
    for (TProjectLookup& p : FProjects) {
      if (p.LookedUp && !p.Existing.empty() && IsVCProjectFile(p.Path)) {
        p.Read = static_cast<int>(FFileReads.size());
        FFileReads.push_back({&p.Existing, {}, nullptr});
      }
    }
    FReads.emplace(FFileReads.size(), [this](size_t i) {
      try {
        FFileReads[i].Info = ReadProjectFileInfo(*FFileReads[i].Path);
      } catch (...) {
        FFileReads[i].Error = std::current_exception();
      }
    });
  }

  // The lookup of the line at `index`, or null; lines are asked for in ascending order.
  TProjectLookup* Take(int index) {
    while (FNext < FProjects.size() && FProjects[FNext].Line < index)
      ++FNext;
    if (FNext == FProjects.size() || FProjects[FNext].Line != index) return nullptr;
    return FProjects[FNext].LookedUp ? &FProjects[FNext] : nullptr;
  }

  // The reading of a lookup's project file, or null when it was not read ahead.
  TProjectFileRead* ReadOf(const TProjectLookup& lookup) {
    return lookup.Read < 0 ? nullptr : &FFileReads[static_cast<size_t>(lookup.Read)];
  }

  // Waits until the project files are read: all of them, or only those up to `last` (null for
  // none) when the rest will not be needed.
  void FinishReads() {
    if (FReads) FReads->Finish();
  }
  void FinishReadsUpTo(const TProjectFileRead* last) {
    if (FReads) FReads->Stop(last ? static_cast<size_t>(last - FFileReads.data()) + 1 : 0);
  }

 private:
  std::vector<TProjectLookup> FProjects;
  std::vector<TProjectFileRead> FFileReads;
  size_t FNext = 0;
  std::optional<TSideLoop> FReads;  // last: ends before what it reads into
};

// ---- the solution file ----------------------------------------------------------------------

class TSolutionReader {
 public:
  TSolutionReader(const std::string& fileName, bool includeMissing)
      : FFileName(fileName),
        // Made absolute once, not for every project it is the base of.
        FSolutionDir(ExpandRelativePath(ExtractFilePath(fileName), "")),
        FIncludeMissing(includeMissing),
        FLines(fileName) {}

  IntfPtr<IVSDotNetSolution> Read();

 private:
  TVSDotNetVersion ReadHeader();
  void ReadProjects();
  void ReadProjectLine(std::string_view line);
  void ReadProjectDependencies();
  void ReadGlobal();
  void ReadSolutionConfigurations();
  void ReadConfigurationMappings();
  void ReadGlobalDependencies();
  // Gives the kept projects what their files, read ahead, say; throws the first error among them.
  void TakeReads();
  // The line at FIndex, trimmed; past the end the line list's index error.
  std::string_view TrimmedLine() const { return TrimmedView(FLines[FIndex]); }
  // The value of the first line in the file whose name part (before "=") is `name`, compared
  // without case.
  std::string_view FirstValueNamed(std::string_view name) const;

  std::string FFileName, FSolutionDir;
  bool FIncludeMissing;
  TTextFileLines FLines;
  int FIndex = 0;
  TProjectLookups FLookups;
  IntfPtr<TVSDotNetSolution> FSolution;
  TVSDotNetProject* FCurrent = nullptr;
  // The kept Visual C++ projects whose files were read ahead, in file order.
  std::vector<std::pair<TVSDotNetProject*, TProjectFileRead*>> FReadAhead;
};

IntfPtr<IVSDotNetSolution> TSolutionReader::Read() {
  int blank = 0;
  while (blank < FLines.Count() && FLines[blank].empty())
    ++blank;
  FLines.DeleteFirst(blank);
  FSolution = IntfPtr<TVSDotNetSolution>(new TVSDotNetSolution(FFileName, ReadHeader()));
  FIndex = 1;
  FLookups.Run(FLines, FIndex, FSolutionDir);
  // What fails first in the file is reported: a project file's error comes before anything
  // found after that project's line.
  try {
    ReadProjects();
    FSolution->Projects().SortByDependency();
    if (FLines[FIndex] == "Global") ReadGlobal();
  } catch (...) {
    // Only the files of the projects kept so far can come first.
    FLookups.FinishReadsUpTo(FReadAhead.empty() ? nullptr : FReadAhead.back().second);
    TakeReads();
    throw;
  }
  FLookups.FinishReads();
  TakeReads();
  return IntfPtr<IVSDotNetSolution>(FSolution.Get());
}

void TSolutionReader::TakeReads() {
  for (auto& [project, read] : FReadAhead) {
    if (read->Error) std::rethrow_exception(read->Error);
    project->SetProjectFileInfo(std::move(read->Info));
  }
}

TVSDotNetVersion TSolutionReader::ReadHeader() {
  std::string header(FLines[0]);
  TRegExpr re("Microsoft Visual Studio Solution File, Format Version \\d+\\.", true);
  if (!re.Exec(header)) throw Exception("Invalid Visual Studio Solution Header : " + header);
  std::string number = re.Match(0).substr(kHeaderNumberAt);
  number.pop_back();  // the point
  switch (StrToIntDef(number, 0)) {
    case 7:
      return TVSDotNetVersion::vs2002;
    case 8:
      return TVSDotNetVersion::vs2003;
    case 9:
      return TVSDotNetVersion::vs2005;
    case 10:
      return TVSDotNetVersion::vs2008;
    default:
      return TVSDotNetVersion::vsUnknown;
  }
}

void TSolutionReader::ReadProjects() {
  for (; FIndex < FLines.Count() && FLines[FIndex] != "Global"; ++FIndex) {
    std::string_view line = TrimmedLine();
    if (line.starts_with("Project(\""))
      ReadProjectLine(line);
    else if (line.starts_with("EndProject"))  // also ends at any "EndProjectSection"
      FCurrent = nullptr;
    else if (FCurrent && line.starts_with("ProjectSection(ProjectDependencies)"))
      ReadProjectDependencies();
  }
}

void TSolutionReader::ReadProjectLine(std::string_view line) {
  TProjectLookup own;
  TProjectLookup* found = FLookups.Take(FIndex);
  if (!found) {
    if (!ParseProjectLine(line, own)) throw Exception("Error parsing project string");
    LookUpProjectFile(own, FSolutionDir);
    found = &own;
  }
  bool web = ContainsStr(found->Path, "http://") || ContainsStr(found->Path, "https://");
  if (!web && !FIncludeMissing && found->Existing.empty())
    return;  // skipped: the current project stays what it was
  auto* project = new TVSDotNetProject(std::move(found->Name), std::move(found->Path),
                                       std::move(found->TypeGuid), std::move(found->Guid));
  IntfPtr<IVSDotNetProject> ref(project);
  if (!found->Existing.empty() && project->IsVCProject()) {
    if (TProjectFileRead* read = FLookups.ReadOf(*found))
      FReadAhead.emplace_back(project, read);
    else
      project->SetProjectFileInfo(ReadProjectFileInfo(found->Existing));
  }
  FSolution->Projects().Add(project);
  FCurrent = project;
}

void TSolutionReader::ReadProjectDependencies() {
  for (++FIndex; FIndex < FLines.Count(); ++FIndex) {
    std::string_view line = TrimmedLine();
    if (line == "EndProjectSection") break;
    if (size_t eq = line.find('='); eq != std::string_view::npos)
      FCurrent->GetDependencies()->Add(Trim(line.substr(eq + 1)));
  }
}

void TSolutionReader::ReadGlobal() {
  ++FIndex;
  for (std::string_view line = TrimmedLine(); line != "EndGlobal"; line = TrimmedLine()) {
    if (line.starts_with("GlobalSection(SolutionConfiguration)") ||
        line.starts_with("GlobalSection(SolutionConfigurationPlatforms)")) {
      ++FIndex;
      ReadSolutionConfigurations();
    } else if (line.starts_with("GlobalSection(ProjectConfiguration)") ||
               line.starts_with("GlobalSection(ProjectConfigurationPlatforms)")) {
      ++FIndex;
      ReadConfigurationMappings();
    } else if (line.starts_with("GlobalSection(ProjectDependencies)")) {
      ++FIndex;
      ReadGlobalDependencies();
    }
    ++FIndex;
  }
}

void TSolutionReader::ReadSolutionConfigurations() {
  auto configs = IntfPtr<TVSDotNetSolutionConfigurations>(new TVSDotNetSolutionConfigurations);
  for (; TrimmedLine() != "EndGlobalSection"; ++FIndex) {
    std::string_view line = FLines[FIndex];
    size_t eq = line.find('=');
    std::string_view name = eq == std::string_view::npos ? std::string_view() : line.substr(0, eq);
    if (TrimmedView(name) == "Description") continue;
    // The value comes from the first line of the whole file with this name part.
    configs->Add(Trim(FirstValueNamed(name)));
  }
  FSolution->SetConfigurations(IntfPtr<IVSDotNetSolutionConfigurations>(configs.Get()));
}

std::string_view TSolutionReader::FirstValueNamed(std::string_view name) const {
  for (int i = 0; i < FLines.Count(); ++i) {
    std::string_view line = FLines[i];
    size_t eq = line.find('=');
    if (eq != std::string_view::npos && SameText(line.substr(0, eq), name))
      return line.substr(eq + 1);
  }
  return {};
}

// One configuration line after the project's identifier: ".SOLUTION.ActiveCfg = PROJECT" or
// ".SOLUTION.Build.0 = PROJECT". The solution part runs from the first point to the last
// marker that has text after it, so configuration names may hold points and markers.
struct TConfigurationMapping {
  std::string_view Solution, Project;
  bool Active = false;
};

bool ReadConfigurationMapping(std::string_view rest, TConfigurationMapping& m) {
  constexpr std::string_view kActive = ".ActiveCfg = ", kBuild = ".Build.0 = ";
  size_t start = rest.find('.');
  if (start == std::string_view::npos) return false;
  for (size_t p = rest.size(); p-- > start + 1;) {
    if (rest[p] != '.') continue;
    for (std::string_view marker : {kActive, kBuild}) {
      if (rest.substr(p).starts_with(marker) && p + marker.size() < rest.size()) {
        m = {rest.substr(start + 1, p - start - 1), rest.substr(p + marker.size()),
             marker == kActive};
        return true;
      }
    }
  }
  return false;
}

void TSolutionReader::ReadConfigurationMappings() {
  for (std::string_view line = TrimmedLine(); line != "EndGlobalSection"; line = TrimmedLine()) {
    ++FIndex;
    TConfigurationMapping m;
    if (line.size() <= kGuidLength || !ReadConfigurationMapping(line.substr(kGuidLength), m))
      continue;
    if (TVSDotNetProject* project = FSolution->Projects().Find(line.substr(0, kGuidLength)))
      project->AddConfiguration(std::string(m.Solution), std::string(m.Project), m.Active);
  }
}

void TSolutionReader::ReadGlobalDependencies() {
  for (; TrimmedLine() != "EndGlobalSection"; ++FIndex) {
    std::string_view line = TrimmedLine();
    IntfPtr<IVSDotNetProject> project =
        FSolution->Projects().FindByGUID(line.substr(0, kGuidLength));
    size_t eq = line.find('=');
    if (project && eq != std::string_view::npos)
      project->GetDependencies()->Add(Trim(line.substr(eq + 1)));
  }
}

}  // namespace

IntfPtr<IVSDotNetSolution> OpenSolution(const std::string& fileName, bool includeMissingProjects) {
  return TSolutionReader(fileName, includeMissingProjects).Read();
}

}  // namespace qv
