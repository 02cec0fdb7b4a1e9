// Results of tests as files: for other kpg's to merge, for build servers, for people.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kit/testing/testresult.h"

struct TestReport {
  std::vector<TestResult> results;
  size_t shard = 1, shards = 1;  // this one of so many shares
};

// All of it, pictures included.
std::string reportAsJson(const TestReport& report);

// Throws KitError, for `file`, for a text that is no such report.
TestReport reportFromJson(const std::string& file, std::string_view text);

// All results, by their files, of the shares of one suite. Throws KitError when a share is missing or there twice.
std::vector<TestResult> mergeReports(const std::vector<std::string>& files);

// A suite for each test file, as build servers read it.
std::string resultsAsJunit(const std::vector<TestResult>& results);

// index.html and what it shows, into the folder, which is made. It replaces a report that is there, once it is whole.
// Throws KitError when something else lies in the way.
void writeHtmlReport(const std::string& folder, const std::vector<TestResult>& results);

// For HTML and XML: no markup, and nothing that they can't have.
std::string markupText(std::string_view text);
