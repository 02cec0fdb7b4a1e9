// Line tables as a file: PAGE.bobmap beside PAGE.kpg, TOOLS.bobo.bobmap beside TOOLS.bobo. The player never reads it.
//
//     bobmap 1
//     built 3a0-97c2d1a9b8e75f04           the file that the code is in, by its contents
//     source 1f2-0a1b2c3d4e5f6071 ../menu.yaml
//     code 6b1f0a2b3c4d5e6f 0              hash, number of the source; "continues" for what continues a line
//     lines 0:12 9:13 20:14                offset in the bytecode : line of the source
//     arguments this _next x
//     block 14 52 i n                      from offset to offset
//     around this _next y                  variables of the function that it is written in
//     end
//
// Names of sources are relative to the folder of the table, so that a folder can be moved with its tables, and the same
// sources make the same table.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kit/errors.h"
#include "kit/lines/codeplaces.h"

inline constexpr char kBobMapExtension[] = ".bobmap";

struct BobMap {
  struct Source {
    std::string file, hash;  // as it can be opened from here; contentHash
  };

  std::string builtHash;  // contentHash
  std::vector<Source> sources;
  std::vector<BobCodeLines> codes;  // as they lie in the file, inner functions first

  // Whether the source is as it was when the table was made.
  bool isCurrent(const std::string& source) const;
};

// The name of the table of a built file.
std::string bobMapName(const std::string& built);
bool isBobMap(const std::vector<uint8_t>& bytes);

// For code of a file with those bytes. The sources are read.
BobMap makeBobMap(std::string_view built, std::vector<BobCodeLines> codes);

// The text of a table that will lie at `path`, and back. Throws KitError for what is no such text.
std::string bobMapText(const std::string& path, const BobMap& map);
BobMap parseBobMap(const std::string& path, std::string_view text);

// The table beside a built file with those bytes; an empty one if there is none, or if it is damaged or belongs to
// other bytes, after a warning.
BobMap bobMapBeside(const std::string& built, const std::vector<uint8_t>& bytes, const KitWarn& warn);
