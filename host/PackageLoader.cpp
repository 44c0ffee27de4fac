#include "PackageLoader.h"

#include <algorithm>
#include <filesystem>

#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qvhost {

namespace fs = std::filesystem;

std::vector<std::string> FindPackageFiles(const std::string& folder) {
  std::vector<std::string> files;
  std::error_code ec;
  for (auto it = fs::directory_iterator(qv::platform::FsPath(folder), ec);
       !ec && it != fs::directory_iterator(); it.increment(ec)) {
    std::string name = qv::platform::Utf8Path(it->path().filename());
    if (qv::SameText(qv::ExtractFileExt(name), ".qvp") && it->is_regular_file(ec))
      files.push_back(qv::platform::Utf8Path(it->path()));
  }
  std::sort(files.begin(), files.end());
  return files;
}

TPackageLoader::~TPackageLoader() {
  FinalizeAll();
  // Unload the last loaded first: a later package may use an earlier one.
  while (!FModules.empty())
    FModules.pop_back();
}

void TPackageLoader::Load(const std::vector<std::string>& files, bool designTime) {
  for (const auto& file : files) {
    std::error_code ec;
    std::string canonical =
        qv::platform::Utf8Path(fs::weakly_canonical(qv::platform::FsPath(file), ec));
    if (ec) canonical = file;
    if (std::find(FLoadedPaths.begin(), FLoadedPaths.end(), canonical) != FLoadedPaths.end())
      continue;
    // Kept even when its registration fails: what it did register points into it.
    FModules.push_back(qv::TQvPackageModule::Load(file));
    FLoadedPaths.push_back(canonical);
    FModules.back()->Initialize();
    try {
      FModules.back()->Register(designTime);
    } catch (const std::exception& e) {
      throw qv::Exception("Package " + file + " failed to register : " + e.what());
    }
  }
}

void TPackageLoader::FinalizeAll() {
  for (auto it = FModules.rbegin(); it != FModules.rend(); ++it)
    (*it)->Finalize();
}

}  // namespace qvhost
