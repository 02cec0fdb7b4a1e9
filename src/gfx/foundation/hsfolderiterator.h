// The files of a folder, for finding fonts.
//
// Names come in order of their bytes, so that the same folder gives the same sequence on every host. A folder and a
// file name are joined with '/' whatever the folder's own separators are.
#pragma once

#include <string>
#include <vector>

constexpr int kFolderIterator_MaxPath = 260;

class hsFolderIterator {
 public:
  explicit hsFolderIterator(const char* path = "") { SetPath(path); }

  // A longer path than kFolderIterator_MaxPath allows is cut.
  void SetPath(const char* path);
  // The folder `name` ("Fonts") of the system directory. A desktop without such a folder takes the one where it keeps
  // its fonts, together with all the folders in it: names then begin with those.
  void UseWindowsFontsPath(const char* name);
  void Reset();

  // Goes on to the next file; false when there is none.
  bool NextFile();
  // Goes on to the next file whose name has exactly this suffix after its last dot.
  bool NextFileSuffix(const char* suffix);

  // Throws the C string "end of folder" when no file is current.
  const char* GetFileName() const;
  // Path and name of the current file, with the terminator in at most kFolderIterator_MaxPath characters; gives the
  // size needed, which is all it does without a buffer.
  int GetPathAndName(char buffer[]) const;

 private:
  void Search();

  char fPath[kFolderIterator_MaxPath] = "";
  bool fNested = false;             // files of inner folders too
  bool fValid = true;               // there may be a next file
  bool fSearching = false;          // fNames is filled
  std::vector<std::string> fNames;  // still to come, the next one last
  std::string fName;                // the current one; empty before the first and after the last
};
