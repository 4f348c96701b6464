#include "TesselBands.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "TesselTables.h"
#include "TesselTwiddle.h"
#include "kiln/decompress.h"

namespace zortexture
{
namespace
{
constexpr std::uint32_t kModeFlag = 1;
constexpr std::uint32_t kHardFlag = 1U << 15;
/// Bytes before and after every array, which vectors of neighbours reach into.
constexpr std::size_t kMargin = 32;

/// The weights of the four pixels that a byte of a 4bpp block stands for, by the block's mode flag.
constexpr std::array<std::array<std::uint32_t, 256>, 2> makeWeightsOf4bpp()
{
	std::array<std::array<std::uint32_t, 256>, 2> table = {};
	for (unsigned mode = 0; mode < 2; ++mode)
	{
		for (unsigned byte = 0; byte < 256; ++byte)
		{
			for (unsigned x = 0; x < 4; ++x)
			{
				const unsigned index = (byte >> (2 * x)) & 3;
				const bool isPunch = mode == 1 && index == kPunchThroughIndex;
				table[mode][byte] |= (kTesselWeights[mode][index] + (isPunch ? unsigned(kTesselBandPunch) : 0U)) << (8 * x);
			}
		}
	}
	return table;
}
constexpr auto kWeightsOf4bpp = makeWeightsOf4bpp();

/// The weights of the eight pixels that a byte of a 2bpp block stands for: with one bit a pixel, and with two for every second one.
constexpr std::array<std::array<std::uint64_t, 256>, 2> makeWeightsOf2bpp()
{
	std::array<std::array<std::uint64_t, 256>, 2> table = {};
	for (unsigned byte = 0; byte < 256; ++byte)
	{
		for (unsigned x = 0; x < 8; ++x)
		{
			table[0][byte] |= std::uint64_t(((byte >> x) & 1) * 8) << (8 * x);
		}
		for (unsigned x = 0; x < 4; ++x)
		{
			table[1][byte] |= std::uint64_t(kTesselWeights[0][(byte >> (2 * x)) & 3]) << (16 * x);
		}
	}
	return table;
}
constexpr auto kWeightsOf2bpp = makeWeightsOf2bpp();

std::size_t roundUp(std::size_t value, std::size_t step)
{
	return (value + step - 1) / step * step;
}

/// What the decoder may always have. A picture that is wide and low asks for many times its own size; beyond this it must not.
constexpr std::size_t kModestMemory = std::size_t{64} << 20;

/// Hands out arrays of one allocation: first all are asked for, then it is made, then they are asked for again.
class Arena
{
public:
	template<typename T>
	T* take(std::size_t count)
	{
		const std::size_t at = m_size + kMargin;
		m_size = roundUp(at + count * sizeof(T), alignof(std::uint64_t)) + kMargin;
		return m_memory == nullptr ? nullptr : reinterpret_cast<T*>(m_memory.get() + at);
	}
	/// False when memory fails, or when it would be more than `limit`.
	bool allocate(std::size_t limit)
	{
		if (m_size > limit)
		{
			return false;
		}
		m_memory.reset(new (std::nothrow) unsigned char[m_size]());
		m_size = 0;
		return m_memory != nullptr;
	}

private:
	std::unique_ptr<unsigned char[]> m_memory;
	std::size_t m_size = 0;
};

class Decoder
{
public:
	explicit Decoder(const TesselBandPicture& picture)
	    : m_picture(picture), m_blockWidth(picture.is2bpp ? 8 : 4),
	      // The wrapped blocks at both ends, and one that the last group of areas may begin with.
	      m_columns(roundUp(std::size_t(picture.numX) + 3, kTesselBandStep))
	{
	}

	bool allocate()
	{
		takeArrays();
		const std::size_t pictureBytes = m_picture.width * m_picture.height * 4;
		if (!m_arena.allocate(std::max(kModestMemory, pictureBytes)))
		{
			return false;
		}
		takeArrays();
		if (!m_picture.isSecondGeneration)
		{
			for (std::uint32_t x = 0; x < m_picture.numX; ++x)
			{
				m_places[x] = twiddledBlockIndex(m_picture.numX, m_picture.numY, x, 0);
			}
		}
		return true;
	}

	template<ESimdLevel level>
	void run()
	{
		const std::size_t height = m_picture.height;
		unpackRow<level>(m_rows[0], m_picture.numY - 1);
		// Bands begin in the middle of a row of blocks, the first two rows of pixels above the picture.
		for (std::size_t by = 0; by <= m_picture.numY; ++by)
		{
			const TesselBandRow& upper = m_rows[by % 2];
			const TesselBandRow& lower = m_rows[(by + 1) % 2];
			const unsigned first = by == 0 ? 2 : 0;
			const std::size_t top = 4 * by + first - 2;
			if (top >= height)
			{
				break;
			}
			unpackRow<level>(lower, by == m_picture.numY ? 0 : static_cast<std::uint32_t>(by));
			if (m_picture.is2bpp)
			{
				fillTesselBandWeights<level>(upper, lower, m_columns);
			}
			TesselBand band = {};
			band.upper = &upper;
			band.lower = &lower;
			band.columns = m_columns;
			band.hard = m_picture.isSecondGeneration && markHardAreas(upper) ? m_hard : nullptr;
			std::copy(std::begin(m_lines), std::end(m_lines), band.lines);
			band.first = first;
			band.end = static_cast<unsigned>(std::min<std::size_t>(4, first + height - top));
			band.width = m_picture.width;
			band.pitch = m_picture.pitch;
			unsigned char* pixels = m_picture.pixels + 4 * top * m_picture.pitch;
			writeTesselBand<level>(band, m_picture.is2bpp, m_picture.isSecondGeneration, pixels);
			if (band.hard != nullptr && !m_picture.is2bpp)
			{
				writePaletteAreas(band, pixels);
			}
		}
	}

private:
	void takeArrays()
	{
		const std::size_t pixels = m_columns * m_blockWidth;
		for (TesselBandRow& row : m_rows)
		{
			row.modulation = m_arena.take<std::uint32_t>(m_columns);
			row.colourWords = m_arena.take<std::uint32_t>(m_columns);
			row.a = m_arena.take<std::uint32_t>(m_columns);
			row.b = m_arena.take<std::uint32_t>(m_columns);
			for (std::uint8_t*& weights : row.weights)
			{
				weights = m_arena.take<std::uint8_t>(pixels);
			}
			for (std::uint8_t*& modes : row.modes)
			{
				modes = m_arena.take<std::uint8_t>(m_picture.is2bpp ? pixels : 0);
			}
		}
		for (std::int16_t*& line : m_lines)
		{
			line = m_arena.take<std::int16_t>(4 * m_columns);
		}
		m_hard = m_arena.take<std::uint8_t>(m_columns);
		m_places = m_arena.take<std::uint64_t>(m_picture.isSecondGeneration ? 0 : m_picture.numX);
	}

	/// The words of block (x, y); zero where its place lies past the end, as happens where counts are not powers of two.
	void gather(const TesselBandRow& row, std::size_t column, std::uint64_t place) const
	{
		std::uint32_t words[2] = {};
		if (place < std::uint64_t(m_picture.numX) * m_picture.numY)
		{
			std::memcpy(words, m_picture.blocks + place * sizeof(words), sizeof(words));
		}
		row.modulation[column] = words[0];
		row.colourWords[column] = words[1];
	}

	template<ESimdLevel level>
	void unpackRow(const TesselBandRow& row, std::uint32_t y)
	{
		const std::size_t numX = m_picture.numX;
		if (m_picture.isSecondGeneration)
		{
			const std::uint64_t begin = std::uint64_t(y) * numX;
			for (std::size_t x = 0; x < numX; ++x)
			{
				gather(row, x + 1, begin + x);
			}
		}
		else
		{
			// The bits of x and those of y lie in places of their own.
			const std::uint64_t begin = twiddledBlockIndex(m_picture.numX, m_picture.numY, 0, y);
			for (std::size_t x = 0; x < numX; ++x)
			{
				gather(row, x + 1, begin + m_places[x]);
			}
		}
		for (std::uint32_t* words : {row.modulation, row.colourWords})
		{
			words[0] = words[numX];
			words[numX + 1] = words[1];
		}
		unpackTesselBandColours<level>(row, m_columns, m_picture.isSecondGeneration);
		m_picture.is2bpp ? unpackWeightsOf2bpp(row) : unpackWeightsOf4bpp(row);
	}

	void unpackWeightsOf4bpp(const TesselBandRow& row) const
	{
		for (std::size_t i = 0; i < m_picture.numX + std::size_t(2); ++i)
		{
			const std::uint32_t modulation = row.modulation[i];
			const std::uint32_t colours = row.colourWords[i];
			const std::array<std::uint32_t, 256>& table = kWeightsOf4bpp[colours & kModeFlag];
			for (unsigned y = 0; y < 4; ++y)
			{
				std::memcpy(row.weights[y] + 4 * i, &table[(modulation >> (8 * y)) & 255], 4);
			}
			if (m_picture.isSecondGeneration && (colours & (kModeFlag | kHardFlag)) == (kModeFlag | kHardFlag))
			{
				// The pixel on the centre takes no colour of the palette, and is weighted as mode 0 weighs.
				row.weights[2][4 * i + 2] = kTesselWeights[0][(modulation >> 20) & 3];
			}
		}
	}

	void unpackWeightsOf2bpp(const TesselBandRow& row) const
	{
		for (std::size_t i = 0; i < m_picture.numX + std::size_t(2); ++i)
		{
			std::uint32_t modulation = row.modulation[i];
			const bool isDirect = (row.colourWords[i] & kModeFlag) == 0;
			unsigned mode = kTesselDirect;
			if (!isDirect)
			{
				const bool oneDirection = (modulation & 1) != 0;
				const bool vertical = ((modulation >> 20) & 1) != 0;
				mode = !oneDirection ? kTesselFourNeighbours : (vertical ? kTesselVertical : kTesselHorizontal);
				// The bits that select the interpolation belong to stored pixels, which are left with one bit each.
				modulation = (modulation & ~1U) | ((modulation >> 1) & 1);
				if (oneDirection)
				{
					modulation = (modulation & ~(1U << 20)) | ((modulation >> 1) & (1U << 20));
				}
			}
			const std::array<std::uint64_t, 256>& table = kWeightsOf2bpp[isDirect ? 0 : 1];
			for (unsigned y = 0; y < 4; ++y)
			{
				const std::uint64_t weights = table[(modulation >> (8 * y)) & 255] << (isDirect ? 0 : 8 * (y & 1));
				std::memcpy(row.weights[y] + 8 * i, &weights, 8);
			}
			for (unsigned m = 0; m < 3; ++m)
			{
				std::memset(row.modes[m] + 8 * i, mode == m + 1 ? 255 : 0, 8);
			}
		}
	}

	/// Marks the areas whose block at the top left is hard, and tells whether there are any.
	bool markHardAreas(const TesselBandRow& upper)
	{
		std::uint32_t any = 0;
		for (std::size_t i = 0; i < m_columns; ++i)
		{
			const std::uint32_t hard = upper.colourWords[i] & kHardFlag;
			m_hard[i] = static_cast<std::uint8_t>(hard >> 15);
			any |= hard;
		}
		return any != 0;
	}

	/// Writes the pixels of hard areas that take one of the eight colours of the four blocks.
	void writePaletteAreas(const TesselBand& band, unsigned char* pixels) const
	{
		for (std::size_t column = 0; column <= m_picture.numX; ++column)
		{
			if (band.hard[column] == 0)
			{
				continue;
			}
			const auto hasMode = [column](const TesselBandRow& row, std::size_t side)
			{
				return (row.colourWords[column + side] & kModeFlag) != 0;
			};
			if (hasMode(*band.upper, 0) || hasMode(*band.upper, 1) || hasMode(*band.lower, 0) || hasMode(*band.lower, 1))
			{
				writePaletteArea(band, column, pixels);
			}
		}
	}

	static std::uint32_t eightBits(std::uint32_t colour)
	{
		// Five bits in each channel, of which those of alpha are four, doubled.
		const std::uint32_t alpha = (colour >> 24) / 2 * 17;
		return (((colour & 0x1F1F1F) << 3) | ((colour >> 2) & 0x070707)) | (alpha << 24);
	}

	static void writePaletteArea(const TesselBand& band, std::size_t column, unsigned char* pixels)
	{
		const TesselBandRow& upper = *band.upper;
		const TesselBandRow& lower = *band.lower;
		const std::size_t right = column + 1;
		// A and B of P, S, Q and R.
		const std::uint32_t palette[8] = {eightBits(upper.a[column]), eightBits(upper.b[column]), eightBits(lower.a[right]),
		                                  eightBits(lower.b[right]),  eightBits(upper.a[right]),  eightBits(upper.b[right]),
		                                  eightBits(lower.a[column]), eightBits(lower.b[column])};
		for (unsigned v = band.first; v < band.end; ++v, pixels += 4 * band.pitch)
		{
			const TesselBandRow& row = v < 2 ? upper : lower;
			for (unsigned u = 0; u < 4; ++u)
			{
				const std::size_t block = column + u / 2;
				const std::size_t x = 4 * column + u - 2; // wraps left of the picture, and is then too great
				if ((row.colourWords[block] & kModeFlag) == 0 || (u == 0 && v == 0) || x >= band.width)
				{
					continue;
				}
				const unsigned index = (row.modulation[block] >> (2 * (4 * ((v + 2) % 4) + (u + 2) % 4))) & 3;
				std::memcpy(pixels + 4 * x, &palette[LocalPaletteMap[v][u][index]], 4);
			}
		}
	}

	const TesselBandPicture& m_picture;
	const std::size_t m_blockWidth;
	const std::size_t m_columns;
	Arena m_arena;
	TesselBandRow m_rows[2] = {};
	std::int16_t* m_lines[4] = {};
	std::uint8_t* m_hard = nullptr;
	/// What the column adds to a block's place in twiddled order.
	std::uint64_t* m_places = nullptr;
};
} // namespace

bool decodeTesselBands(const TesselBandPicture& picture)
{
	return withSimdLevel(
	    [&picture](auto level)
	    {
		    if constexpr (level == eSimdPlain)
		    {
			    return false;
		    }
		    else
		    {
			    Decoder decoder(picture);
			    if (!decoder.allocate())
			    {
				    return false;
			    }
			    decoder.template run<level>();
			    return true;
		    }
	    });
}
} // namespace zortexture
