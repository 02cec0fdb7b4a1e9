// Whole files, in and out. Errors are KitErrors that name the file and say why.
//
// Nothing is lost: a file is written beside its old one and renamed over it, so that whoever reads it finds the old
// bytes or the new ones, and a failure leaves the old ones. A link goes on leading to its file, and permissions stay.
// What can't be renamed over (a pipe, a device, the standard output, which is called "-") is written into.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

inline constexpr size_t kLargestFile = 64 << 20;  // bytes; no source, page, font or picture comes near it

// Throws for a larger one before it is read.
std::vector<uint8_t> readFile(const std::string& path);

// For what a program of ours has written, such as an archive.
std::vector<uint8_t> readFileOfAnySize(const std::string& path);

// Throws for a pipe or a device, which a person may name but another file may not: it has no end that must come.
void refuseEndless(const std::string& path);

// How somebody reads files who may take them from elsewhere than the disk.
using ReadFile = std::function<std::vector<uint8_t>(const std::string& path)>;

void writeFile(const std::string& path, const void* bytes, size_t size);

// To the end of a file that nobody else reads meanwhile, or of a new one. What is added may break off.
void appendToFile(const std::string& path, const void* bytes, size_t size);

bool isStandardOutput(const std::string& path);  // "-", or what the desktop calls it

// Files that belong together: when one can't be written, none is. Where a disk doesn't allow that, the error tells
// which were.
class OutputFiles {
 public:
  OutputFiles() = default;
  ~OutputFiles();  // drops what has not been finished
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;

  void add(const std::string& path, const void* bytes, size_t size);
  void finish();

 private:
  struct Beside {
    std::string path;               // as it was given
    std::filesystem::path target;   // where the bytes are to be
    bool exists;                    // an older file there
    std::filesystem::path written;  // where the bytes are
    std::filesystem::path old;      // a second name of the older file, or none
  };
  struct Into {
    std::string path, bytes;
  };
  [[noreturn]] void failAt(size_t failed, std::error_code error);

  std::vector<Beside> beside;
  std::vector<Into> into;
};

// Throws if one of the outputs of a command is one of its inputs, under whatever name, or another of its outputs. An
// empty name is no file.
void refuseClashes(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs);

// For an output whose name nobody gave: throws if there is a file of that name which `isOurs` doesn't recognise.
// `advice` says what to do then.
void refuseForeign(const std::string& path, bool (*isOurs)(const std::vector<uint8_t>& bytes),
                   const std::string& advice);
