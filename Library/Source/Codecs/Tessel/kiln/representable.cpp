#include "representable.h"

namespace
{
/// Alphas at and above which a pair is opaque: that of A, and that of B in the second generation, whose levels lie higher.
constexpr float kOpaqueAlpha = 246;
constexpr float kOpaqueAlphaOfB = 238;
constexpr int kFullAlpha = 255;
/// The largest even alpha level.
constexpr int kMostTranslucent = 238;
constexpr int kLeastOddAlpha = 17;

/// Bits of R, G, B.
using Widths = std::array<int, 3>;
constexpr Widths kOpaqueA = {5, 5, 4};
constexpr Widths kOpaqueB = {5, 5, 5};
constexpr Widths kTranslucentA = {4, 4, 3};
constexpr Widths kTranslucentB = {4, 4, 4};

/// To 8 bits through 5, repeating the top bits.
constexpr int expandLevel(int level, int width)
{
	int five = level;
	if (width == 3)
	{
		five = (level << 2) | (level >> 1);
	}
	else if (width == 4)
	{
		five = (level << 1) | (level >> 3);
	}
	return (five << 3) | (five >> 2);
}

/// Which alpha levels, in sixteenths, a colour can have.
enum class Levels
{
	even,
	odd
};

constexpr float distance(float value, int level)
{
	const float difference = value - static_cast<float>(level);
	return difference < 0 ? -difference : difference;
}

/// The nearest of the level below, the level above and 255. Equally near ones give the higher.
constexpr int nearestAlpha(float alpha, Levels levels)
{
	int fifteenths = static_cast<int>(alpha / 255.0F * 15.0F);
	fifteenths = levels == Levels::even ? fifteenths & ~1 : fifteenths | 1;
	const int lower = fifteenths * 17;
	const int upper = lower + 34;
	const float toLower = distance(alpha, lower);
	const float toUpper = distance(alpha, upper);
	const float toFull = distance(alpha, kFullAlpha);
	if (toLower < toUpper && toLower < toFull)
	{
		return lower;
	}
	return toUpper < toFull ? upper : kFullAlpha;
}

/// The nearest level of a channel to a value between 0 and 255. Equally near ones give the higher.
constexpr int nearestLevel(float value, int width)
{
	const int top = (1 << width) - 1;
	int level = static_cast<int>(value / 255.0F * static_cast<float>(top));
	level = level >= top ? top - 1 : level;
	const int lower = expandLevel(level, width);
	const int upper = expandLevel(level + 1, width);
	return distance(value, upper) <= distance(value, lower) ? upper : lower;
}

/// Levels lie on whole numbers, so that nearest ones change at halves: from a half on up to the next all values have one nearest level.
constexpr int kHalves = 510;
using LevelTable = std::array<std::uint8_t, kHalves>;

template<typename Rule>
constexpr LevelTable makeTable(const Rule& nearest)
{
	LevelTable table = {};
	for (int half = 0; half < kHalves; ++half)
	{
		table[static_cast<unsigned>(half)] = static_cast<std::uint8_t>(nearest((static_cast<float>(half) + 0.5F) / 2));
	}
	return table;
}

constexpr LevelTable makeChannelTable(int width)
{
	return makeTable([width](float value) { return nearestLevel(value, width); });
}
constexpr LevelTable makeAlphaTable(Levels levels)
{
	return makeTable([levels](float alpha) { return nearestAlpha(alpha, levels); });
}

/// By the width less 3.
constexpr std::array<LevelTable, 3> kChannelTables = {makeChannelTable(3), makeChannelTable(4), makeChannelTable(5)};
constexpr LevelTable kEvenAlphaTable = makeAlphaTable(Levels::even);
constexpr LevelTable kOddAlphaTable = makeAlphaTable(Levels::odd);

// The comparisons below are written so that a value that is not a number counts as 0.

int evenAlpha(float alpha)
{
	if (!(alpha > 0))
	{
		return 0;
	}
	return alpha >= 255 ? kMostTranslucent : kEvenAlphaTable[static_cast<unsigned>(alpha * 2)];
}

int oddAlpha(float alpha)
{
	if (!(alpha > 0))
	{
		return kLeastOddAlpha;
	}
	return alpha >= 255 ? kFullAlpha : kOddAlphaTable[static_cast<unsigned>(alpha * 2)];
}

std::uint8_t nearestChannel(float value, int width, bool tieTakesUpper)
{
	if (!(value > 0))
	{
		return 0;
	}
	if (value >= 255)
	{
		return 255;
	}
	const float halves = value * 2;
	int half = static_cast<int>(halves);
	// At a tie the level below is that of the values below.
	half -= !tieTakesUpper && static_cast<float>(half) == halves ? 1 : 0;
	return kChannelTables[static_cast<unsigned>(width - 3)][static_cast<unsigned>(half)];
}
} // namespace

KilnPair MapToRepresentableColours(bool tessel2, const KilnColourF& a, const KilnColourF& b)
{
	int alphaA = kFullAlpha;
	int alphaB = kFullAlpha;
	if (!(a[3] >= kOpaqueAlpha && b[3] >= (tessel2 ? kOpaqueAlphaOfB : kOpaqueAlpha)))
	{
		alphaA = evenAlpha(a[3]);
		alphaB = tessel2 ? oddAlpha(b[3]) : evenAlpha(b[3]);
	}
	bool opaqueA = alphaA == kFullAlpha;
	bool opaqueB = alphaB == kFullAlpha;
	if (tessel2 && !(opaqueA && opaqueB))
	{
		// One flag serves both colours.
		opaqueA = opaqueB = false;
		alphaA &= kMostTranslucent;
	}

	const Widths& widthsA = opaqueA ? kOpaqueA : kTranslucentA;
	const Widths& widthsB = opaqueB ? kOpaqueB : kTranslucentB;
	KilnPair pair;
	for (int c = 0; c < 3; ++c)
	{
		const bool ascending = b[c] >= a[c];
		pair.a[c] = nearestChannel(a[c], widthsA[c], !ascending);
		pair.b[c] = nearestChannel(b[c], widthsB[c], ascending);
	}
	pair.a[3] = static_cast<std::uint8_t>(alphaA);
	pair.b[3] = static_cast<std::uint8_t>(alphaB);
	return pair;
}

KilnPair MapToRepresentableColoursInt(bool tessel2, const KilnColour& a, const KilnColour& b)
{
	return MapToRepresentableColours(tessel2, ConvertIntPixelToFloat(a), ConvertIntPixelToFloat(b));
}

KilnColour SnapToRepresentable(const KilnColour& colour)
{
	constexpr int kOpaqueAbove = 249;
	const KilnColourF value = ConvertIntPixelToFloat(colour);
	const int alpha = colour[3] > kOpaqueAbove ? kFullAlpha : evenAlpha(value[3]);
	const int width = alpha == kFullAlpha ? 5 : 4;
	return {nearestChannel(value[0], width, false), nearestChannel(value[1], width, false), nearestChannel(value[2], width, false),
	        static_cast<std::uint8_t>(alpha)};
}
