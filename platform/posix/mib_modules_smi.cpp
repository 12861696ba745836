// libsmi keeps what it reads in global tables, leaves the process on some faults of a module and reads freed memory on
// others. So it is loaded and run in a child process, which writes what it found to a pipe:
//
//   M NAME                        the module that is read from now on
//   O NUMBER NAME ACCESS TYPE     an object
//   E TEXT                        what is wrong; the rest does not count
//   .                             the end, without which the child has failed
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <set>

#include "platform/mib_modules.h"

#define class smiClass   // a parameter of libsmi's header, which is C
#include <smi.h>
#undef class

namespace qxview {
namespace {

constexpr unsigned kLongestReading = 20;   // seconds
constexpr int kFatal = 1;                  // libsmi's severity of faults that leave no module to work with

struct Smi {
  decltype(&smiInit) init;
  decltype(&smiSetPath) setPath;
  decltype(&smiSetFlags) setFlags;
  decltype(&smiSetErrorLevel) setErrorLevel;
  decltype(&smiSetErrorHandler) setErrorHandler;
  decltype(&smiLoadModule) loadModule;
  decltype(&smiGetModule) getModule;
  decltype(&smiGetFirstNode) firstNode;
  decltype(&smiGetNextNode) nextNode;
  decltype(&smiGetParentNode) parentNode;
  decltype(&smiGetNodeType) nodeType;
  decltype(&smiGetParentType) parentType;
  decltype(&smiGetFirstImport) firstImport;
  decltype(&smiGetNextImport) nextImport;

  bool Load() {
    void* library = dlopen("libsmi.so.2", RTLD_NOW | RTLD_LOCAL);
    if (!library) return false;
    const auto find = [&](auto& function, const char* name) {
      function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
      return function != nullptr;
    };
    return find(init, "smiInit") && find(setPath, "smiSetPath") && find(setFlags, "smiSetFlags") &&
           find(setErrorLevel, "smiSetErrorLevel") && find(setErrorHandler, "smiSetErrorHandler") &&
           find(loadModule, "smiLoadModule") && find(getModule, "smiGetModule") &&
           find(firstNode, "smiGetFirstNode") && find(nextNode, "smiGetNextNode") &&
           find(parentNode, "smiGetParentNode") && find(nodeType, "smiGetNodeType") &&
           find(parentType, "smiGetParentType") && find(firstImport, "smiGetFirstImport") &&
           find(nextImport, "smiGetNextImport");
  }
};

// --- in the child ---

FILE* childOutput;
const char* childModule;

[[noreturn]] void FailChild(const char* format, ...) {
  std::fputs("E ", childOutput);
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(childOutput, format, arguments);
  va_end(arguments);
  std::fputc('\n', childOutput);
  std::fflush(childOutput);
  _exit(1);
}

void TakeFault(char* path, int line, int severity, char* text, char*) {
  if (severity > kFatal) return;
  if (path && line > 0) FailChild("MibModules: module %s: %s:%d: %s", childModule, path, line, text);
  FailChild("MibModules: module %s: %s", childModule, text);
}

const char* AccessText(const Smi& smi, SmiNode* node) {
  switch (node->access) {
    case SMI_ACCESS_NOTIFY: return "accessible-for-notify";
    case SMI_ACCESS_READ_ONLY: return "read-only";
    case SMI_ACCESS_READ_WRITE: {
      const SmiNode* row = node->nodekind == SMI_NODEKIND_COLUMN ? smi.parentNode(node) : nullptr;
      return row && row->create ? "read-create" : "read-write";
    }
    default: return "not-accessible";
  }
}

const char* BaseText(SmiBasetype base) {
  switch (base) {
    case SMI_BASETYPE_INTEGER32: return "Integer32";
    case SMI_BASETYPE_OCTETSTRING: return "OCTET STRING";
    case SMI_BASETYPE_OBJECTIDENTIFIER: return "OBJECT IDENTIFIER";
    case SMI_BASETYPE_UNSIGNED32: return "Unsigned32";
    case SMI_BASETYPE_UNSIGNED64: return "Counter64";
    case SMI_BASETYPE_BITS: return "BITS";
    default: return "INTEGER";
  }
}

// The type as the module names it: what has a range or a size of its own goes by the type that it restricts.
const char* TypeText(const Smi& smi, SmiNode* node) {
  switch (node->nodekind) {
    case SMI_NODEKIND_TABLE: return "SEQUENCE OF";
    case SMI_NODEKIND_ROW: return "SEQUENCE";
    case SMI_NODEKIND_NOTIFICATION: return "NOTIFICATION-TYPE";
    case SMI_NODEKIND_SCALAR:
    case SMI_NODEKIND_COLUMN: break;
    default: return node->decl == SMI_DECL_MODULEIDENTITY     ? "MODULE-IDENTITY"
                    : node->decl == SMI_DECL_OBJECTIDENTITY   ? "OBJECT-IDENTITY"
                    : node->decl == SMI_DECL_MODULECOMPLIANCE ? "MODULE-COMPLIANCE"
                    : node->decl == SMI_DECL_OBJECTGROUP      ? "OBJECT-GROUP"
                    : node->decl == SMI_DECL_NOTIFICATIONGROUP ? "NOTIFICATION-GROUP"
                                                               : "OBJECT IDENTIFIER";
  }
  SmiType* type = smi.nodeType(node);
  if (!type) return "INTEGER";
  SmiType* named = type;
  while (named && !named->name) named = smi.parentType(named);
  const std::string name = named ? named->name : "";
  // libsmi's own names of the types that ASN.1 writes in capitals.
  const bool isBase = name.empty() || name == "OctetString" || name == "ObjectIdentifier" || name == "Enumeration" ||
                      name == "Bits";
  return isBase ? BaseText(type->basetype) : named->name;
}

void WriteObjects(const Smi& smi, SmiModule* module) {
  for (SmiNode* node = smi.firstNode(module, SMI_NODEKIND_ANY); node; node = smi.nextNode(node, SMI_NODEKIND_ANY)) {
    if (!node->name || node->oidlen == 0) continue;
    std::fputs("O ", childOutput);
    for (unsigned int i = 0; i < node->oidlen; ++i) std::fprintf(childOutput, i > 0 ? ".%u" : "%u", node->oid[i]);
    std::fprintf(childOutput, " %s %s %s\n", node->name, AccessText(smi, node), TypeText(smi, node));
  }
}

// Writes a module behind those that it imports, each once.
void WriteModule(const Smi& smi, const char* name, std::set<std::string>& written) {
  SmiModule* module = smi.getModule(name);
  if (!module || !written.insert(name).second) return;
  for (SmiImport* import = smi.firstImport(module); import; import = smi.nextImport(import)) {
    if (import->module) WriteModule(smi, import->module, written);
  }
  WriteObjects(smi, module);
}

[[noreturn]] void RunChild(int file, const std::string& path, const std::vector<std::string>& modules) {
  // Whoever started the program may have the alarm ignored or blocked.
  std::signal(SIGALRM, SIG_DFL);
  sigset_t alarms;
  sigemptyset(&alarms);
  sigaddset(&alarms, SIGALRM);
  sigprocmask(SIG_UNBLOCK, &alarms, nullptr);
  alarm(kLongestReading);
  childOutput = fdopen(file, "w");
  if (!childOutput) _exit(1);
  childModule = modules.front().c_str();
  Smi smi{};
  if (!smi.Load()) FailChild("MibModules: module %s: libsmi is not on this machine", childModule);
  smi.init("qxview");
  smi.setErrorHandler(TakeFault);
  smi.setErrorLevel(kFatal);
  smi.setFlags(SMI_FLAG_ERRORS | SMI_FLAG_NODESCR);
  if (!path.empty()) smi.setPath(path.c_str());
  std::set<std::string> written;
  for (const std::string& module : modules) {
    childModule = module.c_str();
    std::fprintf(childOutput, "M %s\n", childModule);
    std::fflush(childOutput);
    const char* name = smi.loadModule(childModule);
    if (!name) FailChild("MibModules: module %s: cannot be loaded", childModule);
    WriteModule(smi, name, written);
  }
  std::fputs(".\n", childOutput);
  std::fflush(childOutput);
  _exit(0);
}

// --- in this process ---

std::string ReadAll(int file) {
  std::string text;
  char buffer[16384];
  for (;;) {
    const ssize_t got = read(file, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return text;
    text.append(buffer, static_cast<size_t>(got));
  }
}

// The object of a line "NUMBER NAME ACCESS TYPE".
MibObject ObjectOf(const std::string& line) {
  MibObject object;
  size_t at = 0;
  uint32_t arc = 0;
  for (; at < line.size() && line[at] != ' '; ++at) {
    if (line[at] != '.') {
      arc = arc * 10 + static_cast<uint32_t>(line[at] - '0');
    } else {
      object.number.push_back(arc);
      arc = 0;
    }
  }
  object.number.push_back(arc);
  const auto word = [&] {
    const size_t from = std::min(at + 1, line.size());
    at = std::min(line.find(' ', from), line.size());
    return line.substr(from, at - from);
  };
  object.name = word();
  object.access = word();
  object.type = line.substr(std::min(at + 1, line.size()));
  return object;
}

bool ParseLines(const std::string& text, std::vector<MibObject>* objects, std::string* message) {
  std::string module;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find('\n', at), text.size());
    const std::string line = text.substr(at, end - at);
    at = end + 1;
    if (line == ".") return true;
    if (line.size() < 2) continue;
    const std::string rest = line.substr(2);
    if (line[0] == 'E') return *message = rest, false;
    if (line[0] == 'M') module = rest;
    if (line[0] == 'O') objects->push_back(ObjectOf(rest));
  }
  return *message = "MibModules: module " + module + ": libsmi failed on it", false;
}

}  // namespace

bool ReadMibModules(const std::string& path, const std::vector<std::string>& modules, std::vector<MibObject>* objects,
                    std::string* message) {
  int ends[2];
  if (pipe(ends) != 0) return *message = "MibModules: no pipe to read modules through", false;
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    RunChild(ends[1], path, modules);
  }
  close(ends[1]);
  const std::string text = child > 0 ? ReadAll(ends[0]) : "";
  close(ends[0]);
  // Whoever has the process's children reaped may be faster.
  while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {}
  return ParseLines(text, objects, message);
}

}  // namespace qxview
