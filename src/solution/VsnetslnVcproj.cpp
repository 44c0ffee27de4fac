#include "VsnetslnVcproj.h"

#include <libxml/encoding.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

#include "QvExceptions.h"
#include "QvSysUtils.h"
#include "QvText.h"

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

// Windows-1252, the encoding Visual Studio declares in its project files, for a libxml2
// built without iconv (the Windows build): bytes 0x80-0x9F by the code page's table (the
// five it leaves out stay the C1 controls they would be in Latin-1), the rest as Latin-1.
int Windows1252ToUtf8(unsigned char* out, int* outLength, const unsigned char* in, int* inLength) {
  static const char16_t kHigh[32] = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  int read = 0, written = 0;
  for (; read < *inLength; ++read) {
    unsigned c = in[read];
    if (c >= 0x80 && c < 0xA0) c = kHigh[c - 0x80];
    int need = c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
    if (written + need > *outLength) break;
    if (need == 1) {
      out[written++] = static_cast<unsigned char>(c);
    } else if (need == 2) {
      out[written++] = static_cast<unsigned char>(0xC0 | (c >> 6));
      out[written++] = static_cast<unsigned char>(0x80 | (c & 0x3F));
    } else {
      out[written++] = static_cast<unsigned char>(0xE0 | (c >> 12));
      out[written++] = static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F));
      out[written++] = static_cast<unsigned char>(0x80 | (c & 0x3F));
    }
  }
  *inLength = read;
  *outLength = written;
  return written;
}

void InitialiseParser() {
  xmlInitParser();
  if (xmlCharEncodingHandler* h = xmlFindCharEncodingHandler("Windows-1252"))
    xmlCharEncCloseFunc(h);
  else
    xmlNewCharEncodingHandler("WINDOWS-1252", Windows1252ToUtf8, nullptr);
}

// Visual Studio declares Windows-1252. A file whose bytes are all ASCII and whose declaration
// names an encoding that keeps ASCII as it is reads the same as UTF-8, so the parser may skip
// the conversion (most of its time on small files). Anything else goes the declared way.
bool ReadsAsUtf8(std::string_view text) {
  for (unsigned char c : text)
    if (c >= 0x80) return false;
  constexpr std::string_view kOpen = "<?xml", kName = "encoding";
  if (!text.starts_with(kOpen)) return false;
  std::string_view decl = text.substr(0, text.find("?>"));
  size_t at = decl.find(kName);
  if (at == std::string_view::npos) return true;  // no declared encoding: UTF-8 already
  std::string_view rest = TrimLeftView(decl.substr(at + kName.size()));
  if (!rest.starts_with('=')) return false;
  rest = TrimLeftView(rest.substr(1));
  if (rest.empty() || (rest[0] != '"' && rest[0] != '\'')) return false;
  size_t close = rest.find(rest[0], 1);
  if (close == std::string_view::npos) return false;
  std::string_view name = rest.substr(1, close - 1);
  for (std::string_view ascii : {"Windows-1252", "UTF-8", "ISO-8859-1", "US-ASCII"})
    if (SameText(name, ascii)) return true;
  return false;
}

// A parser context for one read. Reads that skip the conversion share one per thread (a
// fresh context costs more than parsing a small project file); the parser keeps that option
// from read to read, so no other read uses it.
std::unique_ptr<xmlParserCtxt, CtxtFree> NewParser(const std::string& path) {
  std::unique_ptr<xmlParserCtxt, CtxtFree> ctxt(xmlNewParserCtxt());
  if (!ctxt) throw Exception("Error parsing project file : out of memory (" + path + ")");
  return ctxt;
}

xmlParserCtxt* Utf8Parser(const std::string& path) {
  thread_local std::unique_ptr<xmlParserCtxt, CtxtFree> ctxt = NewParser(path);
  return ctxt.get();
}

[[noreturn]] void Fail(const std::string& reason, int line, const std::string& path) {
  throw Exception("Error parsing project file : " + reason + " (line " + std::to_string(line) +
                  " of " + path + ")");
}

}  // namespace

std::vector<std::string> ReadVcprojResourceScripts(std::string_view text, const std::string& path) {
  static const bool initialised = (InitialiseParser(), true);
  (void)initialised;
  bool utf8 = ReadsAsUtf8(text);
  std::unique_ptr<xmlParserCtxt, CtxtFree> own = utf8 ? nullptr : NewParser(path);
  xmlParserCtxt* ctxt = utf8 ? Utf8Parser(path) : own.get();
  // Errors go to the handler (nothing reaches standard error); no network access.
  FirstError first;
  xmlSetStructuredErrorFunc(&first, CaptureError);
  int options = XML_PARSE_NONET | (utf8 ? XML_PARSE_IGNORE_ENC : 0);
  std::unique_ptr<xmlDoc, DocFree> doc(xmlCtxtReadMemory(
      ctxt, text.data(), static_cast<int>(text.size()), path.c_str(), nullptr, options));
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
