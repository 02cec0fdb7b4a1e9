#include "kit/testing/expectedpictures.h"

#include <filesystem>

#include "kit/files.h"
#include "kit/pictures/png.h"

namespace {

constexpr size_t kMostPixels = size_t{16} << 20;

}  // namespace

std::shared_ptr<const Picture> ExpectedPictures::read(const std::string& path) {
  {
    const std::lock_guard lock(mutex);
    if (const auto found = kept.find(path); found != kept.end()) return found->second;
  }
  std::error_code error;
  if (!std::filesystem::exists(path, error)) return nullptr;
  auto picture = std::make_shared<Picture>(decodePng(path, readFile(path)));
  for (uint32_t& pixel : picture->pixels) pixel &= 0xFFFFFF;  // a screen has no alpha
  const std::lock_guard lock(mutex);
  if (!kept.emplace(path, picture).second) return picture;
  order.push_back(path);
  pixels += picture->pixels.size();
  while (pixels > kMostPixels && order.size() > 1) {
    pixels -= kept.at(order.front())->pixels.size();
    kept.erase(order.front());
    order.pop_front();
  }
  return picture;
}
