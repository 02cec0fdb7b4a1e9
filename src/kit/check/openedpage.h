// A checked page in a player of its own, as it is once it has opened, for checks that ask the player itself.
//
// Its files are made from their sources in memory, by the rules of the project around it; nothing is written, and
// scripts can't write either. Scripts run: a page that has opened another one in its place is no longer open.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "kit/check/checkedpage.h"
#include "kit/project/livefiles.h"
#include "kit/run/pagerun.h"

// What the player finds for a name: the very file, one that differs in upper and lower case only, or nothing.
struct FileLook {
  enum Found { exactly, ignoringCase, nowhere } found;
  std::string name;  // of the file that is found, from the page's folder
};

// An error that ended a script as the page opened.
struct ScriptFailure {
  std::string text;  // of the language, without "Error: "; empty for a script that doesn't end
  std::string file;  // where it happened; empty when that isn't known
  int line = 0;
};

class OpenedPage {
 public:
  explicit OpenedPage(const std::string& source);

  // What is wrong with the files that were asked for so far, so that they can't be made.
  std::vector<KitMessage> errors() const { return files.errors(); }
  Engine& engine() { return run.engine(); }
  FileLook look(const std::string& name);

  // The bytes of a file as the player finds it; empty for none.
  std::string read(const std::string& name);

  // Whether a path of names, such as widgets.volume.Show, leads to something in the scope of the page as it is now;
  // true if that can't be found out.
  bool resolves(std::string_view path);
  std::vector<ScriptFailure> scriptFailures() const;

  // What the player has made of the page's widgets, in their order; empty when it hasn't made all of them, or shows
  // another page by now. They stay until something runs.
  std::vector<Widget*> widgetsOf(const CheckedPage& page);
  // What the screen shows, 0x00RRGGBB, in rows of kScreenWidth.
  const std::vector<uint32_t>& screen() { return run.player().window(); }

 private:
  LiveFiles files;
  PageRun run;
  std::string path;              // of the page, as the player opens it
  std::filesystem::path folder;  // in which names count
};
