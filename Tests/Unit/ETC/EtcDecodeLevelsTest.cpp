// Every vector unit decodes every block as the plain form does.

#include <algorithm>
#include <gtest/gtest.h>

#include "ETCCodec.h"
#include "EtcTestSupport.h"
#include "Simd/SimdLevels.h"

namespace zortexture
{
namespace
{
using etctest::Bytes;

/// Blocks of all modes: random ones, of which many overflow in red, and such as overflow first in green, first in blue or nowhere, with
/// sums at the ends of the range; in a quarter of them all bits of the base or of the EAC header are alike.
Bytes blocksOfAllModes(std::mt19937& random, std::size_t count, std::size_t blockBytes)
{
	Bytes bytes = etctest::randomBytes(random, count * blockBytes);
	for (std::size_t block = 0; block < count; ++block)
	{
		unsigned char* colours = &bytes[(block + 1) * blockBytes - 8];
		const unsigned int mode = random() % 5; // the channel that overflows, 3 for none, 4 for what comes
		for (unsigned int channel = 0; channel < 3 && mode < 4 && channel <= mode; ++channel)
		{
			static constexpr unsigned char kInside[] = {0x00, 0x03, 0xFC, 0xF8, 0x24, 0xE3};
			static constexpr unsigned char kOutside[] = {0xF9, 0xFB, 0xEB, 0x04, 0x07, 0x1C};
			colours[channel] = (channel == mode ? kOutside : kInside)[random() % 6];
		}
		if (mode == 0)
		{
			bytes[block * blockBytes] = static_cast<unsigned char>(random() % 2 == 0 ? 0x80 : 0xFF);
		}
	}
	return bytes;
}

TEST(EtcDecoder, AllVectorLevelsGiveTheBytesOfThePlainOne)
{
	std::mt19937 random(21);
	const std::pair<EZORTPixelFormat, std::size_t> kFormats[] = {{ePF_ETC1, 3},        {ePF_ETC2_RGB, 3}, {ePF_ETC2_RGBA, 4},
	                                                             {ePF_ETC2_RGB_A1, 4}, {ePF_EAC_R11, 2},  {ePF_EAC_RG11, 4}};
	for (unsigned int round = 0; round < 40; ++round)
	{
		const unsigned int width = round == 0 ? 1024 : 1 + random() % 70;
		const unsigned int height = 1 + random() % 40;
		const std::size_t blocks = std::size_t{(width + 3) / 4} * ((height + 3) / 4);
		for (const auto& [format, texelBytes] : kFormats)
		{
			const Bytes source = blocksOfAllModes(random, blocks, format == ePF_ETC2_RGBA || format == ePF_EAC_RG11 ? 16 : 8);
			const auto decoded = [&, format = format, texelBytes = texelBytes]
			{
				Bytes pixels(texelBytes * width * height);
				ETCDecompress(source.data(), pixels.data(), width, height, format, round % 2 == 0);
				return pixels;
			};
			const Bytes expected = atSimdLevel(eSimdPlain, decoded);
			for (const ESimdLevel level : kVectorLevels)
			{
				ASSERT_EQ(atSimdLevel(level, decoded), expected)
				    << "level " << level << ", format " << format << ", " << width << " x " << height;
			}
		}
	}
}

TEST(EtcRgbaDecoder, AllVectorLevelsGiveTheBytesOfThePlainOne)
{
	std::mt19937 random(22);
	for (unsigned int width = 1; width < 24; ++width)
	{
		for (const unsigned int height : {1U, 3U, 4U, 8U, 10U})
		{
			const std::size_t blocks = std::size_t{(width + 3) / 4} * ((height + 3) / 4);
			const Bytes source = blocksOfAllModes(random, blocks, 8);
			const auto decoded = [&]
			{
				// Room for whole blocks: those at the right edge and below the image write what lies outside, too.
				Bytes pixels(blocks * 64);
				ZORTDecompressETC(source.data(), width, height, pixels.data(), 0);
				return pixels;
			};
			const Bytes expected = atSimdLevel(eSimdPlain, decoded);
			for (const ESimdLevel level : kVectorLevels)
			{
				ASSERT_EQ(atSimdLevel(level, decoded), expected) << "level " << level << ", " << width << " x " << height;
			}
		}
	}
}
} // namespace
} // namespace zortexture
