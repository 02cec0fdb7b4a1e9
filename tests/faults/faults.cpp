#include "faults/faults.h"

#include <png.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

Fault::Calls allocations, fileCalls;

bool failsWith(Fault::Calls& calls, int error) {
  if (!calls.fails()) return false;
  errno = error;
  return true;
}

}  // namespace

Fault::Fault(Calls& c, uint64_t nth, uint64_t many) : calls(c) {
  calls.asked = 0;
  calls.to = many < UINT64_MAX - nth ? nth + many : UINT64_MAX;
  calls.from = nth;
}
Fault::~Fault() { calls.from = UINT64_MAX; }
bool Fault::happened() const { return calls.asked > calls.from; }

bool Fault::Calls::fails() {
  const uint64_t number = asked++;
  return number >= from && number < to;
}

FailingAllocation::FailingAllocation(uint64_t nth, uint64_t many) : Fault(allocations, nth, many) {}
FailingFileCall::FailingFileCall(uint64_t nth, uint64_t many) : Fault(fileCalls, nth, many) {}

// ---- memory

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);

void* __wrap_malloc(size_t size) { return failsWith(allocations, ENOMEM) ? nullptr : __real_malloc(size); }
void* __wrap_calloc(size_t count, size_t size) {
  return failsWith(allocations, ENOMEM) ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* block, size_t size) {
  return failsWith(allocations, ENOMEM) ? nullptr : __real_realloc(block, size);
}
}

// A picture of the PNG library takes memory, from a library that keeps its own calls.
extern "C" {
png_structp __real_png_create_read_struct(png_const_charp version, png_voidp it, png_error_ptr fail,
                                          png_error_ptr warn);
png_structp __real_png_create_write_struct(png_const_charp version, png_voidp it, png_error_ptr fail,
                                           png_error_ptr warn);
png_infop __real_png_create_info_struct(png_const_structrp png);

png_structp __wrap_png_create_read_struct(png_const_charp version, png_voidp it, png_error_ptr fail,
                                          png_error_ptr warn) {
  return failsWith(allocations, ENOMEM) ? nullptr : __real_png_create_read_struct(version, it, fail, warn);
}
png_structp __wrap_png_create_write_struct(png_const_charp version, png_voidp it, png_error_ptr fail,
                                           png_error_ptr warn) {
  return failsWith(allocations, ENOMEM) ? nullptr : __real_png_create_write_struct(version, it, fail, warn);
}
png_infop __wrap_png_create_info_struct(png_const_structrp png) {
  return failsWith(allocations, ENOMEM) ? nullptr : __real_png_create_info_struct(png);
}
}

namespace {

void* allocate(size_t size) { return std::malloc(size ? size : 1); }

void* allocate(size_t size, std::align_val_t alignment) {
  if (failsWith(allocations, ENOMEM)) return nullptr;
  void* block = nullptr;
  return posix_memalign(&block, size_t(alignment), size ? size : 1) == 0 ? block : nullptr;
}

void* orThrow(void* block) {
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace

// All forms go together: a sanitizer has its own of each.
void* operator new(size_t size) { return orThrow(allocate(size)); }
void* operator new[](size_t size) { return orThrow(allocate(size)); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(size_t size, std::align_val_t a) { return orThrow(allocate(size, a)); }
void* operator new[](size_t size, std::align_val_t a) { return orThrow(allocate(size, a)); }
void* operator new(size_t size, std::align_val_t a, const std::nothrow_t&) noexcept { return allocate(size, a); }
void* operator new[](size_t size, std::align_val_t a, const std::nothrow_t&) noexcept { return allocate(size, a); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

// ---- files

extern "C" {
FILE* __real_fopen(const char* name, const char* mode);
size_t __real_fread(void* buffer, size_t size, size_t count, FILE* file);
int __real_fseek(FILE* file, long offset, int origin);
long __real_ftell(FILE* file);
int __real_fclose(FILE* file);
int __real_open(const char* name, int flags, ...);
ssize_t __real_read(int file, void* buffer, size_t size);
ssize_t __real_write(int file, const void* bytes, size_t size);
int __real_close(int file);
int __real_rename(const char* from, const char* to);
int __real_link(const char* file, const char* name);

FILE* __wrap_fopen(const char* name, const char* mode) {
  return failsWith(fileCalls, EACCES) ? nullptr : __real_fopen(name, mode);
}
size_t __wrap_fread(void* buffer, size_t size, size_t count, FILE* file) {
  return __real_fread(buffer, size, failsWith(fileCalls, EIO) ? count / 2 : count, file);
}
int __wrap_fseek(FILE* file, long offset, int origin) {
  return failsWith(fileCalls, EIO) ? -1 : __real_fseek(file, offset, origin);
}
long __wrap_ftell(FILE* file) { return failsWith(fileCalls, EIO) ? -1 : __real_ftell(file); }
int __wrap_fclose(FILE* file) {
  const int closed = __real_fclose(file);
  return failsWith(fileCalls, EIO) ? EOF : closed;
}
int __wrap_open(const char* name, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const int mode = va_arg(arguments, int);
  va_end(arguments);
  return failsWith(fileCalls, EMFILE) ? -1 : __real_open(name, flags, mode);
}
ssize_t __wrap_read(int file, void* buffer, size_t size) {
  return failsWith(fileCalls, EIO) ? -1 : __real_read(file, buffer, size);
}
ssize_t __wrap_write(int file, const void* bytes, size_t size) {
  return failsWith(fileCalls, ENOSPC) ? -1 : __real_write(file, bytes, size);
}
int __wrap_close(int file) {
  const int closed = __real_close(file);
  return failsWith(fileCalls, EIO) ? -1 : closed;
}
int __wrap_rename(const char* from, const char* to) { return failsWith(fileCalls, EIO) ? -1 : __real_rename(from, to); }
int __wrap_link(const char* file, const char* name) {
  return failsWith(fileCalls, EPERM) ? -1 : __real_link(file, name);
}
}
