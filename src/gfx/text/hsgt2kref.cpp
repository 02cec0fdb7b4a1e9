#include "gfx/text/hsgt2kref.h"

#include <algorithm>
#include <new>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsglibrary.h"

namespace {

bool ReadFontBytes(void* id, uint8_t* destination, uint32_t position, uint32_t count) {
  auto* font = static_cast<hsGFontScaler*>(id);
  const uint32_t size = font->GetDataSize();
  return position <= size && count <= size - position && font->ReadData(position, count, destination);
}

}  // namespace

hsGT2KRef::hsGT2KRef(hsGFontScaler* font, hsFixed sizeRatio, bool unicode)
    : fFont(hsShare(font)), fSizeRatio(sizeRatio), fUnicode(unicode) {}

hsGT2KRef::~hsGT2KRef() {
  hsAssert(std::erase(hsGLibrary::Current().fT2KRefs, this) != 0, "UnRefT2K failed");
  Close();
}

hsRef<hsGT2KRef> hsGT2KRef::Find(hsGFontScaler* font, hsFixed sizeRatio, bool unicode) {
  std::vector<hsGT2KRef*>& refs = hsGLibrary::Current().fT2KRefs;
  for (hsGT2KRef* ref : refs)
    if (ref->fFont.get() == font && ref->fSizeRatio == sizeRatio && ref->fUnicode == unicode) return hsShare(ref);
  refs.reserve(refs.size() + 1);
  refs.push_back(new hsGT2KRef(font, sizeRatio, unicode));
  return hsAdopt(refs.back());
}

// Reports a failure with the engine's code, the first one of this font only: text goes on without it.
bool hsGT2KRef::Tell(bool failed, const char* words) {
  if (failed && fMemory->foundNoMemory) throw std::bad_alloc();
  if (failed && !fTold) {
    hsStatusMessage(words, fError);
    fTold = true;
  }
  return failed;
}

bool hsGT2KRef::OpenStream(int* fontType) {
  const uint32_t size = fFont->GetDataSize();
  switch (fFont->Format()) {
    case kFontFormat_TrueType:
      *fontType = kFontTypeSfnt;
      if (const uint8_t* bytes = fFont->DataInPlace())
        fStream = New_InputStream3(fMemory, bytes, size, &fError);
      else
        fStream = New_NonRamInputStream(fMemory, ReadFontBytes, fFont.get(), size, &fError);
      break;
    case kFontFormat_SfntInRam:
      *fontType = kFontTypeSfntInMemory;
      fData.resize(size);
      fFont->CopyData(0, size, fData.data());
      fStream = New_InputStream3(fMemory, fData.data(), size, &fError);
      break;
    case kFontFormat_Type1: return !Tell(true, "unimplemented type-1 support for this platform");
    default: return !Tell(true, "unknown font format");
  }
  return !Tell(!fStream, "New_InputStream3 failed");
}

T2K* hsGT2KRef::Open() {
  if (fScaler || fCannotOpen) return fScaler;
  fError = 0;
  fFont->Acquire();
  fIsOpen = true;
  try {
    if (T2K* scaler = MakeScaler()) {
      ChooseEncoding();
      return fScaler = scaler;
    }
  } catch (...) {
    Close();
    throw;
  }
  fCannotOpen = true;
  Close();
  return nullptr;
}

T2K* hsGT2KRef::MakeScaler() {
  fMemory = tsi_NewMemhandler(&fError);
  int fontType = 0;
  if (!fMemory) throw std::bad_alloc();
  if (!OpenStream(&fontType)) return nullptr;
  T2KStyling styling{};
  styling.params[0] = fSizeRatio;
  fSfnt = New_sfntClass(fMemory, fontType, 0, fStream, fSizeRatio == kFixed1 ? nullptr : &styling, &fError);
  if (Tell(!fSfnt, "New_sfntClass failed")) return nullptr;
  T2K* const scaler = NewT2K(fMemory, fSfnt, &fError);
  Tell(!scaler, "NewT2K failed");
  return scaler;
}

void hsGT2KRef::ChooseEncoding() {
  uint16_t platform = 0, script = 0;
  fNeedsTranslation = false;
  if (!fFont->GetEncoding(fUnicode, &platform, &script)) {
    if (!fUnicode || !fFont->GetEncoding(false, &platform, &script)) return;
    fNeedsTranslation = true;
  }
  fSfnt->preferedPlatformID = platform;
  fSfnt->preferedPlatformSpecificID = script;
}

void hsGT2KRef::CloseFailed(const char* words, int error) {
  const bool foundNoMemory = fMemory->foundNoMemory;
  if (!foundNoMemory) hsStatusMessage(words, error);
  Close();
  if (foundNoMemory) throw std::bad_alloc();
}

void hsGT2KRef::Close() {
  if (!fIsOpen) return;
  int ignored = 0;  // a font that has failed answers its old error here
  if (fScaler) DeleteT2K(fScaler, &ignored);
  if (fSfnt) Delete_sfntClass(fSfnt, &ignored);
  if (fStream) Delete_InputStream(fStream, &ignored);
  tsi_DeleteMemhandler(fMemory);
  fFont->Release();
  fData.clear();
  fScaler = nullptr;
  fSfnt = nullptr;
  fStream = nullptr;
  fMemory = nullptr;
  fIsOpen = false;
}
