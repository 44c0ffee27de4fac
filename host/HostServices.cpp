#include "HostServices.h"

#include "OptionsStore.h"
#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qvhost {

namespace {
using TPages = std::vector<std::pair<std::string, std::vector<std::string>>>;

// A later registration of pages for the same class replaces the earlier one in its place.
void SetPages(TPages& pages, std::string_view className, const std::vector<std::string>& list) {
  for (auto& [name, classes] : pages)
    if (name == className) {
      classes = list;
      return;
    }
  pages.emplace_back(std::string(className), list);
}
std::string Join(const std::vector<std::string>& items) {
  std::string s;
  for (const auto& item : items)
    s += (s.empty() ? "" : ", ") + item;
  return s;
}

}  // namespace

THostServices::~THostServices() {
  ReleaseOptions();
}

void THostServices::RegisterAction(const std::string& caption, const std::string& category,
                                   const std::string& iconName, const qv::TQvActionClass& cls) {
  FSequence.push_back("action " + std::string(cls.ClassName) + " \"" + caption + "\" " + category +
                      " " + iconName);
  for (const auto& a : FActions)
    if (qv::SameText(a.Class->ClassName, cls.ClassName))
      throw qv::Exception("Action class " + std::string(cls.ClassName) + " is already registered");
  FActions.push_back({caption, category, iconName, &cls});
}

void THostServices::RegisterActionPages(const qv::TQvActionClass& cls,
                                        const std::vector<std::string>& pageClasses) {
  FSequence.push_back("action pages " + std::string(cls.ClassName) + ": " + Join(pageClasses));
  SetPages(FActionPages, cls.ClassName, pageClasses);
}

void THostServices::RegisterPropertyEditor(const std::string& propertyType,
                                           const qv::TQvActionClass& cls,
                                           const std::string& propertyName,
                                           const std::string& editorClass) {
  FSequence.push_back("property editor " + std::string(cls.ClassName) + "." + propertyName + " (" +
                      propertyType + ") " + editorClass);
  FEditors.push_back({propertyType, &cls, propertyName, editorClass});
}

void THostServices::RegisterMethod(const qv::TQvActionClass& cls, const std::string& name,
                                   const std::string& signature, qv::TScriptMethodHandler) {
  FSequence.push_back("method " + std::string(cls.ClassName) + "." + name + signature);
  FMethods.push_back({&cls, name, signature});
}

void THostServices::RegisterConstant(const std::string& name, int64_t value) {
  FSequence.push_back("constant " + name + " = " + std::to_string(value));
  FConstants.push_back({name, value});
}

void THostServices::RegisterGlobalObject(const std::string& name, const std::string& signature,
                                         qv::TScriptFunctionHandler) {
  FSequence.push_back("global object " + name + signature);
  FGlobals.push_back({name, signature});
}

void THostServices::RegisterEnumeration(const qv::TEnumTypeInfo& type) {
  FSequence.push_back("enumeration " + std::string(type.Name));
  FEnums.push_back(&type);
}

void THostServices::RegisterOptions(const qv::TQvOptionsClass& cls, const std::string& iconName) {
  FSequence.push_back("options " + std::string(cls.ClassName) + " " + iconName);
  for (const auto& o : FOptions)
    if (qv::SameText(o.Class->ClassName, cls.ClassName))
      throw qv::Exception("Options class " + std::string(cls.ClassName) + " is already registered");
  qv::TQvOptionsObject* options = cls.Create();
  qv::IntfPtr<qv::IInterface> ref(static_cast<qv::IInterface*>(options));
  FOptions.push_back({&cls, iconName, std::move(ref), options});
}

void THostServices::RegisterOptionPages(const qv::TQvOptionsClass& cls,
                                        const std::vector<std::string>& pageClasses) {
  FSequence.push_back("option pages " + std::string(cls.ClassName) + ": " + Join(pageClasses));
  SetPages(FOptionPages, cls.ClassName, pageClasses);
}

qv::IntfPtr<qv::IInterface> THostServices::FindOptions(const std::string& name,
                                                       const std::string& category) {
  for (const auto& o : FOptions)
    if (qv::SameText(o.Options->GetName(), name) &&
        qv::SameText(o.Options->GetCategory(), category))
      return o.Object;
  return nullptr;
}

const TActionRegistration* THostServices::FindAction(std::string_view typeOrCaption) const {
  for (const auto& a : FActions)
    if (qv::SameText(a.Class->ClassName, typeOrCaption)) return &a;
  for (const auto& a : FActions)
    if (qv::SameText(a.Caption, typeOrCaption)) return &a;
  return nullptr;
}

void THostServices::LoadOptions(TOptionsStore& store) {
  for (auto& o : FOptions)
    store.LoadObject(*o.Options);
}

bool THostServices::SaveModifiedOptions(TOptionsStore& store) {
  bool saved = false;
  for (auto& o : FOptions)
    if (o.Options->IsModified()) {
      store.SaveObject(*o.Options);
      saved = true;
    }
  if (saved) store.Flush();
  return saved;
}

void THostServices::ReleaseOptions() {
  FOptions.clear();
}

}  // namespace qvhost
