#include "gfx/foundation/hsrefcnt.h"

#include <gtest/gtest.h>

#include "gfx/halt.h"

namespace {

struct Counted : hsRefCnt {
  explicit Counted(int* alive) : alive(alive) { ++*alive; }
  ~Counted() override { --*alive; }
  int* alive;
};

TEST(RefCnt, AssigningAnObjectToItsOwnFieldKeepsIt) {
  int alive = 0;
  hsRef<Counted> field = hsMake<Counted>(&alive);
  field = hsShare(field.get());
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(field->RefCount(), 1);
  field.reset();
  EXPECT_EQ(alive, 0);
}

TEST(RefCnt, DestroyedWhileSharedReports) {
  int alive = 0;
  ReturnOnHalt halt;
  {
    Counted c(&alive);
    c.Ref();
  }
  ASSERT_EQ(ReturnOnHalt::Reports().size(), 1u);
  EXPECT_NE(ReturnOnHalt::Reports()[0].find("fRefCnt != 1"), std::string::npos);
}

}  // namespace
