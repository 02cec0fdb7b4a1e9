// The font engine's state for one font, shared by the contexts that draw with it.
#pragma once

#include <vector>

#include "gfx/text/hsgfontscaler.h"
#include "t2k/t2k.h"

class hsGT2KRef : public hsRefCnt {
 public:
  // The state for a font, size ratio and choice of encoding; one that nobody holds goes. The font opens on first use.
  static hsRef<hsGT2KRef> Find(hsGFontScaler* font, hsFixed sizeRatio, bool unicode);
  ~hsGT2KRef() override;  // "UnRefT2K failed" when the current library doesn't know it

  // Opens the font unless it is open. Null if that fails, which is reported once. Throws std::bad_alloc when there is
  // no memory; the next call then tries again.
  T2K* Open();
  void Close();
  // Closes a font that has failed in use, so that the next Open begins anew, and reports it. Throws std::bad_alloc when
  // that was for want of memory.
  void CloseFailed(const char* words, int error);

  uint32_t FontID() const { return fFont->FontID(); }
  bool IsOpen() const { return fScaler != nullptr; }
  bool CannotOpen() const { return fCannotOpen; }
  bool NeedsTranslation() const { return fNeedsTranslation; }

 private:
  hsGT2KRef(hsGFontScaler* font, hsFixed sizeRatio, bool unicode);

  bool OpenStream(int* fontType);
  T2K* MakeScaler();
  void ChooseEncoding();
  bool Tell(bool failed, const char* words);

  hsRef<hsGFontScaler> fFont;
  hsFixed fSizeRatio;
  bool fUnicode;
  bool fNeedsTranslation = false;
  bool fCannotOpen = false;
  bool fTold = false;
  bool fIsOpen = false;

  int fError = 0;
  tsiMemObject* fMemory = nullptr;
  InputStream* fStream = nullptr;
  sfntClass* fSfnt = nullptr;
  T2K* fScaler = nullptr;
  std::vector<uint8_t> fData;  // of a font that is read whole
};
