#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "Codecs/Tessel/kiln/orientedbox.h"
#include "Codecs/Tessel/kiln/representable.h"

namespace
{
struct MappingCase
{
	const char* what;
	bool tessel2;
	KilnColourF a;
	KilnColourF b;
	KilnColour expectedA;
	KilnColour expectedB;
};

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Levels of 5 bits: 0 8 16 24 33 41 49 57 66 ...; of 4: 0 16 33 49 66 82 99 115 140 ...; of 3: 0 33 74 107 148 181 222 255.
const MappingCase kMappings[] = {
    {"opaque, blue of A has 4 bits", true, {20.5F, 28, 40, 246}, {21, 29, 40, 238}, {24, 24, 33, 255}, {24, 33, 41, 255}},
    {"a tie moves B up", false, {4, 12, 8, 255}, {4, 12, 12, 255}, {0, 8, 0, 255}, {8, 16, 16, 255}},
    {"a tie moves B down", false, {12, 20, 40.5F, 255}, {4, 12, 12, 255}, {16, 24, 33, 255}, {0, 8, 8, 255}},
    {"outside 0 to 255, not a number", false, {-5, 300, kNan, 255}, {255, 0, 1e30F, 255}, {0, 255, 0, 255}, {255, 0, 255, 255}},
    {"B below its limit", false, {8, 8, 8, 250}, {8, 25, 8, 245.9F}, {8, 8, 0, 255}, {16, 33, 16, 238}},
    {"translucent widths", true, {24, 25, 16, 100}, {24, 25, 60, 100}, {16, 33, 0, 102}, {16, 33, 66, 85}},
    {"255 beside a translucent colour", false, {0, 0, 0, 255}, {0, 0, 0, 100}, {0, 0, 0, 238}, {0, 0, 0, 102}},
    {"254 beside one is opaque by itself", false, {41, 0, 0, 254}, {41, 0, 0, 100}, {41, 0, 0, 255}, {49, 0, 0, 102}},
    {"but not in the second generation", true, {41, 0, 0, 254}, {42, 0, 0, 100}, {33, 0, 0, 238}, {49, 0, 0, 85}},
    {"a translucent A beside an opaque B", true, {0, 0, 0, 17}, {0, 0, 0, 255}, {0, 0, 0, 34}, {0, 0, 0, 255}},
    {"alpha 0", true, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 17}},
    {"alpha 0 in the first generation", false, {0, 0, 0, 0}, {0, 0, 0, kNan}, {0, 0, 0, 0}, {0, 0, 0, 0}},
    {"alphas that meet at 255", true, {0, 0, 0, 247}, {0, 0, 0, 237.9F}, {0, 0, 0, 238}, {0, 0, 0, 221}},
};

unsigned distance(unsigned a, unsigned b)
{
	return a > b ? a - b : b - a;
}
} // namespace

TEST(KilnColour, MapsPairsToRepresentableColours)
{
	for (const MappingCase& test : kMappings)
	{
		const KilnPair pair = MapToRepresentableColours(test.tessel2, test.a, test.b);
		EXPECT_EQ(pair.a, test.expectedA) << test.what;
		EXPECT_EQ(pair.b, test.expectedB) << test.what;
	}
}

TEST(KilnColour, MappingIsNearAndItsResultStandsStill)
{
	std::mt19937 random(5);
	for (int repeat = 0; repeat < 20000; ++repeat)
	{
		const bool tessel2 = (random() & 1) != 0;
		KilnColour a;
		KilnColour b;
		for (int c = 0; c < 4; ++c)
		{
			a[c] = static_cast<std::uint8_t>(random());
			b[c] = static_cast<std::uint8_t>(random());
		}
		if ((random() & 1) != 0)
		{
			a[3] = b[3] = 255;
		}
		const KilnPair pair = MapToRepresentableColoursInt(tessel2, a, b);
		const bool opaque = a[3] == 255 && b[3] == 255;
		for (int c = 0; c < 3; ++c)
		{
			// Half of the widest step between levels.
			const unsigned reach = c == 2 ? (opaque ? 13 : 21) : (opaque ? 5 : 13);
			ASSERT_LE(distance(pair.a[c], a[c]), reach);
			ASSERT_LE(distance(pair.b[c], b[c]), opaque ? 5U : 13U);
		}
		// An opaque value beside a translucent one cannot always stay.
		ASSERT_LE(distance(pair.a[3], a[3]), 17U);
		ASSERT_LE(distance(pair.b[3], b[3]), 17U);
		const bool mixed = (pair.a[3] == 255) != (pair.b[3] == 255);
		if (!mixed)
		{
			ASSERT_EQ(MapToRepresentableColoursInt(tessel2, pair.a, pair.b), pair);
		}
	}
}

TEST(KilnColour, SnapsSingleColours)
{
	EXPECT_EQ(SnapToRepresentable({12, 13, 255, 250}), (KilnColour{8, 16, 255, 255}));
	EXPECT_EQ(SnapToRepresentable({24, 25, 40, 200}), (KilnColour{16, 33, 33, 204}));
	EXPECT_EQ(SnapToRepresentable({12, 13, 40, 249}), (KilnColour{8, 16, 41, 255}));
}

TEST(KilnColour, BoxesClampToTheirPixels)
{
	OrientedBBox box;
	InitOrientedBBox(box, {{{0.6F, 0.8F, 0, 0}, {-0.8F, 0.6F, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}});
	EXPECT_TRUE(OrientedBBoxIsEmpty(box));
	AddIColourToOrientedBBox(box, {0, 0, 10, 255});
	AddIColourToOrientedBBox(box, {60, 80, 30, 255});
	EXPECT_FALSE(OrientedBBoxIsEmpty(box));
	EXPECT_NEAR(SizeOfOrientedBBox(box), 120, 1e-3);

	// 200 along the main axis and 50 across: to 100 and 0.
	const KilnColourF clamped = ClampToOrientedBBox(box, {120 - 40, 160 + 30, 99, 0});
	const KilnColourF expected = {60, 80, 30, 255};
	for (int c = 0; c < 4; ++c)
	{
		EXPECT_NEAR(clamped[c], expected[c], 1e-3);
	}
	const KilnColourF inside = {30, 40, 20, 255};
	EXPECT_EQ(ClampToOrientedBBox(box, inside), inside);

	InitOrientedBBoxToSingleColour(box, {1, 2, 3, 4});
	EXPECT_EQ(ClampToOrientedBBox(box, {9, 0, 3, 200}), (KilnColourF{1, 2, 3, 4}));
	EXPECT_EQ(SizeOfOrientedBBox(box), 0);
}
