// Finding, loading, starting and stopping the package modules the host runs with.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "QvPackage.h"

namespace qvhost {

// The files named *.qvp (any letter case) in `folder`, sorted by name; none when the folder
// cannot be read.
std::vector<std::string> FindPackageFiles(const std::string& folder);

// The loaded packages. Loading starts each one (Initialize) and registers its contributions
// (QvRegister); destruction finalises them in reverse order and unloads them.
class TPackageLoader {
 public:
  TPackageLoader() = default;
  ~TPackageLoader();
  TPackageLoader(const TPackageLoader&) = delete;
  TPackageLoader& operator=(const TPackageLoader&) = delete;

  // Loads, initialises and registers each file in order; a file named twice (by any path to
  // it) loads once. The host's service slots must be set. Throws qv::Exception naming the
  // file when a module cannot be loaded or its registration fails.
  void Load(const std::vector<std::string>& files, bool designTime);
  // Calls Finalize of every package, last loaded first (destruction does it too).
  void FinalizeAll();

  size_t Count() const { return FModules.size(); }

 private:
  std::vector<std::unique_ptr<qv::TQvPackageModule>> FModules;
  std::vector<std::string> FLoadedPaths;
};

}  // namespace qvhost
