// What an editor is shown as the player's own names is what scripts find there.
#include "kit/lsp/knownmembers.h"

#include <map>
#include <regex>
#include <set>

#include "kit/run/pagerun.h"
#include "support/pagefixture.h"

namespace {

// A value of each kind, or the class that has its methods.
const std::map<std::string_view, std::string> kSamples = {{"Widget", "widgets.bar"},
                                                          {"Frame", "topFrame"},
                                                          {"EventTarget", "new EventTarget()"},
                                                          {"Event", "event"},
                                                          {"Timer", "new Timer(gc)"},
                                                          {"TextStyle", "TextStyle"},
                                                          {"StringTable", "StringTable"},
                                                          {"File", "stdout"},
                                                          {"String", "\"x\""},
                                                          {"Symbol", "\\x"},
                                                          {"Vector", "\\[]"},
                                                          {"Integer", "1"},
                                                          {"Float", "1.5"},
                                                          {"Method", "new Timer"},
                                                          {"Object", "\\{}"}};

class KnownMembersTest : public PageTest {
 protected:
  KnownMembersTest() {
    writeText("page.yaml",
              "page: {type: group, children: [{type: slider, name: bar, onChange: ''}, {type: text, name: t}]}\n");
    EXPECT_TRUE(run.load("page.yaml"));
    logOf("widgets.bar.OnEvent(0x80001, function (e) { event = e; return true; }); ");
    logOf("widgets.bar.HandleEvent(0x80001, 1, 0);");
    logOf("define area() {}");
  }

  std::string logOf(const std::string& line) {
    const size_t before = run.log().size();
    run.act({PageAction::eval, line});
    return run.log().substr(before);
  }

  PageRun run{PageRunOptions{}};
};

TEST_F(KnownMembersTest, AreThere) {
  for (const KnownMember& member : knownMembers()) {
    std::string line(member.name);
    if (!member.object.empty()) {
      const std::string sample = member.object == "Method" ? "area" : kSamples.at(member.object);
      line = "(" + sample + ")." + line;
    }
    const std::string log = logOf(line + ", 0;");
    EXPECT_EQ(log.find("Error"), std::string::npos) << line << "\n" << log;
    EXPECT_FALSE(member.help.empty()) << line;
  }
  EXPECT_NE(logOf("(widgets.bar).NoSuchMember;").find("Error"), std::string::npos);
}

// The classes list what they have.
TEST_F(KnownMembersTest, AreAll) {
  const std::regex property("^  ([A-Za-z0-9]+): ");
  for (const auto& [object, sample] : kSamples) {
    if (object == "Event") continue;
    const std::string name = object == "Widget" || object == "Frame" ? sample + ".Class()" : std::string(object);
    std::istringstream log(logOf("Object.Send(\\Show, \\[]), " + name + ".Show();"));
    std::set<std::string> own;
    for (const KnownMember& member : knownMembers())
      if (!member.object.empty()) own.emplace(member.name);
    size_t count = 0;
    for (std::string line; std::getline(log, line);) {
      std::smatch found;
      if (!std::regex_search(line, found, property)) continue;
      EXPECT_TRUE(own.contains(found[1])) << object << " has " << found[1];
      ++count;
    }
    EXPECT_GT(count, 0u) << object;
  }
}

TEST(KnownMembers, DescendFromOneAnother) {
  EXPECT_NE(knownMember("Frame", "OnEvent"), nullptr);
  EXPECT_EQ(knownMember("Timer", "OnEvent"), nullptr);
  EXPECT_EQ(knownMember("", "OnEvent"), nullptr);
  EXPECT_EQ(objectOfChain("topFrame.widgets.bar"), "Widget");
  EXPECT_EQ(objectOfChain("widgets.bar.highlightStyle"), "TextStyle");
  EXPECT_EQ(objectOfChain("bar"), "");
}

}  // namespace
