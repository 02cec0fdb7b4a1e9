// The rows that a page leaves in the timeline.
#include "studio/timeline/timeline.h"

#include "studio/studiofixture.h"

namespace {

using Lines = std::vector<std::string>;

constexpr char kPage[] =
    "flags: 16bit\n"
    "page:\n"
    "  {type: group, width: 720, height: 480, bgColor: '#000000', start: a, children: [\n"
    "  {name: a, width: 10, height: 10, bgColor: '#FFFFFF', right: b, onClick: 'nothing();'},\n"
    "  {name: b, x: 50, width: 20, height: 10, bgColor: '#FFFFFF', left: a, onFocus: 'stdout.Display(\"here\\n\");'},\n"
    "  {name: t, x: 90, width: 5, height: 5, bgColor: '#FFFFFF', timeout: 30}]}\n";

class TimelineTest : public WatchedSessionTest {
 protected:
  // "depth kind text" of what was added since the last look, without drawings.
  Lines newRows() {
    Lines lines;
    for (; looked < timeline.end(); ++looked) {
      const TimelineRow& row = timeline.row(looked);
      EXPECT_FALSE(row.isOpen) << row.text;
      if (row.kind == TimelineKind::draw || row.kind == TimelineKind::swap) continue;
      lines.push_back(std::to_string(row.depth) + " " + std::string(timelineKindName(row.kind)) + " " + row.text);
    }
    return lines;
  }

  uint64_t looked = 0;
};

TEST_F(TimelineTest, ScriptsNestInEventsAndErrorsInScripts) {
  open(kPage);
  EXPECT_EQ(newRows(), (Lines{"0 load page p.kpg", "1 focus to a"}));
  key("Right");
  EXPECT_EQ(newRows(),
            (Lines{"0 event key Right: taken by the screen", "1 focus to b", "1 script onFocus of b", "2 log here"}));
  key("Left");
  newRows();
  key("Select");
  EXPECT_EQ(newRows(), (Lines{"0 event key Select: taken by the screen", "1 script onClick of a",
                              "2 error Error: Unbound variable - nothing", "2 log Happened in p.yaml:4 a.onClick"}));
  session->pass(40);
  EXPECT_EQ(newRows(), (Lines{"0 timer timeout of t"}));
  key("Clear");
  EXPECT_EQ(newRows(), (Lines{"0 event key Clear: nobody wants it"}));
  EXPECT_EQ(timeline.row(looked - 1).time, 40u);
  type("define tick() { 1; }");
  type("KOVA.t = new Timer(tick, 10);");
  newRows();
  session->pass(15);
  EXPECT_EQ(newRows(), (Lines{"0 timer tick"}));
}

TEST_F(TimelineTest, DrawingsTellWhatTheyCost) {
  open(kPage);
  timeline.clear();
  type("widgets.b.bgColor = 0;");
  uint64_t filled = 0, swapCost = 0;
  Lines draws;
  for (uint64_t i = timeline.first(); i < timeline.end(); ++i) {
    const TimelineRow& row = timeline.row(i);
    if (row.kind == TimelineKind::draw) {
      draws.push_back(row.text);
      filled += row.cost.pixelsFilled;
    }
    if (row.kind == TimelineKind::swap) swapCost += row.cost.pixelsFilled;
  }
  EXPECT_EQ(draws, (Lines{"b  50 0  20x10"}));
  EXPECT_EQ(filled, 200u);
  EXPECT_EQ(timelineCost({1, 2345678, 1, 0, 0}), "1 pixel filled, 2,345,678 pixels copied, 1 glyph");
  EXPECT_EQ(timelineCost({}), "");
  EXPECT_EQ(timelineTime(61002), "61.002 s");
}

TEST_F(TimelineTest, EachOpeningIsToldApartAndAFailedOneIsKept) {
  open(kPage);
  session->pass(5);
  write("p.yaml", "page: {type: gruop}\n");
  EXPECT_FALSE(session->reload());
  key("Right");
  EXPECT_EQ(timeline.row(timeline.end() - 1).opening, 1u) << "the page that was there goes on";
  write("p.yaml", kPage);
  EXPECT_TRUE(session->reload());
  const TimelineRow& last = timeline.row(timeline.end() - 1);
  EXPECT_EQ(last.opening, 2u) << "what ends with a run is not heard: " << last.text;
  TimelineFilter filter;
  filter.opening = 2;
  filter.text = "ONFOCUS";
  EXPECT_EQ(timeline.rowsThat(filter).size(), 1u) << "the key that was replayed";
}

// Without a page: any rows in a small space, against a plain list.
TEST(TimelineRows, TheOldestMakeSpaceAndNumbersGoOn) {
  Timeline timeline(7);
  std::vector<std::pair<uint64_t, std::string>> all;
  for (int i = 0; i < 40; ++i) {
    if (i == 18) {
      timeline.clear();
      all.clear();
      EXPECT_EQ(timeline.size(), 0u);
    }
    TimelineRow row;
    row.text = std::to_string(i);
    row.kind = i % 2 ? TimelineKind::draw : TimelineKind::log;
    all.emplace_back(timeline.add(row), row.text);
    ASSERT_TRUE(all.size() < 2 || all[all.size() - 2].first + 1 == all.back().first);
    ASSERT_EQ(timeline.size(), std::min<size_t>(all.size(), 7));
    ASSERT_EQ(timeline.dropped(), all.size() - timeline.size());
    for (const auto& [number, text] : all) {
      const TimelineRow* kept = timeline.change(number);
      ASSERT_EQ(kept != nullptr, number >= timeline.first());
      ASSERT_EQ(kept ? kept->text : text, text);
    }
  }
  TimelineFilter drawings;
  drawings.kinds.reset().set(size_t(TimelineKind::draw));
  EXPECT_EQ(timeline.rowsThat(drawings).size(), 4u);
  EXPECT_EQ(timeline.change(timeline.end()), nullptr);
}

}  // namespace
