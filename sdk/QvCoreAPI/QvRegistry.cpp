#include "QvRegistry.h"

#include "QvClasses.h"
#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qv {

IQvRegistryReader* QvRegistry = nullptr;

bool RegistryReadString(TRegistryRoot root, const std::string& key, const std::string& name,
                        std::string& value) {
  return QvRegistry && QvRegistry->ReadString(root, key, name, value);
}

namespace {

const char* RootName(TRegistryRoot root) {
  switch (root) {
    case TRegistryRoot::LocalMachine:
      return "HKEY_LOCAL_MACHINE";
    case TRegistryRoot::CurrentUser:
      return "HKEY_CURRENT_USER";
    case TRegistryRoot::ClassesRoot:
      return "HKEY_CLASSES_ROOT";
    case TRegistryRoot::Users:
      return "HKEY_USERS";
  }
  return "";
}

// "HKLM\X" and "HKEY_LOCAL_MACHINE\X" name the same key; folds the short root names.
std::string NormalizeKey(std::string_view key) {
  std::string k = UpperCase(key);
  while (!k.empty() && k.back() == '\\')
    k.pop_back();
  static const std::pair<const char*, const char*> shortNames[] = {{"HKLM", "HKEY_LOCAL_MACHINE"},
                                                                   {"HKCU", "HKEY_CURRENT_USER"},
                                                                   {"HKCR", "HKEY_CLASSES_ROOT"},
                                                                   {"HKU", "HKEY_USERS"}};
  for (auto [s, l] : shortNames) {
    std::string prefix = std::string(s) + "\\";
    if (k == s || k.starts_with(prefix)) return l + k.substr(std::string_view(s).size());
  }
  return k;
}

// Parses a quoted .reg string starting at text[pos] == '"'; sets `end` after the closing
// quote. False when it is not closed.
bool ParseQuoted(std::string_view text, size_t pos, std::string& out, size_t& end) {
  out.clear();
  for (size_t i = pos + 1; i < text.size(); ++i) {
    char c = text[i];
    if (c == '\\' && i + 1 < text.size()) {
      out += text[++i];
      continue;
    }
    if (c == '"') {
      end = i + 1;
      return true;
    }
    out += c;
  }
  return false;
}

}  // namespace

std::unique_ptr<TRegFileRegistry> TRegFileRegistry::LoadFromFile(const std::string& fileName) {
  TStringList lines;
  lines.LoadFromFile(fileName);
  return LoadFromText(lines.Text(), fileName);
}

std::unique_ptr<TRegFileRegistry> TRegFileRegistry::LoadFromText(const std::string& text,
                                                                 const std::string& fileName) {
  TStringList lines;
  lines.SetText(text);
  auto reg = std::unique_ptr<TRegFileRegistry>(new TRegFileRegistry);
  auto fail = [&](int line, const std::string& what) {
    return Exception(fileName + ":" + std::to_string(line + 1) + ": " + what);
  };
  int first = 0;
  while (first < lines.Count() && Trim(lines[first]).empty())
    ++first;
  std::string header = first < lines.Count() ? Trim(lines[first]) : std::string();
  if (header != "Windows Registry Editor Version 5.00" && header != "REGEDIT4")
    throw fail(first,
               "not a registry export file (expected \"Windows Registry Editor Version "
               "5.00\" or \"REGEDIT4\")");

  std::map<std::string, Value>* current = nullptr;
  for (int i = first + 1; i < lines.Count(); ++i) {
    std::string line = Trim(lines[i]);
    // Hexadecimal values continue on the next line after a trailing backslash.
    while (line.ends_with("\\") && i + 1 < lines.Count())
      line = line.substr(0, line.size() - 1) + Trim(lines[++i]);
    if (line.empty() || line[0] == ';') continue;
    if (line[0] == '[') {
      if (line.back() != ']') throw fail(i, "unterminated key name");
      std::string key = line.substr(1, line.size() - 2);
      if (key.starts_with("-")) {
        std::string gone = NormalizeKey(key.substr(1));
        for (auto it = reg->FKeys.begin(); it != reg->FKeys.end();)
          it = (it->first == gone || it->first.starts_with(gone + "\\")) ? reg->FKeys.erase(it)
                                                                         : std::next(it);
        current = nullptr;
        continue;
      }
      current = &reg->FKeys[NormalizeKey(key)];
      continue;
    }
    if (!current) throw fail(i, "value outside any key");
    std::string name;
    size_t pos;
    if (line[0] == '@') {
      pos = 1;
    } else if (line[0] != '"' || !ParseQuoted(line, 0, name, pos)) {
      throw fail(i, "malformed value line");
    }
    if (pos >= line.size() || line[pos] != '=') throw fail(i, "missing \"=\" after the value name");
    std::string data = line.substr(pos + 1);
    if (data == "-") {
      current->erase(UpperCase(name));
      continue;
    }
    Value v{false, data};
    if (!data.empty() && data[0] == '"') {
      size_t end;
      if (!ParseQuoted(data, 0, v.Text, end) || end != data.size())
        throw fail(i, "malformed string value");
      v.IsString = true;
    }
    (*current)[UpperCase(name)] = v;
  }
  return reg;
}

bool TRegFileRegistry::ReadString(TRegistryRoot root, const std::string& key,
                                  const std::string& name, std::string& value) {
  auto k = FKeys.find(NormalizeKey(std::string(RootName(root)) + "\\" + key));
  if (k == FKeys.end()) return false;
  auto v = k->second.find(UpperCase(name));
  if (v == k->second.end() || !v->second.IsString) return false;
  value = v->second.Text;
  return true;
}

}  // namespace qv
