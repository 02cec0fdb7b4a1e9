#include "checkfixture.h"

namespace {

TEST_F(CheckTest, NamesThatNothingHasOrThatTwoHave) {
  EXPECT_EQ(checkChildren("    - {name: a, right: b}\n"
                          "    - {name: b, left: A, up: a}\n"
                          "    - {name: b, bgcolor: 1}\n"),
            (Found{"8 no-such-name", "9 name-twice", "9 unread-attribute"}));
  EXPECT_EQ(checkChildren("    - {name: a, right: b}\n    - {name: b, left: a}\n"), Found{});
}

TEST_F(CheckTest, MastersThatThePlayerMakesLater) {
  EXPECT_EQ(checkChildren("    - {master: a}\n    - {name: a}\n    - {master: a}\n"), Found{"7 late-master"});
  // A group is complete only after what lies in it.
  EXPECT_EQ(checkChildren("    - type: group\n"
                          "      name: a\n"
                          "      children:\n"
                          "        - {name: in}\n"
                          "        - {master: a}\n"
                          "    - {master: in}\n"),
            Found{"11 late-master"});
}

TEST_F(CheckTest, WidgetsThatNoKeyReaches) {
  EXPECT_EQ(checkChildren("    - {name: a, right: b, onClick: x = 1;}\n"
                          "    - {name: b, left: a}\n"
                          "    - {name: c, left: a}\n"
                          "    - {name: shows, master: a, onClick: x = 1;}\n"),
            Found{"9 unreachable"});
  // The number takes the key that would lead on.
  const char* const number =
      "    - {name: a, type: number, navigate: leftRight, textStyle: s, right: b, down: c}\n"
      "    - {name: b, left: a}\n"
      "    - {name: c, up: a}\n";
  EXPECT_EQ(checkChildren(number).back(), "8 unreachable");
  // A script may do what no link does.
  EXPECT_EQ(checkChildren("    - {name: a, onRight: widgets.b.SetFocus();}\n    - {name: b, left: a}\n"), Found{});
}

TEST_F(CheckTest, WidgetsThatTheFocusCannotLeave) {
  EXPECT_EQ(checkChildren("    - {name: a, right: b}\n    - {name: b, left: b}\n"), Found{"8 focus-trap"});
  EXPECT_EQ(checkChildren("    - {name: a, right: b}\n    - {name: b, onLeft: x = 1;}\n"), Found{});
  EXPECT_EQ(checkChildren("    - {name: a, onClick: x = 1;}\n"), Found{});
}

TEST_F(CheckTest, WhatATemplateBringsInIsSaidOnce) {
  writeText(
      "p.yaml",
      "templates:\n  t:\n    right: gone\npage:\n  type: group\n  children:\n"
      "    - {template: t, name: a}\n    - {template: t, name: b}\n    - {template: t, name: c}\n    - {left: gone}\n");
  const CheckReport report = checkPageSource("p.yaml");
  ASSERT_EQ(report.findings.size(), 2u);
  EXPECT_EQ(report.findings[0].whole(),
            "p.yaml:3: no-such-name: right of a: there is no widget 'gone', and the key leads nowhere\n"
            "  p.yaml:7: used here: template 't'\n"
            "  and in 2 more uses");
}

TEST_F(CheckTest, WhatAnAuthorAllowsIsNotFound) {
  const auto page = [](const std::string& top, const std::string& above, const std::string& beside) {
    return top + "page:\n  type: group\n  children:\n" + above + "    - {up: x}" + beside + "\n    - {up: y}\n";
  };
  EXPECT_EQ(check(page("", "", "")), (Found{"4 no-such-name", "5 no-such-name"}));
  EXPECT_EQ(check(page("", "", "  # kpg: allow no-such-name")), Found{"5 no-such-name"});
  EXPECT_EQ(check(page("", "    # kpg: allow name-twice, no-such-name\n", "")), Found{"6 no-such-name"});
  EXPECT_EQ(check(page("# A menu.\n# kpg: allow no-such-name\n", "", "")), Found{});
  EXPECT_EQ(check(page("", "", ""), {"no-such-name"}), Found{});
  EXPECT_EQ(check(page("", "", "  # kpg: allow no-such-nam")),
            (Found{"4 no-such-name", "4 unknown-allow", "5 no-such-name"}));
}

TEST_F(CheckTest, ReadersOfJsonGetAllOfAFinding) {
  EXPECT_EQ(findingsJson({}), "[]\n");
  EXPECT_EQ(findingsJson({{"focus-trap", {"p.yaml", 7, "a \"quoted\" text"}}, {"vanishes", {"p.yaml", 9, "b"}}}),
            "[\n"
            "  {\n"
            "    \"file\": \"p.yaml\",\n"
            "    \"line\": 7,\n"
            "    \"check\": \"focus-trap\",\n"
            "    \"text\": \"a \\\"quoted\\\" text\"\n"
            "  },\n"
            "  {\n"
            "    \"file\": \"p.yaml\",\n"
            "    \"line\": 9,\n"
            "    \"check\": \"vanishes\",\n"
            "    \"text\": \"b\"\n"
            "  }\n"
            "]\n");
}

}  // namespace
