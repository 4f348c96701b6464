#include "TesselDecoder.h"

#include <algorithm>
#include <cstring>

#include "TesselBands.h"
#include "TesselBlock.h"
#include "TesselCodec.h"
#include "TesselModulation.h"
#include "TesselTwiddle.h"
#include "TesselUpscale.h"

namespace zortexture
{
namespace
{
/// Weights above 10 mean: subtract 10, and the pixel is transparent.
constexpr std::uint8_t kPunchThroughOffset = 10;

struct DecodedBlock
{
	TesselBlockData words;
	TesselColour colourA;
	TesselColour colourB;
};

/// The blocks of a texture, in twiddled order, addressed with wrap from -1 to the count.
class BlockReader
{
public:
	BlockReader(const void* compressed, std::uint32_t numX, std::uint32_t numY)
	    : m_bytes(static_cast<const unsigned char*>(compressed)), m_numX(numX), m_numY(numY)
	{
	}

	/// Places past the end of the data, which counts that are not powers of two have, read as zero words.
	DecodedBlock read(std::int64_t blockX, std::int64_t blockY) const
	{
		const std::uint64_t index = twiddledBlockIndex(m_numX, m_numY, wrap(blockX, m_numX), wrap(blockY, m_numY));
		DecodedBlock block;
		if (index < std::uint64_t(m_numX) * m_numY)
		{
			static_assert(sizeof(TesselBlockData) == 8);
			std::memcpy(&block.words, m_bytes + index * sizeof(TesselBlockData), sizeof(TesselBlockData));
		}
		block.colourA = unpackTesselColour(block.words.getColourA());
		block.colourB = unpackTesselColour(block.words.getColourB());
		return block;
	}

private:
	static std::uint32_t wrap(std::int64_t position, std::uint32_t count)
	{
		return static_cast<std::uint32_t>(position < 0 ? position + count : (position >= count ? position - count : position));
	}

	const unsigned char* m_bytes;
	std::uint32_t m_numX;
	std::uint32_t m_numY;
};

template<unsigned Bpp>
unsigned weightAt(const TesselGroup& values, const TesselGroup& modes, unsigned x, unsigned y)
{
	if constexpr (Bpp == 2)
	{
		return weightOf2bppPixel(values, modes, x, y);
	}
	else
	{
		const unsigned index = values[y][x];
		const unsigned mode = modes[y][x];
		return kTesselWeights[mode][index] + (mode != 0 && index == kPunchThroughIndex ? kPunchThroughOffset : 0);
	}
}

Pixel<unsigned char> mix(const Pixel<unsigned char>& a, const Pixel<unsigned char>& b, unsigned weight)
{
	const bool transparent = weight > kPunchThroughOffset;
	const int m = static_cast<int>(transparent ? weight - kPunchThroughOffset : weight);
	const auto channel = [m](int from, int to)
	{
		return static_cast<unsigned char>((from * (8 - m) + to * m) / 8);
	};
	return {channel(a.r, b.r), channel(a.g, b.g), channel(a.b, b.b), transparent ? static_cast<unsigned char>(0) : channel(a.a, b.a)};
}

/// @param width, height  the pixels of the image that blocks cover.
/// @param pitch          pixels from row to row of the output.
template<unsigned Bpp>
void decodeAreas(const BlockReader& reader, std::int64_t numX, std::int64_t numY, std::int64_t width, std::int64_t height,
                 std::int64_t pitch, unsigned char* pixels)
{
	constexpr unsigned kWidth = Bpp == 2 ? 8 : 4;
	constexpr unsigned kArea = kWidth * 4;
	TesselGroup values = {};
	TesselGroup modes = {};
	for (std::int64_t by = -1; by < numY; ++by)
	{
		const TesselAreaSpan rows = tesselAreaSpan(by, 4, height);
		if (rows.first == rows.end)
		{
			continue;
		}
		// The right half of a group is the left half of the next: P and R always come from there.
		DecodedBlock q = reader.read(-1, by);
		DecodedBlock s = reader.read(-1, by + 1);
		unpackModulations(q.words, kWidth, 0, values, modes, Bpp);
		unpackModulations(s.words, kWidth, 4, values, modes, Bpp);
		for (std::int64_t bx = -1; bx < numX; ++bx)
		{
			const TesselAreaSpan columns = tesselAreaSpan(bx, kWidth, width);
			if (columns.first == columns.end)
			{
				break;
			}
			const DecodedBlock p = q;
			const DecodedBlock r = s;
			q = reader.read(bx + 1, by);
			s = reader.read(bx + 1, by + 1);
			for (unsigned y = 0; y < 8; ++y)
			{
				std::copy_n(values[y].begin() + kWidth, kWidth, values[y].begin());
				std::copy_n(modes[y].begin() + kWidth, kWidth, modes[y].begin());
			}
			unpackModulations(q.words, kWidth, 0, values, modes, Bpp);
			unpackModulations(s.words, kWidth, 4, values, modes, Bpp);

			Pixel<unsigned char> planeA[kArea];
			Pixel<unsigned char> planeB[kArea];
			interpolateColours(p.colourA, q.colourA, r.colourA, s.colourA, planeA, Bpp);
			interpolateColours(p.colourB, q.colourB, r.colourB, s.colourB, planeB, Bpp);
			for (std::int64_t v = rows.first; v < rows.end; ++v)
			{
				unsigned char* out = pixels + 4 * ((rows.origin + v) * pitch + columns.origin + columns.first);
				for (std::int64_t u = columns.first; u < columns.end; ++u, out += 4)
				{
					const auto position = static_cast<std::size_t>(v * kWidth + u);
					const unsigned weight =
					    weightAt<Bpp>(values, modes, static_cast<unsigned>(u) + kWidth / 2, static_cast<unsigned>(v) + 2);
					const Pixel<unsigned char> pixel = mix(planeA[position], planeB[position], weight);
					std::memcpy(out, &pixel, sizeof(pixel));
				}
			}
		}
	}
}
} // namespace

void interpolateColours(const TesselColour& p, const TesselColour& q, const TesselColour& r, const TesselColour& s,
                        Pixel<unsigned char>* out, unsigned bpp)
{
	// Scales of 4 * blockWidth and 31 or 15 become 255 without a division: the low part repeats the high bits.
	if (bpp == 2)
	{
		upscaleTesselArea<8>(
		    p, q, r, s,
		    [out](int u, int v, const TesselColour& t)
		    {
			    const auto colour = [](int c)
			    {
				    return static_cast<unsigned char>((c >> 2) + (c >> 7));
			    };
			    out[8 * v + u] = {colour(t[0]), colour(t[1]), colour(t[2]), static_cast<unsigned char>((t[3] >> 1) + (t[3] >> 5))};
		    });
		return;
	}
	upscaleTesselArea<4>(p, q, r, s,
	                     [out](int u, int v, const TesselColour& t)
	                     {
		                     const auto colour = [](int c)
		                     {
			                     return static_cast<unsigned char>((c >> 1) + (c >> 6));
		                     };
		                     out[4 * v + u] = {colour(t[0]), colour(t[1]), colour(t[2]), static_cast<unsigned char>(t[3] + (t[3] >> 4))};
	                     });
}

int ZORTDecompressTessel(const void* compressed, int is2bpp, int width, int height, unsigned char* pixels)
{
	const int blockWidth = is2bpp ? 8 : 4;
	const std::int64_t enlargedWidth = std::max(width, 2 * blockWidth);
	const std::int64_t enlargedHeight = std::max(height, 8);
	const int consumed = static_cast<int>(enlargedWidth * enlargedHeight / (blockWidth / 2));
	if (width <= 0 || height <= 0)
	{
		return consumed;
	}
	const std::int64_t numX = enlargedWidth / blockWidth;
	const std::int64_t numY = enlargedHeight / 4;
	const std::int64_t coveredWidth = std::min<std::int64_t>(width, numX * blockWidth);
	const std::int64_t coveredHeight = std::min<std::int64_t>(height, numY * 4);
	if (coveredWidth != width || coveredHeight != height)
	{
		// Columns and rows after the last whole block.
		std::memset(pixels, 0, std::size_t(4) * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
	}
	const TesselBandPicture picture = {static_cast<const unsigned char*>(compressed),
	                                   static_cast<std::uint32_t>(numX),
	                                   static_cast<std::uint32_t>(numY),
	                                   is2bpp != 0,
	                                   false,
	                                   pixels,
	                                   static_cast<std::size_t>(coveredWidth),
	                                   static_cast<std::size_t>(coveredHeight),
	                                   static_cast<std::size_t>(width)};
	if (decodeTesselBands(picture))
	{
		return consumed;
	}
	const BlockReader reader(compressed, static_cast<std::uint32_t>(numX), static_cast<std::uint32_t>(numY));
	if (is2bpp)
	{
		decodeAreas<2>(reader, numX, numY, coveredWidth, coveredHeight, width, pixels);
	}
	else
	{
		decodeAreas<4>(reader, numX, numY, coveredWidth, coveredHeight, width, pixels);
	}
	return consumed;
}
} // namespace zortexture
