// Everything that the rest of the system may ask of the desktop, and nothing else.
//
// Each operation is one plain function, carried out by the host of the engine that is current on the calling thread:
// the shell, over whatever Desktop the program was started with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Who carries the operations out for an engine.
class Host {
 protected:
  ~Host() = default;
};

// ---- the screen

// Makes the screen window, width x height pixels, and the desktop pixels that it shows. Called once.
void hostCreateScreen(int width, int height, int depth);

// Bits per pixel of the frame buffer that hostPresentRect is given from now on: 8, 16 or 32.
void hostSetDepth(int depth);

// Colours 0xYYRRBBAA of the first `count` palette entries, at most 256. Returns the count.
int hostSetPalette(const uint32_t* colors, int count);

// Converts the rectangle (pixels, inside the screen) of the frame buffer `source` and has the desktop repaint it.
void hostPresentRect(const void* source, int x, int y, int w, int h);

// 0xRRGGBBxx to 0xYYRRBB00, `count` colours.
void hostConvertRgbToYCrCb(const uint32_t* source, uint32_t* destination, int count);

// ---- the message console

// Formats and writes to the console, cut at 2047 bytes. Always 0.
int hostLog(const char* format, ...) __attribute__((format(printf, 1, 2)));
void hostPutChar(char c);

// ---- time and files

// To be called now and then by what may run without end, so that the desktop's windows stay alive. False when the
// desktop wants it to end.
bool hostBreathe();

// Milliseconds since the program started.
uint32_t hostMilliseconds();

struct HostFile;

// Opens for reading; null when there is no such file, and when it is none that a page may read, which the console
// tells. Separators may be '/' or '\', and a name that does not exist exactly so is tried without regard to case, since
// pages come from a system that had none.
HostFile* hostOpen(const char* name);
size_t hostRead(HostFile* file, void* buffer, size_t size);  // the bytes read
void hostClose(HostFile* file);
size_t hostTell(HostFile* file);
size_t hostFileSize(HostFile* file);                 // leaves the position alone
inline constexpr size_t kHostFileFailed = SIZE_MAX;  // what both answer when the desktop can't tell
bool hostHasFileSystem();

// A name, as a page gives it, of a file that is to be written: relative to the page's folder, and otherwise unchanged.
std::string hostFullName(const char* name);

// Whether a script may open a file of this name, as the page gives it. The console tells when it may not. One that is
// read is looked at once more when it is opened.
bool hostLetsScriptOpen(const char* name, bool forWriting);

// Whether a script may write so many bytes more; those that it may are counted. The console tells once when it may not.
bool hostLetsScriptWrite(uintmax_t bytes);
