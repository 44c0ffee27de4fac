// The host's .NET Framework lookup for tests: installed for the object's lifetime, it
// answers from Folders by version text, "*" standing for any other non-empty version.
#pragma once

#include <map>
#include <string>

#include "QvDotNetFramework.h"

namespace qvtest {

struct FakeDotNetInfo : qv::IQvDotNetInfo {
  std::map<std::string, std::string> Folders;
  qv::IQvDotNetInfo* Saved = qv::QvDotNetInfo;
  FakeDotNetInfo() { qv::QvDotNetInfo = this; }
  ~FakeDotNetInfo() { qv::QvDotNetInfo = Saved; }
  qv::IntfPtr<qv::IQvDotNetFramework> GetFramework(const std::string& version) override {
    auto it = Folders.find(version);
    if (it == Folders.end() && !version.empty()) it = Folders.find("*");
    return it == Folders.end() ? nullptr : qv::NewDotNetFramework(version, it->second);
  }
};

}  // namespace qvtest
