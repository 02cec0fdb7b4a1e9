// Registered fonts: where a font's bytes come from and what its tables say, without the engine that draws it.
//
// Bytes may only be read between Acquire and Release, which nest. A font is shared by count: the registry holds one
// reference, and so does an engine that has it open.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "gfx/foundation/hsrefcnt.h"
#include "gfx/foundation/hstypes.h"

enum hsFontFormat : uint32_t {
  kFontFormat_TrueType = hsTag("true"),    // read piece by piece, or in place
  kFontFormat_SfntInRam = hsTag("sft1"),   // read whole before it is opened
  kFontFormat_Type1 = hsTag("typ1"),       // can be registered, never opened
  kFontFormat_BitmapOnly = hsTag("DUMY"),  // an sfnt with embedded bitmaps only
};

enum hsFontNameKind : uint32_t {
  kFontName_Family = 0,
  kFontName_Style = 1,
  kFontName_Full = 2,
  kFontName_PostScript = 3,
  kFontName_Any = 4,  // full, PostScript, family, style: the first that there is
};
inline constexpr uint32_t kFontNameKinds = 4;

class hsGFontScaler : public hsRefCnt {
 public:
  hsGFontScaler(uint32_t fontID, uint32_t format) : fFontID(fontID), fFormat(format) {}
  ~hsGFontScaler() override;

  uint32_t FontID() const { return fFontID; }
  uint32_t Format() const { return fFormat; }
  void Acquire();
  void Release();

  // The platform and script of the character map to use; false if the font has none such.
  virtual bool GetEncoding(bool unicode, uint16_t* platform, uint16_t* script);
  // The length of a name, which goes to buffer if given; 0 without one.
  virtual uint32_t GetName(uint32_t nameKind, char buffer[]) = 0;
  // Case of A to Z aside.
  virtual bool MatchName(uint32_t nameKind, const char* name) = 0;
  virtual uint32_t GetDataSize() = 0;
  uint32_t CalcDataSize() { return GetDataSize(); }
  // The bytes, in dst if given, else wherever the font keeps them until the next call. Null after a report for bytes
  // that it hasn't got.
  virtual const void* ReadData(uint32_t offset, uint32_t length, void* dst) = 0;
  void CopyData(uint32_t offset, uint32_t length, void* dst);
  // All bytes where they lie as long as the font does, or null when they have to be fetched.
  virtual const uint8_t* DataInPlace() const { return nullptr; }

 protected:
  virtual void AcquireSelf() {}
  virtual void ReleaseSelf() {}
  bool HasAccess() const;  // "we don't have access"

 private:
  uint32_t fFontID;
  uint32_t fFormat;
  int32_t fAccessCount = 0;
};

// The bytes of a font are used between its two ends.
class hsGFontAccess {
 public:
  explicit hsGFontAccess(hsGFontScaler* font) : fFont(font) { fFont->Acquire(); }
  ~hsGFontAccess() { fFont->Release(); }
  hsGFontAccess(const hsGFontAccess&) = delete;
  hsGFontAccess& operator=(const hsGFontAccess&) = delete;

 private:
  hsGFontScaler* fFont;
};

// A font that is an sfnt.
class hsGFontT2K : public hsGFontScaler {
 public:
  using hsGFontScaler::hsGFontScaler;

  bool GetEncoding(bool unicode, uint16_t* platform, uint16_t* script) override;
  uint32_t GetName(uint32_t nameKind, char buffer[]) override;
  bool MatchName(uint32_t nameKind, const char* name) override;

  // A table's offset, 0 without one, and its length if asked for.
  uint32_t FindTable(uint32_t tag, uint32_t* length = nullptr);
  // A whole table, cut to the font's bytes; empty without one.
  std::vector<uint8_t> ReadTable(uint32_t tag);
  // For fonts of bitmaps. "need cmap", "platform/script not found".
  uint16_t CharToGlyph(uint16_t code);

 protected:
  void ReadDirectory();
  void FreeDirectory() { fDirectory.clear(); }
  void ReleaseSelf() override { FreeDirectory(); }

 private:
  std::vector<uint8_t> fDirectory;  // as in the file; empty until needed
};

class hsGFontFile : public hsGFontT2K {
 public:
  hsGFontFile(uint32_t fontID, uint32_t format, const char* path) : hsGFontT2K(fontID, format), fPath(path) {}
  ~hsGFontFile() override;

  uint32_t GetDataSize() override;
  const void* ReadData(uint32_t offset, uint32_t length, void* dst) override;

 protected:
  void AcquireSelf() override;  // throws when the file can't be opened
  void ReleaseSelf() override;

 private:
  std::string fPath;
  std::FILE* fFile = nullptr;
  std::vector<uint8_t> fScratch;
};

class hsGFontMemory : public hsGFontT2K {
 public:
  // Owned bytes come from hsMemory and are freed with the font.
  hsGFontMemory(uint32_t fontID, uint32_t format, uint32_t size, const void* data, bool owned)
      : hsGFontT2K(fontID, format), fSize(size), fData(static_cast<const uint8_t*>(data)), fOwned(owned) {}
  ~hsGFontMemory() override;

  uint32_t GetDataSize() override { return fSize; }
  const void* ReadData(uint32_t offset, uint32_t length, void* dst) override;
  const uint8_t* DataInPlace() const override { return fData; }

 private:
  uint32_t fSize;
  const uint8_t* fData;
  bool fOwned;
};
