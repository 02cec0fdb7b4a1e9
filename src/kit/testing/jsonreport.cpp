#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <map>

#include "kit/files.h"
#include "kit/json.h"
#include "kit/readjson.h"
#include "kit/source/base64.h"
#include "kit/testing/testreport.h"

namespace {

constexpr std::array<const char*, 3> kOutcomes = {"passed", "failed", "error"};  // as TestOutcome has them
constexpr char kWhat[] = "kpg test", kKind[] = "report";

void writePicture(JsonWriter& json, const ComparedPicture& picture) {
  json.beginObject();
  json.string("name", picture.name);
  json.string("expected", base64Encode(picture.expected));
  json.string("actual", base64Encode(picture.actual));
  json.string("difference", base64Encode(picture.difference));
  json.endObject();
}

void writeResult(JsonWriter& json, const TestResult& result) {
  json.beginObject();
  json.string("file", result.file);
  json.number("line", result.line);
  json.string("name", result.name);
  json.string("page", result.page);
  json.string("outcome", kOutcomes[size_t(result.outcome)]);
  json.number("microseconds", std::llround(result.seconds * 1e6));
  json.beginArray("messages");
  for (const KitMessage& message : result.messages) {
    json.beginObject();
    json.string("file", message.file);
    json.number("line", message.line);
    json.string("text", KitMessage{"", 0, message.text, message.uses}.whole());
    json.endObject();
  }
  json.endArray();
  json.beginArray("steps");
  for (const std::string& step : result.steps) json.string("", step);
  json.endArray();
  json.string("log", result.log);
  json.beginArray("pictures");
  for (const ComparedPicture& picture : result.pictures) writePicture(json, picture);
  json.endArray();
  json.string("film", base64Encode(result.film));
  json.endObject();
}

// Reads values of an object, each of which must be there.
class ObjectReader {
 public:
  ObjectReader(const std::string& f, const JsonValue& v) : file(f), value(v) {}

  const JsonValue& get(const char* key, JsonValue::Kind kind) const {
    const JsonValue* found = value.find(key);
    if (!found || found->kind != kind)
      throw KitError(file, std::string("is no report of kpg test: '") + key + "' is missing");
    return *found;
  }
  std::string text(const char* key) const { return get(key, JsonValue::Kind::text).text; }
  double number(const char* key) const { return get(key, JsonValue::Kind::number).number; }
  const std::vector<JsonValue>& array(const char* key) const { return get(key, JsonValue::Kind::array).array; }

  std::string bytes(const char* key) const {
    const auto decoded = base64Decode(text(key));
    if (!decoded) throw KitError(file, std::string("is damaged: '") + key + "' is no base64");
    return *decoded;
  }
  double whole(const char* key, double most = 1e9) const {
    const double n = number(key);
    if (!(n >= 0 && n <= most)) throw KitError(file, std::string("is damaged: '") + key + "' is no such number");
    return std::floor(n);
  }

 private:
  const std::string& file;
  const JsonValue& value;
};

TestResult readResult(const std::string& file, const JsonValue& value) {
  const ObjectReader in(file, value);
  TestResult result;
  result.file = in.text("file");
  result.line = int(in.whole("line"));
  result.name = in.text("name");
  result.page = in.text("page");
  result.outcome = TestOutcome::error;
  for (size_t i = 0; i < kOutcomes.size(); ++i)
    if (in.text("outcome") == kOutcomes[i]) result.outcome = TestOutcome(i);
  result.seconds = in.whole("microseconds", 1e15) / 1e6;
  for (const JsonValue& each : in.array("messages")) {
    const ObjectReader message(file, each);
    result.messages.push_back({message.text("file"), int(message.whole("line")), message.text("text")});
  }
  for (const JsonValue& step : in.array("steps")) result.steps.push_back(step.text);
  result.log = in.text("log");
  for (const JsonValue& each : in.array("pictures")) {
    const ObjectReader picture(file, each);
    result.pictures.push_back(
        {picture.text("name"), picture.bytes("expected"), picture.bytes("actual"), picture.bytes("difference")});
  }
  result.film = in.bytes("film");
  return result;
}

}  // namespace

std::string reportAsJson(const TestReport& report) {
  JsonWriter json;
  json.beginObject();
  json.string(kKind, kWhat);
  json.number("shard", int64_t(report.shard));
  json.number("shards", int64_t(report.shards));
  json.beginArray("tests");
  for (const TestResult& result : report.results) writeResult(json, result);
  json.endArray();
  json.endObject();
  return json.text();
}

TestReport reportFromJson(const std::string& file, std::string_view text) {
  JsonValue root;
  try {
    root = readJson(text);
  } catch (const KitError& e) {
    throw KitError(file, std::string("is no report of kpg test: ") + e.what());
  }
  const JsonValue* kind = root.find(kKind);
  if (!kind || kind->text != kWhat) throw KitError(file, "is no report of kpg test; --json makes one");
  const ObjectReader in(file, root);
  TestReport report;
  report.shard = size_t(in.whole("shard"));
  report.shards = size_t(in.whole("shards"));
  for (const JsonValue& value : in.array("tests")) report.results.push_back(readResult(file, value));
  return report;
}

std::vector<TestResult> mergeReports(const std::vector<std::string>& files) {
  std::vector<TestResult> all;
  std::map<size_t, std::string> shares;  // the files of those that are there
  size_t shards = 0;
  for (const std::string& file : files) {
    const std::vector<uint8_t> bytes = readFileOfAnySize(file);
    TestReport report = reportFromJson(file, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (shards != 0 && report.shards != shards)
      throw KitError(file, "is one of " + std::to_string(report.shards) + " shares, and " + files.front() + " one of " +
                               std::to_string(shards));
    shards = report.shards;
    const auto [at, isNew] = shares.emplace(report.shard, file);
    if (!isNew) throw KitError(file, "is the same share as " + at->second);
    std::move(report.results.begin(), report.results.end(), std::back_inserter(all));
  }
  for (size_t shard = 1; shard <= shards; ++shard)
    if (!shares.contains(shard))
      throw KitError("the report of share " + std::to_string(shard) + "/" + std::to_string(shards) + " is missing");
  const auto before = [](const TestResult& a, const TestResult& b) { return a.file < b.file; };
  std::stable_sort(all.begin(), all.end(), before);
  return all;
}
