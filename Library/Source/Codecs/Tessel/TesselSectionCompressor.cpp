#include "TesselSectionCompressor.h"

#include <algorithm>
#include <cmath>

#include "Numbers.h"
#include "TesselCodec.h"
#include "TesselCompressor.h"
#include "TesselFloatColour.h"
#include "TesselSections.h"
#include "TesselTables.h"

namespace zortexture
{
namespace
{
constexpr unsigned kPixels = 16;
constexpr unsigned kOneSided = 1; ///< mode 1: B's weight is a half
constexpr unsigned kWhollyB = 3;  ///< either mode

struct Section
{
	TesselPixel pixels[kPixels];
	bool punchThrough;
	/// As countColours has them.
	unsigned colours;
	TesselPixel palette[2];
};

FloatColour meanOf(const TesselPixel* pixels)
{
	FloatColour mean = {};
	for (unsigned i = 0; i < kPixels; ++i)
	{
		const FloatColour pixel = toFloat(pixels[i]);
		for (unsigned c = 0; c < 4; ++c)
		{
			mean.channel[c] += pixel.channel[c];
		}
	}
	for (float& channel : mean.channel)
	{
		channel *= 0.0625F;
	}
	return mean;
}

FloatColour centred(const TesselPixel& pixel, const FloatColour& mean)
{
	FloatColour result = toFloat(pixel);
	for (unsigned c = 0; c < 4; ++c)
	{
		result.channel[c] -= mean.channel[c];
	}
	return result;
}

float dot(const FloatColour& a, const FloatColour& b)
{
	float sum = 0.0F;
	for (unsigned c = 0; c < 4; ++c)
	{
		sum += a.channel[c] * b.channel[c];
	}
	return sum;
}

/// The eigenvector of the greatest eigenvalue of a symmetric matrix, by power iteration.
FloatColour principalAxis(const FloatColour (&matrix)[4])
{
	constexpr int kMostRounds = 100;
	constexpr float kSettled = 1e-5F;
	FloatColour axis = {{1.0F, 1.0F, 1.0F, 1.0F}};
	for (int round = 0; round < kMostRounds; ++round)
	{
		FloatColour next = {{dot(matrix[0], axis), dot(matrix[1], axis), dot(matrix[2], axis), dot(matrix[3], axis)}};
		float length = std::sqrt(dot(next, next));
		if (length == 0.0F)
		{
			// The start was orthogonal to all variation, as when one channel rises while another falls: the row of the greatest
			// variance is not.
			unsigned greatest = 0;
			for (unsigned c = 1; c < 4; ++c)
			{
				greatest = matrix[c].channel[c] > matrix[greatest].channel[greatest] ? c : greatest;
			}
			next = matrix[greatest];
			length = std::sqrt(dot(next, next));
			if (length == 0.0F)
			{
				return axis; // no variation at all
			}
		}
		FloatColour step;
		for (unsigned c = 0; c < 4; ++c)
		{
			next.channel[c] /= length;
			step.channel[c] = next.channel[c] - axis.channel[c];
		}
		axis = next;
		if (std::sqrt(dot(step, step)) < kSettled)
		{
			break;
		}
	}
	return axis;
}

void setIndex(unsigned& word, unsigned pixel, unsigned index)
{
	word = (word & ~(3U << (2 * pixel))) | (index << (2 * pixel));
}

bool isEqual(const TesselPixel& a, const TesselPixel& b)
{
	return packTesselPixel(a) == packTesselPixel(b);
}

void writeTwoColours(const Section& section, const TesselPixel& b, unsigned& word)
{
	for (unsigned i = 0; i < kPixels; ++i)
	{
		const TesselPixel& pixel = section.pixels[i];
		const bool isTransparent = section.punchThrough && pixel.a == 0;
		setIndex(word, i, isTransparent ? kPunchThroughIndex : (isEqual(pixel, b) ? kWhollyB : 0));
	}
}

void writeOneColour(const Section& section, unsigned& word)
{
	word = 0;
	for (unsigned i = 0; section.punchThrough && i < kPixels; ++i)
	{
		setIndex(word, i, section.pixels[i].a == 0 ? kPunchThroughIndex : kOneSided);
	}
}

/// Indices by the position between A and B. Where these coincide it is not a number, which compares as the last of the opaque
/// indices and converts to the first of the others.
void writeAxis(const Section& section, unsigned colourA, unsigned colourB, unsigned& word)
{
	const FloatColour mean = meanOf(section.pixels);
	const FloatColour a = unpackFloat(colourA);
	const FloatColour b = unpackFloat(colourB);
	FloatColour direction;
	for (unsigned c = 0; c < 4; ++c)
	{
		direction.channel[c] = b.channel[c] - a.channel[c];
	}
	const float length = dot(direction, direction);
	for (unsigned i = 0; i < kPixels; ++i)
	{
		const float t = dot(centred(section.pixels[i], a), direction) / length;
		if (!section.punchThrough)
		{
			setIndex(word, i, t < 0.1875F ? 0 : (t < 0.5F ? 1 : (t < 0.8175F ? 2 : 3)));
			continue;
		}
		if (centred(section.pixels[i], mean).channel[3] == 0.0F)
		{
			setIndex(word, i, kOneSided);
			continue;
		}
		// Steps of a half, of which the middle one is the transparent index. Anything else leaves what the block before had.
		const std::int64_t step = truncateToInt64(2.0F * t + 0.5F);
		if (step >= 0 && step <= 2)
		{
			constexpr unsigned kIndexOfStep[3] = {0, kPunchThroughIndex, kWhollyB};
			setIndex(word, i, kIndexOfStep[step]);
		}
	}
}
} // namespace

unsigned countColours(const TesselPixel* pixels, TesselPixel* palette)
{
	constexpr unsigned kLookedAt[] = {0, 1, 5, 9, 13};
	const auto isExtreme = [](unsigned char alpha)
	{
		return alpha == 0 || alpha == 255;
	};
	const auto isSame = [isExtreme](const TesselPixel& a, const TesselPixel& b)
	{
		return a.r == b.r && a.g == b.g && a.b == b.b && (a.a == b.a || (isExtreme(a.a) && isExtreme(b.a)));
	};
	unsigned count = 0;
	for (const unsigned i : kLookedAt)
	{
		const TesselPixel& pixel = pixels[i];
		if (std::any_of(palette, palette + count, [&](const TesselPixel& known) { return isSame(known, pixel); }))
		{
			continue;
		}
		if (count == 2)
		{
			return 3;
		}
		palette[count++] = pixel;
	}
	return count;
}

void selectColoursOnPrincipalAxis(const TesselPixel* pixels, unsigned& colourA, unsigned& colourB)
{
	const FloatColour mean = meanOf(pixels);
	FloatColour covariance[4] = {};
	for (unsigned i = 0; i < kPixels; ++i)
	{
		const FloatColour pixel = centred(pixels[i], mean);
		for (unsigned row = 0; row < 4; ++row)
		{
			for (unsigned column = 0; column < 4; ++column)
			{
				covariance[row].channel[column] += pixel.channel[row] * pixel.channel[column];
			}
		}
	}
	const FloatColour axis = principalAxis(covariance);
	float smallest = dot(centred(pixels[0], mean), axis);
	float largest = smallest;
	for (unsigned i = 1; i < kPixels; ++i)
	{
		const float projection = dot(centred(pixels[i], mean), axis);
		smallest = std::min(smallest, projection);
		largest = std::max(largest, projection);
	}
	const auto pointOnAxis = [&mean, &axis](float position)
	{
		FloatColour point;
		for (unsigned c = 0; c < 4; ++c)
		{
			point.channel[c] = mean.channel[c] + position * axis.channel[c];
		}
		return packClamped(point);
	};
	colourA = pointOnAxis(smallest);
	colourB = pointOnAxis(largest);
	orderTesselColours(colourA, colourB);
}

namespace
{
/// A block at a corner of the image, and what it counts as.
Section loadSection(const TesselPixel* corner, std::size_t pitch)
{
	Section section;
	for (unsigned row = 0; row < 4; ++row)
	{
		std::copy_n(corner + row * pitch, 4, section.pixels + 4 * row);
	}
	section.punchThrough = std::any_of(section.pixels, section.pixels + kPixels, [](const TesselPixel& pixel) { return pixel.a == 0; });
	section.colours = countColours(section.pixels, section.palette);
	return section;
}

/// Writes the block of a section.
/// @param word       the indices of the block before, then those of this one.
/// @param colourA, colourB, opaqueWord  for more than two colours the ends of the axis, and the indices of a block that is not
///                   punch-through; null to find them.
void writeSection(const Section& section, const unsigned* colourA, const unsigned* colourB, const unsigned* opaqueWord, unsigned& word,
                  TesselIIBlockData& block)
{
	unsigned a = packTesselPixel(section.palette[0]);
	unsigned b = a;
	if (section.colours == 1)
	{
		writeOneColour(section, word);
	}
	else if (section.colours == 2)
	{
		b = packTesselPixel(section.palette[1]);
		writeTwoColours(section, section.palette[1], word);
	}
	else if (opaqueWord == nullptr)
	{
		selectColoursOnPrincipalAxis(section.pixels, a, b);
		writeAxis(section, a, b, word);
	}
	else
	{
		a = *colourA;
		b = *colourB;
		if (section.punchThrough)
		{
			writeAxis(section, a, b, word);
		}
		else
		{
			word = *opaqueWord;
		}
	}
	block = {};
	block.setModulationWord(word);
	block.setColours(a, b);
	block.setModulationFlag(section.punchThrough);
	block.setHardTransitionFlag(!section.punchThrough);
}

template<ESimdLevel level>
void compressSections(const TesselPixel* pixels, TesselIIBlockData* block, unsigned width, unsigned height)
{
	const unsigned blocksX = width / 4;
	const unsigned blocksY = height / 4;
	unsigned word = 0;
	for (unsigned y = 0; y < blocksY; ++y)
	{
		const TesselPixel* row = pixels + std::size_t(4) * y * width;
		for (unsigned x = 0; x < blocksX; x += kTesselSections)
		{
			const unsigned count = std::min(kTesselSections, blocksX - x);
			Section sections[kTesselSections];
			unsigned most = 0;
			for (unsigned i = 0; i < count; ++i)
			{
				sections[i] = loadSection(row + std::size_t(4) * (x + i), width);
				most = std::max(most, sections[i].colours);
			}
			unsigned coloursA[kTesselSections];
			unsigned coloursB[kTesselSections];
			unsigned words[kTesselSections];
			bool isFitted = false;
			if constexpr (level != eSimdPlain)
			{
				isFitted = most > 2;
				if (isFitted)
				{
					fitTesselSections<level>(row + std::size_t(4) * x, width, count, coloursA, coloursB, words);
				}
			}
			for (unsigned i = 0; i < count; ++i, ++block)
			{
				writeSection(sections[i], coloursA + i, coloursB + i, isFitted ? words + i : nullptr, word, *block);
			}
		}
	}
}
} // namespace

unsigned int Tessel2SectionCompress(const void* in, void* out, const unsigned int& width, const unsigned int& height)
{
	withSimdLevel([&](auto level)
	              { compressSections<level>(static_cast<const TesselPixel*>(in), static_cast<TesselIIBlockData*>(out), width, height); });
	return 1;
}
} // namespace zortexture
