#include "OptionsStore.h"

#include <filesystem>
#include <sstream>

#include "HostPlatform.h"
#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "XmlSpans.h"

namespace qvhost {

namespace {

constexpr const char* kRoot = "QvOptions";

pugi::xml_node FindNamed(pugi::xml_node parent, const char* element, const char* attribute,
                         std::string_view name) {
  for (pugi::xml_node c : parent.children(element))
    if (qv::SameText(c.attribute(attribute).value(), name)) return c;
  return {};
}

class TSectionReader : public qv::IQvOptionsReader {
 public:
  TSectionReader(const TOptionsStore& store, std::string key)
      : FStore(store), FKey(std::move(key)) {}
  std::string ReadString(const std::string& name, const std::string& def) override {
    return FStore.Read(FKey, name, def);
  }
  int64_t ReadInteger(const std::string& name, int64_t def) override {
    return qv::StrToInt64Def(FStore.Read(FKey, name, std::to_string(def)), def);
  }

 private:
  const TOptionsStore& FStore;
  std::string FKey;
};

class TSectionWriter : public qv::IQvOptionsWriter {
 public:
  TSectionWriter(TOptionsStore& store, std::string key) : FStore(store), FKey(std::move(key)) {}
  void WriteString(const std::string& name, const std::string& value) override {
    FStore.Write(FKey, name, value, "string");
  }
  void WriteInteger(const std::string& name, int64_t value) override {
    FStore.Write(FKey, name, std::to_string(value), "integer");
  }

 private:
  TOptionsStore& FStore;
  std::string FKey;
};

}  // namespace

TOptionsStore::TOptionsStore(std::string fileName) : FFileName(std::move(fileName)) {
  std::string text, error;
  if (!qv::platform::FileExists(FFileName)) {
    FDoc.append_child(kRoot);
    return;
  }
  if (!qv::platform::ReadWholeFile(FFileName, text, error))
    throw qv::Exception("Cannot read options file \"" + FFileName + "\" : " + error);
  // Line ends stay as written: the writer puts a CR of a value into the file as it is, and
  // normalising it would read it back as LF.
  pugi::xml_parse_result r =
      FDoc.load_buffer(text.data(), text.size(),
                       (pugi::parse_default | pugi::parse_comments | pugi::parse_ws_pcdata_single) &
                           ~pugi::parse_eol);
  if (!r)
    throw qv::Exception(FFileName + ":" + std::to_string(LineAt(text, r.offset)) + ": " +
                        r.description());
  if (std::string_view(FDoc.document_element().name()) != kRoot)
    throw qv::Exception(FFileName + ": The root element is not <" + kRoot + ">");
}

std::string TOptionsStore::DefaultFileName() {
  return platform::UserConfigFolder() + "/options.xml";
}

pugi::xml_node TOptionsStore::Section(std::string_view key) const {
  return FindNamed(FDoc.document_element(), "Section", "key", key);
}

std::string TOptionsStore::Read(std::string_view key, std::string_view name,
                                const std::string& def) const {
  pugi::xml_node value = FindNamed(Section(key), "Value", "name", name);
  return value ? value.child_value() : def;
}

void TOptionsStore::Write(std::string_view key, std::string_view name, const std::string& value,
                          const char* type) {
  pugi::xml_node section = Section(key);
  if (!section) {
    section = FDoc.document_element().append_child("Section");
    section.append_attribute("key").set_value(std::string(key).c_str());
  }
  pugi::xml_node v = FindNamed(section, "Value", "name", name);
  if (!v) {
    v = section.append_child("Value");
    v.append_attribute("name").set_value(std::string(name).c_str());
  }
  if (!v.attribute("type")) v.append_attribute("type");
  v.attribute("type").set_value(type);
  v.text().set(value.c_str());
  FChanged = true;
}

void TOptionsStore::LoadObject(qv::TQvOptionsObject& options) {
  std::string key = options.GetOptionKey();
  std::string old = options.GetOldVersionOptionKey();
  if (!Section(key) && !old.empty() && Section(old)) key = old;
  TSectionReader reader(*this, key);
  options.LoadOptions(reader);
}

void TOptionsStore::SaveObject(qv::TQvOptionsObject& options) {
  TSectionWriter writer(*this, options.GetOptionKey());
  options.SaveOptions(writer);
}

void TOptionsStore::Flush() {
  if (!FChanged) return;
  std::ostringstream out;
  FDoc.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
  std::string folder = qv::ExtractFileDir(FFileName);
  std::error_code ec;
  if (!folder.empty()) std::filesystem::create_directories(qv::platform::FsPath(folder), ec);
  qv::platform::AtomicWriteFile(FFileName, out.str());
  FChanged = false;
}

}  // namespace qvhost
