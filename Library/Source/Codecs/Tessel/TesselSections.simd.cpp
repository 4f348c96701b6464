#include "TesselSections.h"

#include "Simd/Lanes.h"

// A block in every lane. Each takes the operations of the plain form in their order, so that its floats are the same; blocks whose axis has
// settled wait for the others.

namespace zortexture
{
namespace
{
constexpr unsigned kPixels = 16;
constexpr unsigned kRow = 4 * kTesselSections;

struct Colour
{
	F32 channel[4];
};

ZORT_INLINE F32 dot(const Colour& a, const Colour& b)
{
	F32 sum = F32::filled(0.0F);
	for (unsigned c = 0; c < 4; ++c)
	{
		sum += a.channel[c] * b.channel[c];
	}
	return sum;
}

ZORT_INLINE Colour difference(const Colour& a, const Colour& b)
{
	Colour result;
	for (unsigned c = 0; c < 4; ++c)
	{
		result.channel[c] = a.channel[c] - b.channel[c];
	}
	return result;
}

ZORT_INLINE Colour chosen(I32 mask, const Colour& a, const Colour& b)
{
	Colour result;
	for (unsigned c = 0; c < 4; ++c)
	{
		result.channel[c] = select(mask, a.channel[c], b.channel[c]);
	}
	return result;
}

ZORT_INLINE Colour unpacked(U32 pixels)
{
	Colour result;
	for (unsigned c = 0; c < 4; ++c)
	{
		result.channel[c] = convert<float>(as<std::int32_t>((pixels >> static_cast<int>(8 * c)) & U32::filled(255)));
	}
	return result;
}

/// The row of the greatest variance.
ZORT_INLINE Colour greatestRow(const Colour (&matrix)[4])
{
	Colour row = matrix[0];
	F32 variance = matrix[0].channel[0];
	for (unsigned c = 1; c < 4; ++c)
	{
		const I32 isGreater = matrix[c].channel[c] > variance;
		row = chosen(isGreater, matrix[c], row);
		variance = select(isGreater, matrix[c].channel[c], variance);
	}
	return row;
}

ZORT_INLINE Colour principalAxis(const Colour (&matrix)[4])
{
	constexpr int kMostRounds = 100;
	const F32 one = F32::filled(1.0F);
	const F32 zero = F32::filled(0.0F);
	const F32 settled = F32::filled(1e-5F);
	Colour axis = {{one, one, one, one}};
	I32 isActive = I32::filled(-1);
	for (int round = 0; round < kMostRounds; ++round)
	{
		Colour next = {{dot(matrix[0], axis), dot(matrix[1], axis), dot(matrix[2], axis), dot(matrix[3], axis)}};
		F32 length = squareRoot(dot(next, next));
		if (isAny((length == zero) & isActive))
		{
			// Orthogonal to all variation: on from the row of the greatest, or not at all where there is no variation.
			next = chosen(length == zero, greatestRow(matrix), next);
			length = squareRoot(dot(next, next));
			isActive &= length != zero;
		}
		for (F32& channel : next.channel)
		{
			channel = channel / length;
		}
		const Colour step = difference(next, axis);
		axis = chosen(isActive, next, axis);
		isActive &= ~(squareRoot(dot(step, step)) < settled);
		if (!isAny(isActive))
		{
			break;
		}
	}
	return axis;
}

ZORT_INLINE F32 clampedToByte(F32 value)
{
	return least(greatest(value, F32::filled(0.0F)), F32::filled(255.0F));
}

/// The colour at a position on the axis, clamped and truncated.
ZORT_INLINE U32 pointOnAxis(const Colour& mean, const Colour& axis, F32 position)
{
	U32 packed = U32::filled(0);
	for (unsigned c = 0; c < 4; ++c)
	{
		const I32 channel = truncated(clampedToByte(mean.channel[c] + position * axis.channel[c]));
		packed |= as<std::uint32_t>(channel) << static_cast<int>(8 * c);
	}
	return packed;
}

ZORT_INLINE U32 luminance(U32 colour)
{
	const U32 byte = U32::filled(255);
	const U32 sum =
	    U32::filled(30) * (colour & byte) + U32::filled(59) * ((colour >> 8) & byte) + U32::filled(11) * ((colour >> 16) & byte);
	return (sum * U32::filled(5243)) >> 19; // a hundredth, of sums up to 43698
}

/// As many blocks as there are lanes, from rows of kTesselSections blocks.
ZORT_INLINE void fitBlocks(const std::uint32_t* pixels, unsigned* colourA, unsigned* colourB, unsigned* words)
{
	Colour colours[kPixels];
	Colour mean = {{F32::filled(0.0F), F32::filled(0.0F), F32::filled(0.0F), F32::filled(0.0F)}};
	for (unsigned i = 0; i < kPixels; ++i)
	{
		colours[i] = unpacked(lookUp(pixels + i / 4 * kRow + i % 4, I32::counted() << 2));
		for (unsigned c = 0; c < 4; ++c)
		{
			mean.channel[c] += colours[i].channel[c];
		}
	}
	for (F32& channel : mean.channel)
	{
		channel *= F32::filled(0.0625F);
	}
	Colour centred[kPixels];
	for (unsigned i = 0; i < kPixels; ++i)
	{
		centred[i] = difference(colours[i], mean);
	}
	Colour covariance[4];
	for (unsigned row = 0; row < 4; ++row)
	{
		for (unsigned column = row; column < 4; ++column)
		{
			F32 sum = F32::filled(0.0F);
			for (const Colour& pixel : centred)
			{
				sum += pixel.channel[row] * pixel.channel[column];
			}
			covariance[row].channel[column] = sum;
			covariance[column].channel[row] = sum;
		}
	}
	const Colour axis = principalAxis(covariance);
	F32 smallest = dot(centred[0], axis);
	F32 largest = smallest;
	for (unsigned i = 1; i < kPixels; ++i)
	{
		const F32 projection = dot(centred[i], axis);
		smallest = least(projection, smallest);
		largest = greatest(projection, largest);
	}
	// The darker is A, of equally dark ones the smaller number.
	const U32 low = pointOnAxis(mean, axis, smallest);
	const U32 high = pointOnAxis(mean, axis, largest);
	const U32 lowLuminance = luminance(low);
	const U32 highLuminance = luminance(high);
	const I32 swapped = (lowLuminance > highLuminance) | ((lowLuminance == highLuminance) & (low > high));
	const U32 packedA = select(swapped, high, low);
	const U32 packedB = select(swapped, low, high);
	packedA.store(colourA);
	packedB.store(colourB);

	const Colour a = unpacked(packedA);
	const Colour direction = difference(unpacked(packedB), a);
	const F32 length = dot(direction, direction);
	U32 word = U32::filled(0);
	for (unsigned i = 0; i < kPixels; ++i)
	{
		// No number where A and B are the same, which is below nothing.
		const F32 t = dot(difference(colours[i], a), direction) / length;
		const I32 index = I32::filled(3) + (t < F32::filled(0.1875F)) + (t < F32::filled(0.5F)) + (t < F32::filled(0.8175F));
		word |= as<std::uint32_t>(index) << static_cast<int>(2 * i);
	}
	word.store(words);
}
} // namespace

template<ESimdLevel level>
void fitTesselSections(const void* pixels, std::size_t pitch, unsigned count, unsigned* colourA, unsigned* colourB, unsigned* words)
{
	static_assert(kTesselSections % I32::kCount == 0);
	std::uint32_t rows[4 * kRow] = {};
	for (unsigned y = 0; y < 4; ++y)
	{
		std::memcpy(rows + y * kRow, static_cast<const unsigned char*>(pixels) + 4 * y * pitch, std::size_t(16) * count);
	}
	for (unsigned first = 0; first < count; first += I32::kCount)
	{
		fitBlocks(rows + 4 * first, colourA + first, colourB + first, words + first);
	}
}

template void fitTesselSections<kLanesLevel>(const void*, std::size_t, unsigned, unsigned*, unsigned*, unsigned*);
} // namespace zortexture
