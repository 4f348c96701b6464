#include <gtest/gtest.h>

#include "Codecs/ETC/EtcFastSearch.h"
#include "EtcSearchTestSupport.h"

using namespace zortexture;
using namespace etctest;

namespace
{
TEST(EtcBlockError, MeasuresOnTheirOwnScales)
{
	// One texel in a channel each, in an image wider than the block; alpha 128 is opaque to the scan and unrated.
	std::vector<unsigned char> source(6 * 5 * 3, 200);
	std::vector<unsigned char> alpha(6 * 5, 255);
	Rgb16 decoded;
	decoded.fill(200);
	decoded[0] = 210;               // red of (0, 0)
	decoded[(4 + 3) * 3 + 1] = 180; // green of (3, 1)
	decoded[15 * 3 + 2] = 170;      // blue of (3, 3)
	alpha[6 + 2] = 128;
	alpha[2 * 6 + 5] = 129;
	EXPECT_EQ(calcBlockErrorRGB(source.data(), decoded.data(), 6, 2, 1), 100.0 + 400.0 + 900.0);
	EXPECT_NEAR(calcBlockPerceptualErrorRGB(source.data(), decoded.data(), 6, 2, 1), 29.9 + 234.8 + 102.6, 1e-9);
	EXPECT_EQ(calcBlockErrorRGBA(source.data(), decoded.data(), alpha.data(), 6, 2, 1), 400.0 + 900.0);
	EXPECT_FALSE(hasAlpha(alpha.data(), 2, 1, 6));
	alpha[4 * 6 + 5] = 127;
	EXPECT_TRUE(hasAlpha(alpha.data(), 2, 1, 6));
	EXPECT_FALSE(hasAlpha(alpha.data(), 1, 1, 6));
}
} // namespace
