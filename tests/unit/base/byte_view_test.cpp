#include "base/ByteView.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

const std::string kBytes("\x01\x02\x03\x04\xFF\xFF\xFF\xFF\x00zz", 11);

TEST(ByteView, readsBothByteOrders) {
    const ByteView view = viewOf(kBytes);
    EXPECT_EQ(view.u8(1), 2);
    EXPECT_EQ(view.u16le(0), 0x0201);
    EXPECT_EQ(view.u32le(0), 0x04030201u);
    EXPECT_EQ(view.u32be(0), 0x01020304u);
    EXPECT_EQ(view.i32le(4), -1);
    EXPECT_EQ(view.u64le(0), 0xFFFFFFFF04030201u);
}

TEST(ByteView, refusesEveryReadThatLeavesIt) {
    const ByteView view = viewOf(kBytes);
    EXPECT_FALSE(view.has(8, 4));
    EXPECT_FALSE(view.has(UINT64_MAX, 2));
    EXPECT_FALSE(view.has(2, UINT64_MAX));
    EXPECT_TRUE(view.has(11, 0));
    EXPECT_THROW(view.u32le(8), OutOfBytes);
    EXPECT_THROW(view.sub(5, UINT64_MAX), OutOfBytes);
    EXPECT_THROW(view.from(12), OutOfBytes);
}

TEST(ByteView, subViewsKnowTheirPlaceInTheEvidence) {
    const ByteView view = viewOf(kBytes).sub(4, 5).from(2);
    EXPECT_EQ(view.place(), 6u);
    EXPECT_EQ(view.size(), 3u);
    try {
        view.u32le(0);
        FAIL() << "three bytes can't hold four";
    } catch (const OutOfBytes &failure) {
        EXPECT_EQ(failure.place(), 6u);
    }
}

TEST(ByteView, untilZeroEndsAtTheZeroOrTheEnd) {
    EXPECT_EQ(viewOf(kBytes).untilZero(4).size(), 4u);
    EXPECT_EQ(viewOf(kBytes).untilZero(9).raw(), "zz");
    EXPECT_EQ(viewOf(kBytes).find("zz"), 9u);
    EXPECT_EQ(viewOf(kBytes).find("no"), std::nullopt);
}

} // namespace
} // namespace nv
