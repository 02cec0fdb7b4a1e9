// A page source that kpg check reads, in a folder of its own.
#pragma once

#include <string>
#include <vector>

#include "kit/check/checkpage.h"
#include "support/pagefixture.h"

class CheckTest : public PageTest {
 protected:
  // Each as "LINE NAME".
  std::vector<std::string> check(const std::string& source, const std::vector<std::string>& allowed = {}) {
    writeText("p.yaml", source);
    std::vector<std::string> found;
    const CheckReport report = checkPageSource("p.yaml", allowed);
    for (const KitMessage& error : report.errors) ADD_FAILURE() << error.whole();
    for (const Finding& finding : report.findings) {
      EXPECT_EQ(finding.message.file, "p.yaml");
      found.push_back(std::to_string(finding.message.line) + " " + finding.check);
    }
    return found;
  }

  // Of a page with these children; the first of them is in line 7.
  std::vector<std::string> checkChildren(const std::string& children, const std::string& start = "a",
                                         const std::vector<std::string>& allowed = {}) {
    return check(
        "page:\n  type: group\n  width: 720\n  height: 480\n  start: '" + start + "'\n  children:\n" + children,
        allowed);
  }

  using Found = std::vector<std::string>;
};
