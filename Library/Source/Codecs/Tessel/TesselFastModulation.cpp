#include "TesselFastModulation.h"

#include "TesselTables.h"

namespace zortexture
{
namespace
{
/// Fit weights of the 2-bit indices of a 4bpp block. Mode 1 is fitted with the same four.
constexpr float kFitWeights4bpp[4] = {0.0F, 0.375F, 0.625F, 1.0F};
/// Fit weights by weight in eighths; 9 and 10 come from the edge rules of the simulation.
constexpr float pModVals[11] = {0.0F, 0.125F, 0.25F, 0.375F, 0.5F, 0.625F, 0.75F, 0.875F, 1.0F, 1.125F, 1.25F};

/// The colour of a weight. Weights above 8 can leave the range of a byte, and wrap.
TesselPixel mixPixel(const TesselPixel& a, const TesselPixel& b, unsigned weight)
{
	const auto channel = [weight](int from, int to)
	{
		return static_cast<unsigned char>((from * 8 + (to - from) * static_cast<int>(weight)) / 8);
	};
	return {channel(a.r, b.r), channel(a.g, b.g), channel(a.b, b.b), channel(a.a, b.a)};
}

/// The index of the smallest of four distances, the lower of equals.
unsigned char indexOfNearest(const unsigned (&distances)[4])
{
	unsigned char best = 0;
	for (unsigned char i = 1; i < 4; ++i)
	{
		if (distances[i] < distances[best])
		{
			best = i;
		}
	}
	return best;
}

unsigned char nearestStandardIndex(const TesselPixel& pixel, const TesselPixel& a, const TesselPixel& b)
{
	unsigned distances[4];
	for (unsigned i = 0; i < 4; ++i)
	{
		distances[i] = squareColourDistance(pixel, mixPixel(a, b, ModVals_Standard[i]));
	}
	return indexOfNearest(distances);
}

template<typename Record>
unsigned errorOfMode(const Record& record, const TesselBlockPixels& block, unsigned mode)
{
	TesselPixel simulated[TesselFit<Record>::kPixels];
	decompressTesselBlock(record, block, simulated, mode);
	return calculateImageBlockErrorMeanSquared(block.image, simulated, TesselFit<Record>::kPixels) * record.modeWeights[mode];
}
} // namespace

void calculate1BPPModulation(Tessel2bppRecord& record, const TesselBlockPixels& block)
{
	for (unsigned i = 0; i < 32; ++i)
	{
		const bool nearerToA = squareColourDistance(block.image[i], block.a[i]) < squareColourDistance(block.image[i], block.b[i]);
		record.direct[i] = nearerToA ? 0 : 3;
	}
}

void calculate2BPPInterpolatedModulation(Tessel2bppRecord& record, const TesselBlockPixels& block)
{
	for (unsigned y = 0; y < 4; ++y)
	{
		for (unsigned x = y & 1; x < 8; x += 2)
		{
			const unsigned i = 8 * y + x;
			record.interpolated[i] = nearestStandardIndex(block.image[i], block.a[i], block.b[i]);
		}
	}
}

void getModulationValues(const Tessel2bppRecord& record, unsigned mode, unsigned char* out)
{
	const auto stored = [&record](unsigned x, unsigned y) -> unsigned
	{
		return ModVals[record.interpolated[8 * y + x]];
	};
	for (unsigned y = 0; y < 4; ++y)
	{
		for (unsigned x = 0; x < 8; ++x)
		{
			unsigned char& weight = out[8 * y + x];
			if (mode == eTesselMode_Direct)
			{
				weight = ModVals[record.direct[8 * y + x]];
				continue;
			}
			if (((x ^ y) & 1) == 0)
			{
				weight = static_cast<unsigned char>(stored(x, y));
				continue;
			}
			const bool hasLeft = x > 0;
			const bool hasRight = x < 7;
			const bool hasAbove = y > 0;
			const bool hasBelow = y < 3;
			const unsigned horizontal = (hasLeft ? stored(x - 1, y) : 0) + (hasRight ? stored(x + 1, y) : 0);
			const unsigned vertical = (hasAbove ? stored(x, y - 1) : 0) + (hasBelow ? stored(x, y + 1) : 0);
			unsigned value = 0;
			if (mode == eTesselMode_LeftRight)
			{
				value = hasLeft && hasRight ? (horizontal + 1) >> 1 : horizontal + 1;
			}
			else if (mode == eTesselMode_UpDown)
			{
				// Without halving at the edges, which is how this compressor has always judged the mode.
				value = hasAbove && hasBelow ? (vertical + 2) >> 1 : vertical + 2;
			}
			else
			{
				const unsigned sum = horizontal + vertical;
				const int neighbours = int(hasLeft) + int(hasRight) + int(hasAbove) + int(hasBelow);
				value = neighbours == 4 ? (sum + 2) >> 2 : (neighbours == 3 ? (sum + 1) / 3 : (sum + 1) >> 1);
			}
			weight = static_cast<unsigned char>(value);
		}
	}
}

void calculateModulations_Standard(Tessel4bppRecord& record, const TesselBlockPixels& block)
{
	for (unsigned i = 0; i < 16; ++i)
	{
		record.standard[i] = nearestStandardIndex(block.image[i], block.a[i], block.b[i]);
	}
}

void calculateModulations_Punchthrough(Tessel4bppRecord& record, const TesselBlockPixels& block)
{
	for (unsigned i = 0; i < 16; ++i)
	{
		const TesselPixel& pixel = block.image[i];
		const TesselPixel middle = mixPixel(block.a[i], block.b[i], ModVals_Punchthrough[1]);
		const TesselPixel transparent = {middle.r, middle.g, middle.b, 0};
		const unsigned distances[4] = {squareColourDistance(pixel, block.a[i]), squareColourDistance(pixel, middle),
		                               squareColourDistance(pixel, transparent), squareColourDistance(pixel, block.b[i])};
		record.punchThrough[i] = indexOfNearest(distances);
	}
}

void decompressTesselBlock(const Tessel2bppRecord& record, const TesselBlockPixels& block, TesselPixel* out, unsigned mode)
{
	unsigned char weights[32];
	getModulationValues(record, mode, weights);
	for (unsigned i = 0; i < 32; ++i)
	{
		out[i] = mixPixel(block.a[i], block.b[i], weights[i]);
	}
}

void decompressTesselBlock(const Tessel4bppRecord& record, const TesselBlockPixels& block, TesselPixel* out, unsigned mode)
{
	for (unsigned i = 0; i < 16; ++i)
	{
		const unsigned weight = mode == 0 ? ModVals_Standard[record.standard[i]] : ModVals_Punchthrough[record.punchThrough[i]];
		out[i] = mixPixel(block.a[i], block.b[i], weight);
	}
}

void chooseModulation(Tessel2bppRecord& record, const TesselBlockPixels& block)
{
	calculate1BPPModulation(record, block);
	calculate2BPPInterpolatedModulation(record, block);
	record.mode = eTesselMode_Direct;
	unsigned best = errorOfMode(record, block, eTesselMode_Direct);
	for (unsigned char mode = eTesselMode_FourNeighbours; mode <= eTesselMode_LeftRight; ++mode)
	{
		const unsigned error = errorOfMode(record, block, mode);
		if (error < best)
		{
			best = error;
			record.mode = mode;
		}
	}
}

void chooseModulation(Tessel4bppRecord& record, const TesselBlockPixels& block)
{
	calculateModulations_Standard(record, block);
	calculateModulations_Punchthrough(record, block);
	record.mode = errorOfMode(record, block, 0) > errorOfMode(record, block, 1) ? 1 : 0;
}

void fitWeights(const Tessel2bppRecord& record, float* out)
{
	unsigned char weights[32];
	getModulationValues(record, record.mode, weights);
	for (unsigned i = 0; i < 32; ++i)
	{
		out[i] = pModVals[weights[i]];
	}
}

void fitWeights(const Tessel4bppRecord& record, float* out)
{
	const unsigned char* indices = record.mode == 0 ? record.standard : record.punchThrough;
	for (unsigned i = 0; i < 16; ++i)
	{
		out[i] = kFitWeights4bpp[indices[i]];
	}
}

unsigned selectTesselInterpolation(unsigned word, unsigned mode)
{
	constexpr unsigned kOneDirection = 1U;
	constexpr unsigned kDirection = 1U << 20;
	if (mode == eTesselMode_FourNeighbours)
	{
		word &= ~kOneDirection;
	}
	else if (mode == eTesselMode_UpDown)
	{
		// The decoders take the horizontal mean for this pattern and the vertical one for the next, contrary to the simulation.
		// That is settled: existing data rests on the choice that follows from it.
		word = (word | kOneDirection) & ~kDirection;
	}
	else if (mode == eTesselMode_LeftRight)
	{
		word |= kOneDirection | kDirection;
	}
	return word;
}

void packModulation(const Tessel2bppRecord& record, TesselBlockWords& block)
{
	unsigned word = 0;
	for (unsigned i = 0; i < 32; ++i)
	{
		const unsigned x = i % 8;
		const unsigned y = i / 8;
		if (record.mode == eTesselMode_Direct)
		{
			const bool lit = record.direct[i] == 3;
			word |= unsigned(lit) << i;
		}
		else if (((x ^ y) & 1) == 0)
		{
			word |= unsigned(record.interpolated[i]) << (8 * y + 2 * (x / 2));
		}
	}
	block.setModulationWord(selectTesselInterpolation(word, record.mode));
	block.setModulationFlag(record.mode != eTesselMode_Direct);
}

void packModulation(const Tessel4bppRecord& record, TesselBlockWords& block)
{
	const unsigned char* indices = record.mode == 0 ? record.standard : record.punchThrough;
	for (unsigned i = 0; i < 16; ++i)
	{
		block.storeModulationValue4BPP(i % 4, i / 4, indices[i]);
	}
	block.setModulationFlag(record.mode != 0);
}
} // namespace zortexture
