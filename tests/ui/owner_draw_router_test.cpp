// The owner-draw router's message numbers: the reflected forms a control gets back from its
// parent. What the router does with them is tested on real pages (tests/pages).
#include "ui/owner_draw_router.h"

#include <gtest/gtest.h>

TEST(OwnerDrawRouter, ReflectedMessagesAreTheMessagesPlus0x2000) {
    EXPECT_EQ(OCM_DRAWITEM_MESSAGE, 0x202Bu);
    EXPECT_EQ(OCM_MEASUREITEM_MESSAGE, 0x202Cu);
    EXPECT_EQ(OCM_DELETEITEM_MESSAGE, 0x202Du);
    EXPECT_EQ(OCM_COMPAREITEM_MESSAGE, 0x2039u);
}
