// The path service: finds files that Visual Studio's files name without regard to letter
// case ("Scribble.vcproj" for scribble.vcproj) on file systems that keep case apart.
#pragma once

#include <string>

namespace qv {

// `path` when it exists as written; otherwise the existing path whose components equal
// those of `path` without regard to (ASCII) letter case, where an exact name wins and two
// names differing only in case count as no match; `path` unchanged when none exists.
// Folder listings are cached and reread when a folder changes.
std::string ResolvePathCase(const std::string& path);

// True when a regular file exists at `path`, looked up as ResolvePathCase does.
bool FileExistsAnyCase(const std::string& path);

// The path of the regular file `path` names, looked up as ResolvePathCase does, or empty
// when there is none. One status call when the file exists as written.
std::string ResolveExistingFile(const std::string& path);

// Forgets every cached folder listing.
void ClearPathCaseCache();

}  // namespace qv
