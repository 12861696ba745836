#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <cstring>

#include "platform/platform.h"
#include "platform/win32/wide_text.h"

// Of the C run-time library: the command line's words, here without the expansion of wildcards that main's have had.
extern "C" int __cdecl __wgetmainargs(int* count, wchar_t*** words, wchar_t*** environment, int expandWildcards,
                                      int* startInformation);

namespace qxview {
namespace {

bool endsOnClosedPipe = false;
DWORD writeError = 0;
UINT consoleCodePage = 0;   // what the console wrote in before this program

HANDLE HandleOf(int64_t file) { return reinterpret_cast<HANDLE>(static_cast<intptr_t>(file)); }

bool IsConsole(HANDLE handle) {
  DWORD mode;
  return GetConsoleMode(handle, &mode) != 0;
}

int32_t WriteHandle(void* handle, const char* bytes, int32_t length) {
  while (length > 0) {
    DWORD written = 0;
    if (!WriteFile(handle, bytes, static_cast<DWORD>(length), &written, nullptr)) {
      const DWORD error = GetLastError();
      if (error == ERROR_OPERATION_ABORTED) continue;   // what ends the input does not end the output
      const bool closed =
          error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED;
      if (closed && endsOnClosedPipe && handle == GetStdHandle(STD_OUTPUT_HANDLE)) ExitProcess(0);
      return writeError = error, 0;
    }
    if (written == 0) return writeError = ERROR_WRITE_FAULT, 0;
    bytes += written;
    length -= static_cast<int32_t>(written);
  }
  return 1;
}

int32_t MoveHandleBack(void* handle, int64_t bytes) {
  LARGE_INTEGER now{}, none{};
  if (GetFileType(handle) != FILE_TYPE_DISK || !SetFilePointerEx(handle, none, &now, FILE_CURRENT)) return 0;
  if (now.QuadPart < bytes) return 0;
  now.QuadPart -= bytes;
  return SetFilePointerEx(handle, now, nullptr, FILE_BEGIN) && SetEndOfFile(handle) ? 1 : 0;
}

DWORD libraryError = 0;

// A library that is named by its path finds what it needs beside itself; one that is none is passed over without
// the box that the system would show.
void* LoadOne(const char* path) {
  std::wstring wide = WideOf(path);
  for (wchar_t& c : wide) c = c == L'/' ? L'\\' : c;
  if (wide.find(L'\\') != std::wstring::npos) {   // from the working folder on, which is none of those searched
    std::wstring whole(32768, L'\0');
    whole.resize(GetFullPathNameW(wide.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
    if (!whole.empty()) wide = whole;
  }
  const bool absolute = wide.size() > 2 && (wide[1] == L':' || wide[0] == L'\\');
  DWORD modeBefore = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &modeBefore);
  const HMODULE library = LoadLibraryExW(wide.c_str(), nullptr, absolute ? LOAD_WITH_ALTERED_SEARCH_PATH : 0);
  libraryError = library ? 0 : GetLastError();
  SetThreadErrorMode(modeBefore, nullptr);
  return library;
}

// Beside the program or among the system's libraries; never in the folder where a capture lies.
void* LoadCrypto() {
  for (const wchar_t* name : {L"libcrypto-3.dll", L"libcrypto-3-x64.dll"}) {
    const HMODULE library =
        LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library) return library;
  }
  libraryError = GetLastError();
  return nullptr;
}

void* FindEntry(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

// Lines are UTF-8 with escape sequences for colours where these are wanted.
void PrepareConsole() {
  const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode;
  if (!GetConsoleMode(console, &mode)) return;
  SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  consoleCodePage = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  std::atexit([] { SetConsoleOutputCP(consoleCodePage); });
}

bool FileInformation(const std::string& path, BY_HANDLE_FILE_INFORMATION* out) {
  if (path == "-") return GetFileInformationByHandle(GetStdHandle(STD_INPUT_HANDLE), out) != 0;
  const HANDLE file = CreateFileW(WidePathOf(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool good = GetFileInformationByHandle(file, out) != 0;
  CloseHandle(file);
  return good;
}

}  // namespace

LibraryLoader PlatformLibraryLoader() {
  // With backslashes alone a relative path is below the program's directory, as registries have had it.
  return {LoadOne, FindEntry, [](void* library) { FreeLibrary(static_cast<HMODULE>(library)); },
          [](const char* name) { return name[0] == '\\' || std::strpbrk(name, "/:") != nullptr; }, LoadCrypto};
}

void GiveBackLibraryPages() {}

std::string LibraryFailure() { return libraryError ? ErrorText(libraryError) : ""; }

std::string ExecutableDirectory() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  const size_t separator = path.rfind(L'\\');
  return separator == std::wstring::npos ? std::string() : NarrowOf(path.substr(0, separator).c_str());
}

OutputSink FileSink(int64_t file) { return {HandleOf(file), WriteHandle, MoveHandleBack, file}; }

int64_t CreateOutputFile(const std::string& path, std::string* message) {
  const HANDLE file = CreateFileW(WidePathOf(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) return reinterpret_cast<intptr_t>(file);
  *message = path + ": " + ErrorText(GetLastError());
  return -1;
}

bool CloseOutputFile(int64_t file) {
  if (CloseHandle(HandleOf(file))) return true;
  return writeError = GetLastError(), false;
}

bool RemoveFile(const std::string& path) { return DeleteFileW(WidePathOf(path).c_str()) != 0; }

std::string WriteFailure() { return writeError ? ErrorText(writeError) : ""; }

int32_t ReadFileBytes(int64_t file, uint8_t* out, int32_t length) {
  DWORD got = 0;
  if (ReadFile(HandleOf(file), out, static_cast<DWORD>(length), &got, nullptr)) return static_cast<int32_t>(got);
  const DWORD error = GetLastError();
  return error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF ? 0 : -1;   // a pipe whose writer is gone has ended
}

int64_t StandardOutputFile() { return reinterpret_cast<intptr_t>(GetStdHandle(STD_OUTPUT_HANDLE)); }
bool IsTerminal(int64_t file) { return IsConsole(HandleOf(file)); }
TerminalSize OutputTerminalSize() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) info = {};
  const SMALL_RECT& window = info.srWindow;
  return {window.Right > window.Left ? window.Right - window.Left + 1 : 0,
          window.Bottom > window.Top ? window.Bottom - window.Top + 1 : 0};
}
bool StandardErrorIsTerminal() { return IsConsole(GetStdHandle(STD_ERROR_HANDLE)); }

bool IsSameFile(const std::string& a, const std::string& b) {
  BY_HANDLE_FILE_INFORMATION one{}, other{};
  return FileInformation(a, &one) && FileInformation(b, &other) && one.nFileIndexLow == other.nFileIndexLow &&
         one.nFileIndexHigh == other.nFileIndexHigh && one.dwVolumeSerialNumber == other.dwVolumeSerialNumber;
}

bool IsDiskFile(const std::string& path) {
  BY_HANDLE_FILE_INFORMATION about{};   // pipes and consoles have none
  return FileInformation(path, &about) && !(about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::vector<std::string> StartProgram(int argc, char** argv) {
  endsOnClosedPipe = true;
  _setmode(_fileno(stdout), _O_BINARY);   // line ends are the same everywhere
  _setmode(_fileno(stderr), _O_BINARY);
  PrepareConsole();
  int count = 0, start = 0;
  wchar_t **words = nullptr, **environment = nullptr;
  if (__wgetmainargs(&count, &words, &environment, 0, &start) != 0 || !words) return {argv, argv + argc};
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(NarrowOf(words[i]));
  return arguments;
}

}  // namespace qxview
