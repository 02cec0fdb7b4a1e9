#include "studio/editor/openplace.h"

#include <gtest/gtest.h>

namespace {

using Command = std::vector<std::string>;

TEST(OpenPlace, EachEditorGetsTheLineInItsOwnWay) {
  const struct {
    EditorChoice choice;
    Command command;
  } cases[] = {
      {{"code -w", {}}, {"code", "-w", "--goto", "a b.yaml:7"}},
      {{"/usr/bin/kate", {"code"}}, {"/usr/bin/kate", "--line", "7", "a b.yaml"}},
      {{"gvim", {}}, {"gvim", "+7", "a b.yaml"}},
      {{"unheard-of", {}}, {"unheard-of", "a b.yaml"}},
      {{"vim", {"xdg-open"}}, {"xdg-open", "a b.yaml"}},  // it would need a terminal
      {{"vim -n", {"xdg-open"}, "xterm"}, {"xterm", "-e", "vim", "-n", "+7", "a b.yaml"}},
      {{"/opt/hx", {}, "gnome-terminal"}, {"gnome-terminal", "--", "/opt/hx", "a b.yaml:7"}},
      {{"gvim", {}, "xterm"}, {"gvim", "+7", "a b.yaml"}},
      {{"", {"code", "xdg-open"}}, {"code", "--goto", "a b.yaml:7"}},
  };
  for (const auto& c : cases) EXPECT_EQ(editorCommand(c.choice, "a b.yaml", 7), c.command) << c.choice.visual;
  EXPECT_EQ(editorCommand({"code", {}}, "a.yaml", 0), (Command{"code", "a.yaml"}));
  EXPECT_EQ(editorCommand({"nano", {}}, "a.yaml", 7), std::nullopt);
}

}  // namespace
