#include "tessaly.h" // alone: a header that it misses, or that needs another before it, fails here

#include <gtest/gtest.h>

TEST(Umbrella, OffersTheProduct) { EXPECT_STREQ(L"Tessaly", GetMyProductInfo().GetName()); }
