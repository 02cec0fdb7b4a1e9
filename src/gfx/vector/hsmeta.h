// A named, typed list by which an object describes itself.
//
// Entries keep the order in which they were added; a name may occur more than once, also under the same type, and then
// the first one counts. Copies are deep.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "gfx/foundation/hstypes.h"

class hsPath;

class hsMeta {
 public:
  enum Type : uint32_t {
    kIntegerType = 0,  // integers of one width
    kScalarType = 1,
    kBoundedType = 2,  // a 32-bit value, its least and its greatest
    kStringType = 3,   // with its terminator
    kPathType = 4,
    kMetaType = 5,
  };

  hsMeta();
  hsMeta(const hsMeta& other);
  hsMeta& operator=(const hsMeta& other);
  ~hsMeta();
  // The same number of entries, and for each of this an equal one of the same name and type in the other.
  bool operator==(const hsMeta& other) const;

  int32_t CountEntries() const;

  // A null name or value is reported, "field is nil", and adds nothing.
  void AddInt8(const char* name, int8_t value);
  void AddInt16(const char* name, int16_t value);
  void AddInt32(const char* name, int32_t value);
  void AddScalars(const char* name, int32_t count, const hsScalar values[]);  // 1 to 65535, "bad count"
  void AddBounded(const char* name, int32_t value, int32_t least, int32_t greatest);
  void AddString(const char* name, const char* value);
  void AddPath(const char* name, const hsPath* value);
  void AddMeta(const char* name, const hsMeta* value);

  // False when there is no such entry, or not of this width and one value.
  bool GetInt8(const char* name, int8_t* value) const;
  bool GetInt16(const char* name, int16_t* value) const;
  bool GetInt32(const char* name, int32_t* value) const;
  bool GetBounded(const char* name, int32_t* value) const;
  // How many there are, 0 without an entry; copied to values unless that is null.
  int32_t GetScalars(const char* name, hsScalar values[]) const;
  // Length without the terminator, -1 without an entry; copied, with it, to value unless that is null.
  int32_t GetString(const char* name, char value[]) const;
  // null without an entry. They belong to this.
  const hsPath* GetPath(const char* name) const;
  const hsMeta* GetMeta(const char* name) const;

 private:
  struct Entry;

  Entry* Add(const char* name, Type type, int32_t count, int32_t size, const void* data);
  const Entry* Find(const std::string& name, Type type) const;
  template <typename T>
  bool GetOne(const char* name, Type type, T* value) const;

  std::vector<Entry> fEntries;
};
