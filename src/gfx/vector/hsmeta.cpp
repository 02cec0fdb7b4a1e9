#include "gfx/vector/hsmeta.h"

#include <algorithm>
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hspath.h"

namespace {

constexpr int32_t kMaxCount = 0xFFFF;

template <typename T>
std::unique_ptr<T> CopyOf(const std::unique_ptr<T>& owned) {
  return owned ? std::make_unique<T>(*owned) : nullptr;
}

template <typename T>
bool AreEqual(const std::unique_ptr<T>& a, const std::unique_ptr<T>& b) {
  return a && b ? *a == *b : a == b;
}

}  // namespace

struct hsMeta::Entry {
  Entry(const char* name, Type type, int32_t size, uint16_t count)
      : fName(name), fType(type), fSize(size), fCount(count) {}
  Entry(const Entry& other)
      : fName(other.fName),
        fType(other.fType),
        fSize(other.fSize),
        fCount(other.fCount),
        fData(other.fData),
        fPath(CopyOf(other.fPath)),
        fMeta(CopyOf(other.fMeta)) {}
  Entry(Entry&&) = default;
  Entry& operator=(Entry&&) = default;

  bool operator==(const Entry& other) const {
    return fName == other.fName && fType == other.fType && fSize == other.fSize && fCount == other.fCount &&
           fData == other.fData && AreEqual(fPath, other.fPath) && AreEqual(fMeta, other.fMeta);
  }

  std::string fName;
  Type fType;
  int32_t fSize;    // bytes of data
  uint16_t fCount;  // elements
  std::vector<uint8_t> fData;
  std::unique_ptr<hsPath> fPath;  // instead of data, for a path
  std::unique_ptr<hsMeta> fMeta;  // or a nested list
};

hsMeta::hsMeta() = default;
hsMeta::hsMeta(const hsMeta& other) = default;
hsMeta::~hsMeta() = default;

hsMeta& hsMeta::operator=(const hsMeta& other) {
  std::vector<Entry> copy(other.fEntries);
  fEntries.swap(copy);
  return *this;
}

int32_t hsMeta::CountEntries() const { return int32_t(fEntries.size()); }

bool hsMeta::operator==(const hsMeta& other) const {
  if (fEntries.size() != other.fEntries.size()) return false;
  const auto isIn = [&](const Entry& mine) {
    return std::any_of(other.fEntries.begin(), other.fEntries.end(),
                       [&](const Entry& theirs) { return mine == theirs; });
  };
  return std::all_of(fEntries.begin(), fEntries.end(), isIn);
}

hsMeta::Entry* hsMeta::Add(const char* name, Type type, int32_t count, int32_t size, const void* data) {
  if (!hsAssert(name && data, "field is nil")) return nullptr;
  if (!hsAssert(count >= 1 && count <= kMaxCount, "bad count") || !hsAssert(size >= 1, "bad size")) return nullptr;
  Entry& entry = fEntries.emplace_back(name, type, size, uint16_t(count));
  if (type != kPathType && type != kMetaType) {
    const uint8_t* bytes = static_cast<const uint8_t*>(data);
    entry.fData.assign(bytes, bytes + size);
  }
  return &entry;
}

const hsMeta::Entry* hsMeta::Find(const std::string& name, Type type) const {
  const auto found = std::find_if(fEntries.begin(), fEntries.end(),
                                  [&](const Entry& entry) { return entry.fType == type && entry.fName == name; });
  return found == fEntries.end() ? nullptr : &*found;
}

template <typename T>
bool hsMeta::GetOne(const char* name, Type type, T* value) const {
  const Entry* entry = Find(name, type);
  if (!entry || entry->fSize != int32_t{sizeof(T)}) return false;
  std::memcpy(value, entry->fData.data(), sizeof(T));
  return true;
}

void hsMeta::AddInt8(const char* name, int8_t value) { Add(name, kIntegerType, 1, sizeof value, &value); }
void hsMeta::AddInt16(const char* name, int16_t value) { Add(name, kIntegerType, 1, sizeof value, &value); }
void hsMeta::AddInt32(const char* name, int32_t value) { Add(name, kIntegerType, 1, sizeof value, &value); }

void hsMeta::AddScalars(const char* name, int32_t count, const hsScalar values[]) {
  const int32_t size = count >= 1 && count <= kMaxCount ? count * int32_t{sizeof(hsScalar)} : 0;
  Add(name, kScalarType, count, size, values);
}

void hsMeta::AddBounded(const char* name, int32_t value, int32_t least, int32_t greatest) {
  const int32_t words[] = {value, least, greatest};
  Add(name, kBoundedType, 1, sizeof words, words);
}

void hsMeta::AddString(const char* name, const char* value) {
  Add(name, kStringType, 1, value ? int32_t(std::strlen(value)) + 1 : 0, value);
}

void hsMeta::AddPath(const char* name, const hsPath* value) {
  if (Entry* entry = Add(name, kPathType, 1, sizeof(hsPath), value)) entry->fPath = std::make_unique<hsPath>(*value);
}

void hsMeta::AddMeta(const char* name, const hsMeta* value) {
  if (!hsAssert(value, "field is nil")) return;
  auto copy = std::make_unique<hsMeta>(*value);  // first: value may be this
  if (Entry* entry = Add(name, kMetaType, 1, sizeof(hsMeta), value)) entry->fMeta = std::move(copy);
}

bool hsMeta::GetInt8(const char* name, int8_t* value) const { return GetOne(name, kIntegerType, value); }
bool hsMeta::GetInt16(const char* name, int16_t* value) const { return GetOne(name, kIntegerType, value); }
bool hsMeta::GetInt32(const char* name, int32_t* value) const { return GetOne(name, kIntegerType, value); }

bool hsMeta::GetBounded(const char* name, int32_t* value) const {
  int32_t words[3];
  if (!GetOne(name, kBoundedType, &words)) return false;
  *value = words[0];
  return true;
}

int32_t hsMeta::GetScalars(const char* name, hsScalar values[]) const {
  const Entry* entry = Find(name, kScalarType);
  if (!entry) return 0;
  if (values) std::memcpy(values, entry->fData.data(), entry->fData.size());
  return entry->fCount;
}

int32_t hsMeta::GetString(const char* name, char value[]) const {
  const Entry* entry = Find(name, kStringType);
  if (!entry || !hsAssert(entry->fSize > 0, "bad entrysize for string")) return -1;
  if (value) std::memcpy(value, entry->fData.data(), entry->fData.size());
  return entry->fSize - 1;
}

const hsPath* hsMeta::GetPath(const char* name) const {
  const Entry* entry = Find(name, kPathType);
  return entry && hsAssert(entry->fPath, "bad type") ? entry->fPath.get() : nullptr;
}

const hsMeta* hsMeta::GetMeta(const char* name) const {
  const Entry* entry = Find(name, kMetaType);
  return entry && hsAssert(entry->fMeta, "bad type") ? entry->fMeta.get() : nullptr;
}
