#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>

#include <cstdio>
#include <filesystem>

#include "kpg/process.h"

// The arguments of main are in an old encoding.
std::vector<std::string> programArguments(int, char**) {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(std::filesystem::path(words[i]).string());
  LocalFree(words);
  return arguments;
}

void prepareStandardStreams() {
  _fmode = _O_BINARY;
  for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
  for (const DWORD stream : {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
    DWORD mode;
    const HANDLE console = GetStdHandle(stream);
    if (GetConsoleMode(console, &mode)) SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
}

size_t terminalColumns(size_t otherwise) {
  CONSOLE_SCREEN_BUFFER_INFO info;
  return GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) ? size_t(info.dwSize.X) : otherwise;
}
