// The fonts that are installed on this machine, by their names.
#pragma once

#include <string>
#include <vector>

class MachineFonts {
 public:
  // Reads the names of all fonts in the folders where desktops keep them.
  MachineFonts();
  // The same for other folders.
  explicit MachineFonts(const std::vector<std::string>& folders);

  // The file of the font with that full name ("DejaVu Sans Bold"), or of the plain one of a family ("Liberation
  // Serif"); empty if there is none.
  std::string find(const std::string& name) const;

  std::vector<std::string> names() const;  // full names and families

  // Where desktops keep them; some may not be there.
  static std::vector<std::string> folders();

 private:
  struct Font {
    std::string file, family, style, fullName;
  };
  std::vector<Font> fonts;  // by their files
};
