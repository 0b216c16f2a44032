#include <gtest/gtest.h>

#include <tessolv/tessolv.h>

#include "support/matrices.h"

using namespace zeb::tessolv;

TEST(Version, IsTheOneOfTheInterface) { EXPECT_STREQ(version(), "3.9.3"); }
