#include "TesselModulation.h"

namespace zortexture
{
namespace
{
/// The two bits at a position, when only the upper one is the pixel's own: it stands for both.
unsigned repeatUpperBit(unsigned word, unsigned position)
{
	return ((word >> (position + 1)) & 1) * 3;
}

void unpack4bpp(const TesselBlockWords& block, unsigned offsetX, unsigned offsetY, TesselGroup& values, TesselGroup& modes)
{
	unsigned word = block.getModulationWord();
	const std::uint8_t mode = block.getModulationFlag() ? 1 : 0;
	for (unsigned y = offsetY; y < offsetY + 4; ++y)
	{
		for (unsigned x = offsetX; x < offsetX + 4; ++x, word >>= 2)
		{
			values[y][x] = word & 3;
			modes[y][x] = mode;
		}
	}
}

void unpack2bpp(const TesselBlockWords& block, unsigned offsetX, unsigned offsetY, TesselGroup& values, TesselGroup& modes)
{
	const unsigned word = block.getModulationWord();
	std::uint8_t mode = kTesselDirect;
	if (block.getModulationFlag())
	{
		const bool oneDirection = (word & 1) != 0;
		const bool vertical = ((word >> 20) & 1) != 0;
		mode = !oneDirection ? kTesselFourNeighbours : (vertical ? kTesselVertical : kTesselHorizontal);
	}
	for (unsigned y = 0; y < 4; ++y)
	{
		for (unsigned x = 0; x < 8; ++x)
		{
			unsigned value = 0;
			if (mode == kTesselDirect)
			{
				value = ((word >> (8 * y + x)) & 1) * 3;
			}
			else if (((x ^ y) & 1) == 0)
			{
				value = (word >> (8 * y + 2 * (x / 2))) & 3;
			}
			values[offsetY + y][offsetX + x] = static_cast<std::uint8_t>(value);
			modes[offsetY + y][offsetX + x] = mode;
		}
	}
	// The bits that select the interpolation belong to stored pixels, which are left with one bit each.
	if (mode != kTesselDirect)
	{
		values[offsetY][offsetX] = static_cast<std::uint8_t>(repeatUpperBit(word, 0));
	}
	if (mode == kTesselHorizontal || mode == kTesselVertical)
	{
		values[offsetY + 2][offsetX + 4] = static_cast<std::uint8_t>(repeatUpperBit(word, 20));
	}
}
} // namespace

void unpackModulations(const TesselBlockWords& block, unsigned offsetX, unsigned offsetY, TesselGroup& values, TesselGroup& modes,
                       unsigned bpp)
{
	if (bpp == 2)
	{
		unpack2bpp(block, offsetX, offsetY, values, modes);
		return;
	}
	unpack4bpp(block, offsetX, offsetY, values, modes);
}
} // namespace zortexture
