#include "kit/run/scriptwords.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kit/files.h"
#include "kit/run/pagerun.h"
#include "support/temporaryfolder.h"

namespace {

bool has(const std::vector<std::string>& words, const std::string& word) {
  return std::binary_search(words.begin(), words.end(), word);
}

TEST(ScriptWords, AreThoseOfThePageAsItIsNow) {
  const TemporaryFolder folder;
  const std::string source = "flags: 16bit\npage: {type: group, onLoad: 'channels = 3;', children: [{name: volume}]}\n";
  const std::string page = (folder.path() / "p.yaml").string();
  writeFile(page, source.data(), source.size());
  PageRun run{PageRunOptions()};
  EXPECT_FALSE(has(scriptWords(run).globals, "channels"));
  ASSERT_TRUE(run.load(page));
  ScriptWords words = scriptWords(run);
  for (const char* global : {"channels", "widgets", "topFrame", "Object"})
    EXPECT_TRUE(has(words.globals, global)) << global;
  EXPECT_FALSE(has(words.globals, "SetFocus"));
  for (const char* selector : {"volume", "SetFocus", "bgColor"})
    EXPECT_TRUE(has(words.selectors, selector)) << selector;
  EXPECT_FALSE(has(words.selectors, "+"));
  EXPECT_FALSE(has(words.globals, "later"));
  run.act({PageAction::eval, "later = 1;"});
  EXPECT_TRUE(has(scriptWords(run).globals, "later"));
}

}  // namespace
