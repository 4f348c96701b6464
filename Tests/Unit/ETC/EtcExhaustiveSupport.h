/// @file EtcExhaustiveSupport.h
/// What the tests of the exhaustive searches share.
#pragma once

#include <memory>

#include "Codecs/ETC/EtcSearchSpace.h"
#include "Codecs/ETC/EtcTables.h"
#include "EtcSearchTestSupport.h"

namespace etctest
{
/// Two blocks of photographs with an edge of colour.
inline constexpr Rgb16 kNaturalBlocks[] = {
    {168, 57, 39, 224, 108, 72, 227, 108, 71, 208, 81,  43, 128, 13, 17, 174, 55, 29, 221, 103, 67, 227, 108, 68,
     159, 29, 15, 173, 42,  15, 207, 83,  43, 224, 107, 70, 177, 43, 16, 183, 44, 18, 217, 85,  50, 225, 106, 67},
    {186, 106, 52, 213, 142, 91, 219, 155, 98, 218, 153, 91, 218, 153, 90, 201, 125, 59, 196, 113, 50, 170, 75, 16,
     187, 91,  29, 185, 94,  35, 178, 79,  23, 179, 81,  28, 179, 80,  24, 180, 77,  18, 182, 83,  28, 183, 84, 26}};

/// Noise, ramps, two colours, grey noise, black and white, one colour, photographs: by turns.
inline Rgb16 anyBlock(std::mt19937& random, unsigned int turn)
{
	return turn % 8 < 6 ? mixedBlock(random, turn % 8) : kNaturalBlocks[turn % 2];
}

/// The scratch memory, with contents that no search may rely on.
inline zortexture::EtcSearchSpace& searchSpace()
{
	static const auto space = []
	{
		auto made = std::make_unique<zortexture::EtcSearchSpace>();
		auto* bytes = reinterpret_cast<unsigned char*>(made.get());
		std::fill(bytes, bytes + sizeof(*made), static_cast<unsigned char>(0x5A));
		return made;
	}();
	return *space;
}

/// One of the twins.
struct Measure
{
	const int (&weights)[3];
	unsigned int ceiling;
};
inline constexpr Measure kPlain{kPlainWeights, zortexture::kBlockErrorCeiling};
inline constexpr Measure kPerceptual{kPerceptualWeights, zortexture::kBlockErrorCeilingPerceptual1000};
inline constexpr const Measure* kMeasures[] = {&kPlain, &kPerceptual};
} // namespace etctest
