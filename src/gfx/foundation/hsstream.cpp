#include "gfx/foundation/hsstream.h"

#include <algorithm>
#include <cstring>

#include "gfx/foundation/hsbytes.h"
#include "gfx/foundation/hsdebug.h"

bool hsInputStream::AtEnd() {
  hsAssert(false, "No hsInputStream::AtEnd() implemented for this stream class");
  return true;
}

uint8_t hsInputStream::ReadByte() {
  uint8_t byte = 0;
  Read(1, &byte);
  return byte;
}

uint16_t hsInputStream::ReadShort() {
  uint8_t b[2] = {};
  Read(2, b);
  return hsLittle16(b);
}

uint32_t hsInputStream::ReadLong() {
  uint8_t b[4] = {};
  Read(4, b);
  return hsLittle32(b);
}

void hsInputStream::ReadShorts(int32_t count, uint16_t buffer[]) {
  for (int32_t i = 0; i < count; ++i) buffer[i] = ReadShort();
}

void hsInputStream::ReadLongs(int32_t count, uint32_t buffer[]) {
  for (int32_t i = 0; i < count; ++i) buffer[i] = ReadLong();
}

void hsInputStream::ReadPoint(hsPoint* value) {
  value->fX = ReadFixed();
  value->fY = ReadFixed();
}

int32_t hsInputStream::ReadPString(char buffer[]) {
  const int32_t length = ReadByte();
  Read(length, buffer);
  buffer[length] = 0;
  return length;
}

void hsOutputStream::Write(int32_t, const void*) { hsAssert(false, "subclass responsibility"); }

void hsOutputStream::WriteShort(uint16_t value) {
  const uint8_t b[2] = {uint8_t(value), uint8_t(value >> 8)};
  Write(2, b);
}

void hsOutputStream::WriteLong(uint32_t value) {
  const uint8_t b[4] = {uint8_t(value), uint8_t(value >> 8), uint8_t(value >> 16), uint8_t(value >> 24)};
  Write(4, b);
}

void hsOutputStream::WriteShorts(int32_t count, const uint16_t values[]) {
  for (int32_t i = 0; i < count; ++i) WriteShort(values[i]);
}

void hsOutputStream::WriteLongs(int32_t count, const uint32_t values[]) {
  for (int32_t i = 0; i < count; ++i) WriteLong(values[i]);
}

void hsOutputStream::WritePoint(const hsPoint& value) {
  WriteFixed(value.fX);
  WriteFixed(value.fY);
}

void hsOutputStream::WritePString(const char* string) {
  const size_t length = std::strlen(string);
  hsAssert(length <= 255, "bad len");
  const uint8_t written = uint8_t(std::min<size_t>(length, 255));
  WriteByte(written);
  Write(written, string);
}

int32_t hsStream::GetEOF() {
  hsAssert(false, "GetEOF() unimplemented by subclass of stream");
  return 0;
}

void hsStream::CopyToMem(void*) { hsAssert(false, "CopyToMem unimplemented by subclass of stream"); }
