// Objects that can be written into a buffer and rebuilt from it.
//
// hsFlattenable is the bare base. hsGSizedFlattenable is for effects that are made for one text size and
// rebuilt for others: fScale says by how much their measures must grow.
#pragma once

#include "gfx/foundation/hsrefcnt.h"
#include "gfx/foundation/hstypes.h"

class hsMeta;

class hsFlattenable : public hsRefCnt {
 public:
  // Writes the object when a buffer is given; always returns the bytes that it takes.
  virtual int32_t Flatten(void* buffer) const;
};

class hsGSizedFlattenable : public hsFlattenable {
 public:
  explicit hsGSizedFlattenable(int32_t stdSize = 0) : fStdSize(stdSize) {}
  // Reads what Flatten wrote and moves the cursor past it. currentSize, below 1 for none, is the size to rebuild for.
  hsGSizedFlattenable(const void** cursor, int32_t currentSize);
  explicit hsGSizedFlattenable(const hsMeta& meta);

  int32_t Flatten(void* buffer) const override;
  // Adds what the object has to say to meta and, where that is worth writing, its values to writer. Either may be null.
  virtual void Describe(hsMeta* meta, hsMeta* writer) const;

  // The number of what rebuilds such objects from a buffer; 0 for none.
  virtual uint32_t GetCreateProc() const { return 0; }

  int32_t StdSize() const { return fStdSize; }
  hsFixed Scale() const { return fScale; }

 protected:
  int32_t fStdSize;          // the size that the object was made for, in whole units of text size; 0 for any
  hsFixed fScale = kFixed1;  // current size / fStdSize
};
