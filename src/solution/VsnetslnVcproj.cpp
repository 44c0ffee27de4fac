#include "VsnetslnVcproj.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qv {

namespace {

struct DocFree {
  void operator()(xmlDoc* d) const { xmlFreeDoc(d); }
};
struct CtxtFree {
  void operator()(xmlParserCtxt* c) const { xmlFreeParserCtxt(c); }
};

bool IsElement(const xmlNode* n, const char* name) {
  return n->type == XML_ELEMENT_NODE &&
         std::string_view(reinterpret_cast<const char*>(n->name)) == name;
}

std::string Attribute(xmlNode* n, const char* name) {
  xmlChar* v = xmlGetProp(n, reinterpret_cast<const xmlChar*>(name));
  std::string out = v ? reinterpret_cast<const char*>(v) : "";
  xmlFree(v);
  return out;
}

// The first error the parser reports: later ones follow from it.
struct FirstError {
  std::string Message;
  int Line = 0;
  bool Set = false;
};

void CaptureError(void* data, xmlError* e) {
  auto* first = static_cast<FirstError*>(data);
  if (first->Set || !e || e->level < XML_ERR_ERROR) return;
  first->Message = e->message ? Trim(e->message) : "the document is not well-formed";
  first->Line = e->line;
  first->Set = true;
}

[[noreturn]] void Fail(const std::string& reason, int line, const std::string& path) {
  throw Exception("Error parsing project file : " + reason + " (line " + std::to_string(line) +
                  " of " + path + ")");
}

}  // namespace

std::vector<std::string> ReadVcprojResourceScripts(std::string_view text, const std::string& path) {
  static const bool initialised = (xmlInitParser(), true);
  (void)initialised;
  std::unique_ptr<xmlParserCtxt, CtxtFree> ctxt(xmlNewParserCtxt());
  if (!ctxt) throw Exception("Error parsing project file : out of memory (" + path + ")");
  // Errors go to the handler (nothing reaches standard error); no network access.
  FirstError first;
  xmlSetStructuredErrorFunc(&first, CaptureError);
  std::unique_ptr<xmlDoc, DocFree> doc(xmlCtxtReadMemory(ctxt.get(), text.data(),
                                                         static_cast<int>(text.size()),
                                                         path.c_str(), nullptr, XML_PARSE_NONET));
  xmlSetStructuredErrorFunc(nullptr, nullptr);
  if (!doc || !ctxt->wellFormed || !ctxt->nsWellFormed)
    Fail(first.Set ? first.Message : "the document is not well-formed", first.Line, path);
  std::vector<std::string> scripts;
  xmlNode* root = xmlDocGetRootElement(doc.get());
  if (!root || !IsElement(root, "VisualStudioProject")) return scripts;
  for (xmlNode* files = root->children; files; files = files->next) {
    if (!IsElement(files, "Files")) continue;
    // Only files inside a first-level filter count; nested filters are not looked into.
    for (xmlNode* filter = files->children; filter; filter = filter->next) {
      if (!IsElement(filter, "Filter")) continue;
      for (xmlNode* file = filter->children; file; file = file->next) {
        if (!IsElement(file, "File")) continue;
        std::string rel = Attribute(file, "RelativePath");
        if (SameText(ExtractFileExt(rel), ".rc")) scripts.push_back(rel);
      }
    }
  }
  return scripts;
}

}  // namespace qv
