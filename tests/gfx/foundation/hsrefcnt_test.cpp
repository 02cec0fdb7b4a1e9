#include "gfx/foundation/hsrefcnt.h"

#include <gtest/gtest.h>

#include "gfx/halt.h"

namespace {

struct Counted : hsRefCnt {
  explicit Counted(int* alive) : alive(alive) { ++*alive; }
  ~Counted() override { --*alive; }
  int* alive;
};

TEST(RefCnt, DiesWithTheLastReference) {
  ThrowOnHalt halt;
  int alive = 0;
  Counted* c = new Counted(&alive);
  c->Ref();
  c->UnRef();
  EXPECT_EQ(alive, 1);
  c->UnRef();
  EXPECT_EQ(alive, 0);
}

TEST(RefCnt, AssigningAnObjectToItsOwnFieldKeepsIt) {
  int alive = 0;
  Counted* field = new Counted(&alive);
  hsRefAssign(field, field);
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(field->RefCount(), 1);
  hsRefAssign<Counted>(field, nullptr);
  EXPECT_EQ(alive, 0);
}

TEST(RefCnt, DestroyedWhileSharedReports) {
  int alive = 0;
  EXPECT_EQ(AssertOf([&] {
              Counted c(&alive);
              c.Ref();
            }),
            "fRefCnt != 1");
}

}  // namespace
