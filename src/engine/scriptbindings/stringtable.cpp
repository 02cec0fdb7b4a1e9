#include "engine/scriptbindings/stringtable.h"

#include <algorithm>

#include "engine/base/hostfile.h"
#include "engine/base/log.h"
#include "engine/scriptbindings/bindings.h"
#include "gfx/foundation/hsbytes.h"
#include "host/host.h"

namespace {

constexpr size_t kCountOffset = 20, kEntriesOffset = 32, kEntrySize = 12;
constexpr size_t kLengthField = 4, kOffsetField = 8;  // in an entry
constexpr size_t kMaxLength = 80;

StringTableFile* tableOf(BobInterp* interp, BobValue wrapper) {
  return static_cast<StringTableFile*>(bobNativePointer(interp, wrapper));
}

bool closeTable(BobInterp* interp, BobValue wrapper) {
  StringTableFile* table = tableOf(interp, wrapper);
  if (!table) return false;
  bobReleaseHandle(interp, bobHandleOf(interp, wrapper));
  std::erase_if(currentScripts().tables, [table](const auto& open) { return open.get() == table; });
  return true;
}

void finalize(BobInterp* interp, BobValue wrapper) { closeTable(interp, wrapper); }

BobValue initialize(BobInterp* interp) {
  BobValue self;
  const char* name;
  bobParse(interp, "V=*S", currentScripts().tableKind, &self, &name);
  std::unique_ptr<StringTableFile> table = StringTableFile::open(name);
  if (!table) return kBobNil;
  closeTable(interp, self);  // one that it had before
  std::list<std::unique_ptr<StringTableFile>> opened;
  opened.push_back(std::move(table));
  bobHandleOf(interp, self) = bobMakeHandle(interp, opened.front().get());
  auto& tables = currentScripts().tables;
  tables.splice(tables.end(), opened);
  return self;
}

BobValue close(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", currentScripts().tableKind, &self);
  return bobBoolean(closeTable(interp, self));
}

BobValue string(BobInterp* interp) {
  void* pointer;
  int32_t index;
  bobParse(interp, "P=*i", currentScripts().tableKind, &pointer, &index);
  if (!pointer) return kBobNil;
  const std::string_view text = static_cast<StringTableFile*>(pointer)->string(index);
  return text.empty() ? kBobNil : bobMakeString(interp, text);
}

constexpr BobMethodRow kMethods[] = {
    {"initialize", initialize},
    {"Close", close},
    {"String", string},
    {nullptr, nullptr},
};

}  // namespace

std::unique_ptr<StringTableFile> StringTableFile::open(const char* name) {
  const HostFilePtr file = hostLetsScriptOpen(name, false) ? openHostFile(name) : nullptr;
  if (!file) {
    if (logVerbose) hostLog("Can't open '%s'\n", name);
    return nullptr;
  }
  auto bytes = readWhole(file.get());
  if (!bytes) {
    scriptComplain("Read failed\n");
    return nullptr;
  }
  return std::make_unique<StringTableFile>(std::move(*bytes));
}

std::string_view StringTableFile::string(int32_t index) const {
  if (bytes.size() < kCountOffset + 4) return {};
  const uint32_t count = hsLittle32(bytes.data() + kCountOffset);
  if (index < 1 || uint32_t(index) > count) return {};

  const size_t entry = kEntriesOffset + kEntrySize * (size_t(index) - 1);
  if (entry + kEntrySize > bytes.size()) return {};
  const size_t length = hsBig32(&bytes[entry + kLengthField]), offset = hsBig32(&bytes[entry + kOffsetField]);
  if (length > bytes.size() || offset > bytes.size() - length) return {};
  return {reinterpret_cast<const char*>(bytes.data()) + offset, std::min(length, kMaxLength)};
}

bool scriptDefineStringTable(ScriptRuntime& runtime) {
  runtime.tableKind = bobMakeKind(runtime.interp, 0, "StringTable", kMethods, nullptr);
  if (runtime.tableKind) bobSetFinalizer(runtime.interp, runtime.tableKind, finalize);
  return runtime.tableKind != 0;
}
