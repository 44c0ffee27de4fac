#include "QvProcess.h"

#include <utility>

namespace qv {

void TAutoResetEvent::Signal() {
  {
    std::lock_guard lock(FMutex);
    FSignalled = true;
  }
  FCond.notify_all();
}

bool TAutoResetEvent::WaitFor(std::chrono::milliseconds timeout) {
  std::unique_lock lock(FMutex);
  if (!FCond.wait_for(lock, timeout, [this] { return FSignalled; })) return false;
  FSignalled = false;
  return true;
}

bool TAutoResetEvent::TryWait() {
  std::lock_guard lock(FMutex);
  bool was = FSignalled;
  FSignalled = false;
  return was;
}

std::string QuoteCommandLineArg(std::string_view arg) {
  if (!arg.empty() && arg.find_first_of(" \t\"") == std::string_view::npos) return std::string(arg);
  std::string r = "\"";
  size_t backslashes = 0;
  for (char c : arg) {
    if (c == '\\') {
      ++backslashes;
      continue;
    }
    // Backslashes before a quote are doubled; the quote itself is escaped.
    r.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
    backslashes = 0;
    r += c;
  }
  r.append(backslashes * 2, '\\');  // they stand before the closing quote
  r += '"';
  return r;
}

std::vector<std::string> SplitCommandLine(std::string_view text) {
  std::vector<std::string> args;
  size_t i = 0, n = text.size();
  while (true) {
    while (i < n && (text[i] == ' ' || text[i] == '\t'))
      ++i;
    if (i >= n) break;
    std::string arg;
    bool quoted = false;
    while (i < n && (quoted || (text[i] != ' ' && text[i] != '\t'))) {
      if (text[i] == '\\') {
        size_t count = 0;
        while (i < n && text[i] == '\\')
          ++count, ++i;
        if (i < n && text[i] == '"') {
          arg.append(count / 2, '\\');
          if (count % 2) {
            arg += '"';
            ++i;
          }
        } else {
          arg.append(count, '\\');
        }
        continue;
      }
      if (text[i] == '"') {
        if (quoted && i + 1 < n && text[i + 1] == '"') {
          arg += '"';
          i += 2;
          continue;
        }
        quoted = !quoted;
        ++i;
        continue;
      }
      arg += text[i++];
    }
    args.push_back(std::move(arg));
  }
  return args;
}

namespace {

class TArgument : public TInterfacedObject, public IArgument {
 public:
  TArgument(std::string_view sw, std::string_view value, int options)
      : FSwitch(sw), FValue(value), FOptions(options) {}
  std::string GetSwitch() const override { return FSwitch; }
  std::string GetValue() const override { return FValue; }
  int GetOptions() const override { return FOptions; }
  std::string GetText() const override {
    bool quote = FOptions & (caoQuoteValue | caoJoinQuoted);
    bool join = FOptions & (caoNoSeparator | caoJoinQuoted);
    if (FValue.empty() && !quote) return FSwitch;
    std::string value = quote ? QuoteCommandLineArg(FValue) : FValue;
    if (FSwitch.empty()) return value;
    return FSwitch + (join ? "" : " ") + value;
  }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IArgument>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  std::string FSwitch, FValue;
  int FOptions;
};

class TCommandLineBuilder : public TInterfacedObject, public ICommandLineBuilder {
 public:
  void Reset(int) override { FArgs.clear(); }
  IntfPtr<IArgument> AddArgument(std::string_view sw, std::string_view value,
                                 int options) override {
    FArgs.push_back(MakeIntf<IArgument, TArgument>(sw, value, options));
    return FArgs.back();
  }
  int GetCount() const override { return static_cast<int>(FArgs.size()); }
  std::string GetCommandLine() const override {
    std::string r;
    for (const auto& a : FArgs) {
      if (!r.empty()) r += ' ';
      r += a->GetText();
    }
    return r;
  }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<ICommandLineBuilder>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  std::vector<IntfPtr<IArgument>> FArgs;
};

}  // namespace

IntfPtr<ICommandLineBuilder> NewCommandLineBuilder() {
  return MakeIntf<ICommandLineBuilder, TCommandLineBuilder>();
}

void TLineAssembler::Feed(std::string_view read, const TSink& sink) {
  size_t end = read.rfind('\n');
  if (end == std::string_view::npos) {
    FTail.append(read);
    return;
  }
  if (FTail.empty()) {
    sink(read.substr(0, end + 1));
  } else {
    FTail.append(read.substr(0, end + 1));
    std::string whole = std::exchange(FTail, std::string());
    sink(whole);
  }
  FTail.assign(read.substr(end + 1));
}

void TLineAssembler::Finish(const TSink& sink) {
  std::string rest = std::exchange(FTail, std::string());
  if (!rest.empty()) sink(rest);
}

}  // namespace qv
