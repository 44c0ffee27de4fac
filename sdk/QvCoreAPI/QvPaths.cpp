#include "QvPaths.h"

#include <filesystem>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qv {

namespace {
// One folder's names: exact, and by lower-cased name the one name it stands for (empty
// when two names differ only in case).
struct TFolderListing {
  std::filesystem::file_time_type Changed{};
  std::unordered_set<std::string> Exact;
  std::unordered_map<std::string, std::string> Folded;
};

std::mutex CacheLock;  // the SDK is shared by every action thread of the host
std::unordered_map<std::string, TFolderListing> Cache;

// The listing of `folder`, read once and again only when the folder's change time moves
// (a file created or renamed in it). Null when the folder cannot be listed.
const TFolderListing* Listing(const std::string& folder) {
  std::error_code ec;
  std::filesystem::path native = platform::FsPath(folder);
  auto changed = std::filesystem::last_write_time(native, ec);
  if (ec || !std::filesystem::is_directory(native, ec)) return nullptr;
  auto it = Cache.find(folder);
  if (it != Cache.end() && it->second.Changed == changed) return &it->second;
  TFolderListing listing;
  listing.Changed = changed;
  for (const auto& entry : std::filesystem::directory_iterator(native, ec)) {
    std::string name = platform::Utf8Path(entry.path().filename());
    auto [pos, added] = listing.Folded.emplace(LowerCase(name), name);
    if (!added) pos->second.clear();
    listing.Exact.insert(std::move(name));
  }
  if (ec) return nullptr;
  return &(Cache[folder] = std::move(listing));
}

// The name in `folder` that `name` stands for, or empty.
std::string MatchInFolder(const std::string& folder, const std::string& name) {
  const TFolderListing* listing = Listing(folder);
  if (!listing) return {};
  if (listing->Exact.count(name)) return name;
  auto it = listing->Folded.find(LowerCase(name));
  return it == listing->Folded.end() ? std::string() : it->second;
}

bool Exists(const std::string& path) {
  std::error_code ec;
  return std::filesystem::exists(platform::FsPath(path), ec);
}
}  // namespace

std::string ResolvePathCase(const std::string& path) {
  if (path.empty() || Exists(path)) return path;
  const char sep = platform::PathDelim;
  bool absolute = path[0] == sep;
  std::string resolved = absolute ? std::string(1, sep) : std::string();
  std::lock_guard<std::mutex> guard(CacheLock);
  size_t i = absolute ? 1 : 0;
  while (i <= path.size()) {
    size_t j = path.find(sep, i);
    if (j == std::string::npos) j = path.size();
    std::string part = path.substr(i, j - i);
    i = j + 1;
    if (part.empty() || part == ".") continue;
    if (part != "..") {
      part = MatchInFolder(resolved.empty() ? std::string(".") : resolved, part);
      if (part.empty()) return path;
    }
    if (!resolved.empty() && resolved.back() != sep) resolved += sep;
    resolved += part;
  }
  return resolved;
}

bool FileExistsAnyCase(const std::string& path) {
  return !ResolveExistingFile(path).empty();
}

std::string ResolveExistingFile(const std::string& path) {
  std::error_code ec;
  auto status = std::filesystem::status(platform::FsPath(path), ec);
  if (std::filesystem::exists(status))
    return std::filesystem::is_regular_file(status) ? path : std::string();
  std::string resolved = ResolvePathCase(path);
  return resolved != path && platform::FileExists(resolved) ? resolved : std::string();
}

void ClearPathCaseCache() {
  std::lock_guard<std::mutex> guard(CacheLock);
  Cache.clear();
}

}  // namespace qv
