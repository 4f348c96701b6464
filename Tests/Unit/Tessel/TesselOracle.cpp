#include "TesselOracle.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace
{
using Colour = std::array<int, 4>;

int bits(std::uint32_t word, int high, int low)
{
	return static_cast<int>((word >> low) & ((1ULL << (high - low + 1)) - 1));
}

int fiveFromFour(int c)
{
	return c * 2 + c / 8;
}

class Oracle
{
public:
	Oracle(const std::vector<OracleBlock>& blocks, unsigned width, unsigned height, bool is2bpp, bool second)
	    : m_blocks(blocks), m_is2bpp(is2bpp), m_second(second), m_blockWidth(is2bpp ? 8 : 4),
	      m_numX(static_cast<int>(oracleBlocksX(width, is2bpp, second))), m_numY(static_cast<int>(oracleBlocksY(height, second)))
	{
	}

	bool covers(int x, int y) const
	{
		return x < m_numX * m_blockWidth && y < m_numY * 4;
	}

	Colour pixel(int x, int y) const
	{
		// The block whose centre lies at or before the pixel, and the offset from that centre.
		const int left = x - m_blockWidth / 2;
		const int above = y - 2;
		const int bx = (left + m_blockWidth) / m_blockWidth - 1;
		const int by = (above + 4) / 4 - 1;
		const int u = left - bx * m_blockWidth;
		const int v = above - by * 4;
		if (m_second && bits(block(bx, by).colours, 15, 15) == 1)
		{
			return hardPixel(x, y, bx, by, u, v);
		}
		const Colour a = upscale(bx, by, u, v, false);
		const Colour b = upscale(bx, by, u, v, true);
		Colour result = mix(a, b, weight(x, y));
		if (!m_is2bpp && modeFlag(x, y) == 1 && index(x, y) == 2)
		{
			result = m_second ? Colour{0, 0, 0, 0} : Colour{result[0], result[1], result[2], 0};
		}
		return result;
	}

private:
	OracleBlock block(int bx, int by) const
	{
		const auto x = static_cast<unsigned>((bx + m_numX) % m_numX);
		const auto y = static_cast<unsigned>((by + m_numY) % m_numY);
		const auto numX = static_cast<unsigned>(m_numX);
		const auto numY = static_cast<unsigned>(m_numY);
		const std::size_t place = m_second ? y * std::size_t(numX) + x : oracleTwiddle(numX, numY, x, y);
		return place < std::size_t(numX) * numY && place < m_blocks.size() ? m_blocks[place] : OracleBlock{};
	}

	Colour working(int bx, int by, bool isB) const
	{
		const std::uint32_t w = block(bx, by).colours;
		const bool opaque = bits(w, 31, 31) == 1;
		if (isB)
		{
			if (opaque)
			{
				return {bits(w, 30, 26), bits(w, 25, 21), bits(w, 20, 16), 15};
			}
			return {fiveFromFour(bits(w, 27, 24)), fiveFromFour(bits(w, 23, 20)), fiveFromFour(bits(w, 19, 16)),
			        bits(w, 30, 28) * 2 + (m_second ? 1 : 0)};
		}
		if (m_second ? opaque : bits(w, 15, 15) == 1)
		{
			return {bits(w, 14, 10), bits(w, 9, 5), fiveFromFour(bits(w, 4, 1)), 15};
		}
		return {fiveFromFour(bits(w, 11, 8)), fiveFromFour(bits(w, 7, 4)), bits(w, 3, 1) * 4 + bits(w, 3, 1) / 2, bits(w, 14, 12) * 2};
	}

	Colour upscale(int bx, int by, int u, int v, bool isB) const
	{
		const Colour p = working(bx, by, isB);
		const Colour q = working(bx + 1, by, isB);
		const Colour r = working(bx, by + 1, isB);
		const Colour s = working(bx + 1, by + 1, isB);
		const int w = m_blockWidth;
		Colour result;
		for (unsigned c = 0; c < 4; ++c)
		{
			const int t = (w - u) * (4 - v) * p[c] + u * (4 - v) * q[c] + (w - u) * v * r[c] + u * v * s[c];
			// The scale is 16 or 32; colours have 5 bits, alpha has 4.
			const int down = (m_is2bpp ? 4 : 2) / (c == 3 ? 2 : 1);
			const int repeat = c == 3 ? 16 : 32;
			result[c] = t / down + t / (down * repeat);
		}
		return result;
	}

	static Colour mix(const Colour& a, const Colour& b, int weight)
	{
		Colour result;
		for (unsigned c = 0; c < 4; ++c)
		{
			result[c] = (a[c] * (8 - weight) + b[c] * weight) / 8;
		}
		return result;
	}

	int wrapX(int x) const
	{
		const int size = m_numX * m_blockWidth;
		return (x + size) % size;
	}

	int wrapY(int y) const
	{
		return (y + m_numY * 4) % (m_numY * 4);
	}

	OracleBlock blockOf(int x, int y) const
	{
		return block(wrapX(x) / m_blockWidth, wrapY(y) / 4);
	}

	int modeFlag(int x, int y) const
	{
		return bits(blockOf(x, y).colours, 0, 0);
	}

	/// The stored index of a pixel.
	int index(int x, int y) const
	{
		const std::uint32_t w = blockOf(x, y).modulation;
		const int column = wrapX(x) % m_blockWidth;
		const int row = wrapY(y) % 4;
		if (!m_is2bpp)
		{
			return bits(w, 2 * (4 * row + column) + 1, 2 * (4 * row + column));
		}
		if (modeFlag(x, y) == 0)
		{
			return 3 * bits(w, 8 * row + column, 8 * row + column);
		}
		if (column == 0 && row == 0)
		{
			return 3 * bits(w, 1, 1);
		}
		if (column == 4 && row == 2 && bits(w, 0, 0) == 1)
		{
			return 3 * bits(w, 21, 21);
		}
		// Row by row, four stored pixels in each, from the left.
		const int nth = row * 4 + (column - row % 2) / 2;
		return bits(w, 2 * nth + 1, 2 * nth);
	}

	int weight(int x, int y) const
	{
		static constexpr int kStandard[] = {0, 3, 5, 8};
		static constexpr int kPunch[] = {0, 4, 4, 8};
		if (!m_is2bpp)
		{
			return modeFlag(x, y) == 1 ? kPunch[index(x, y)] : kStandard[index(x, y)];
		}
		if (modeFlag(x, y) == 0 || x % 2 == y % 2)
		{
			return kStandard[index(x, y)];
		}
		const int horizontal = kStandard[index(x - 1, y)] + kStandard[index(x + 1, y)];
		const int vertical = kStandard[index(x, y - 1)] + kStandard[index(x, y + 1)];
		const std::uint32_t w = blockOf(x, y).modulation;
		if (bits(w, 0, 0) == 0)
		{
			return (horizontal + vertical + 2) / 4;
		}
		return ((bits(w, 20, 20) == 1 ? vertical : horizontal) + 1) / 2;
	}

	Colour eightBits(int bx, int by, bool isB) const
	{
		const Colour c = working(bx, by, isB);
		return {c[0] / 4 + c[0] % 32 * 8, c[1] / 4 + c[1] % 32 * 8, c[2] / 4 + c[2] % 32 * 8, c[3] * 17};
	}

	Colour hardPixel(int x, int y, int bx, int by, int u, int v) const
	{
		// What indices 0 to 3 select, by v then u: small letters are colour A and capitals colour B of the four blocks.
		static const std::string kPalette[4][4] = {{"????", "pPqQ", "pPqQ", "pPqQ"},
		                                           {"pPrR", "pPqR", "pPqQ", "sPqQ"},
		                                           {"pPrR", "pPrR", "pSrQ", "sSqQ"},
		                                           {"pPrR", "pSrR", "sSrR", "sSrQ"}};
		const bool onCentre = u == 0 && v == 0;
		if (!m_is2bpp && modeFlag(x, y) == 1 && !onCentre)
		{
			const char letter = kPalette[v][u][static_cast<std::size_t>(index(x, y))];
			const std::size_t which = std::string("pqrsPQRS").find(letter);
			return eightBits(bx + static_cast<int>(which % 2), by + static_cast<int>(which % 4 / 2), which >= 4);
		}
		const int ownX = wrapX(x) / m_blockWidth;
		const int ownY = wrapY(y) / 4;
		static constexpr int kStandard[] = {0, 3, 5, 8};
		const int m = m_is2bpp ? weight(x, y) : kStandard[index(x, y)];
		return mix(eightBits(ownX, ownY, false), eightBits(ownX, ownY, true), m);
	}

	const std::vector<OracleBlock>& m_blocks;
	bool m_is2bpp;
	bool m_second;
	int m_blockWidth;
	int m_numX;
	int m_numY;
};
} // namespace

std::vector<std::uint8_t> toBytes(const std::vector<OracleBlock>& blocks)
{
	std::vector<std::uint8_t> bytes;
	for (const OracleBlock& block : blocks)
	{
		for (const std::uint32_t word : {block.modulation, block.colours})
		{
			for (int shift = 0; shift < 32; shift += 8)
			{
				bytes.push_back(static_cast<std::uint8_t>(word >> shift));
			}
		}
	}
	return bytes;
}

std::vector<OracleBlock> randomBlocks(std::size_t count, std::mt19937& random)
{
	std::vector<OracleBlock> blocks(count);
	for (OracleBlock& block : blocks)
	{
		block.modulation = static_cast<std::uint32_t>(random());
		block.colours = static_cast<std::uint32_t>(random());
	}
	return blocks;
}

std::size_t oracleTwiddle(unsigned numX, unsigned numY, unsigned bx, unsigned by)
{
	std::vector<unsigned> list; // lowest first
	unsigned size = 1;
	for (; size < std::min(numX, numY); size *= 2, bx /= 2, by /= 2)
	{
		list.push_back(by % 2);
		list.push_back(bx % 2);
	}
	for (unsigned rest = numX > numY ? bx : by; rest != 0; rest /= 2)
	{
		list.push_back(rest % 2);
	}
	std::size_t place = 0;
	for (std::size_t i = 0; i < list.size(); ++i)
	{
		place += std::size_t(list[i]) << i;
	}
	return place;
}

unsigned oracleBlocksX(unsigned width, bool is2bpp, bool second)
{
	const unsigned blockWidth = is2bpp ? 8 : 4;
	return second ? (width + blockWidth - 1) / blockWidth : std::max(width / blockWidth, 2U);
}

unsigned oracleBlocksY(unsigned height, bool second)
{
	return second ? (height + 3) / 4 : std::max(height / 4, 2U);
}

std::vector<std::uint8_t> oracleDecode(const std::vector<OracleBlock>& blocks, unsigned width, unsigned height, bool is2bpp, bool second)
{
	const Oracle oracle(blocks, width, height, is2bpp, second);
	std::vector<std::uint8_t> image(std::size_t(4) * width * height);
	std::size_t at = 0;
	for (unsigned y = 0; y < height; ++y)
	{
		for (unsigned x = 0; x < width; ++x, at += 4)
		{
			if (oracle.covers(static_cast<int>(x), static_cast<int>(y)))
			{
				const Colour colour = oracle.pixel(static_cast<int>(x), static_cast<int>(y));
				std::transform(colour.begin(), colour.end(), image.begin() + static_cast<std::ptrdiff_t>(at),
				               [](int c) { return static_cast<std::uint8_t>(c); });
			}
		}
	}
	return image;
}
