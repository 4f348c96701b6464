/// @file EtcDiffFlipFast.simd.cpp
/// Individual and differential blocks from the means of the halves, the two ways of quantising them side by side.
///
/// - The four halves (left, right, top, bottom) share one load of the texels; their means are quantised in the four lanes of one register.
/// - For each half, lanes are four tables for either of both quantisations. The tables of small modifiers come first; the others are left
///   out where the texels lie so near the base colours that their modifiers must overshoot (three halves of five in a photograph).
/// - Only the halves of the block that wins get their indices.
/// - The perceptual search adds up squares in single precision. Sums of 32-bit integers with nearly the same weights order all candidates
///   but the closest ones just so; where they do not, the sums in single precision are made, in their order.
#include "Codecs/ETC/EtcHalfColours.h"

namespace zortexture
{
namespace
{
enum Half
{
	Left,
	Right,
	Top,
	Bottom
};

/// The texels of each half in the order of their index bits.
constexpr unsigned char kHalfTexels[4][8] = {
    {0, 1, 2, 3, 4, 5, 6, 7}, {8, 9, 10, 11, 12, 13, 14, 15}, {0, 1, 4, 5, 8, 9, 12, 13}, {2, 3, 6, 7, 10, 11, 14, 15}};

/// The least modifier of the upper four tables.
constexpr int kLeastUpperModifier = 18;

/// The modifiers of four tables in lanes, twice: for both quantisations.
struct ModifierLanes
{
	alignas(32) std::int32_t redGreen[2][4][8]; ///< By half of the tables, by column.
	alignas(32) std::int32_t blue[2][4][8];
};
constexpr ModifierLanes kModifierLanes = []
{
	ModifierLanes lanes{};
	for (unsigned int table = 0; table < 8; ++table)
	{
		for (unsigned int column = 0; column < 4; ++column)
		{
			const int modifier = kModifiers[table][column];
			for (unsigned int lane = table % 4; lane < 8; lane += 4)
			{
				lanes.redGreen[table / 4][column][lane] = pairOf(modifier, modifier);
				lanes.blue[table / 4][column][lane] = pairOf(modifier, 0);
			}
		}
	}
	return lanes;
}();

/// What no table of the upper four can be below in each half: their modifiers, 18 and more, take every channel of every texel at least as
/// far from the base colour as the least of them, unless the end of the range comes first.
template<EtcMeasure measure>
ZORT_INLINE Quad boundOfUpperTables(const HalfColours& colours, const HalfColours& least8, const HalfColours& greatest8)
{
	constexpr int kWeights[3] = {Weights<measure>::kRed, Weights<measure>::kGreen, Weights<measure>::kBlue};
	Quad bound = Quad::filled(0);
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const Quad base = colours.channel[channel];
		const Quad deviation = greatest(greatest8.channel[channel] - base, base - least8.channel[channel]);
		const Quad overshoot = greatest(Quad::filled(kLeastUpperModifier) - deviation, Quad::filled(0));
		const Quad hasRoom = (base >= Quad::filled(kLeastUpperModifier)) & (base <= Quad::filled(255 - kLeastUpperModifier));
		bound += smallProduct(smallProduct(overshoot, overshoot), Quad::filled(kWeights[channel])) & hasRoom;
	}
	return bound << 3;
}

/// What is known of a block while its candidates are compared. Sums are those of the weighted squares.
struct Search
{
	ZORT_INLINE explicit Search(const EtcTexelPairs& pairs) : texels(pairs)
	{
	}

	const EtcTexelPairs& texels;
	alignas(16) std::int32_t squares[4];      ///< |t|^2 over the texels of each half.
	alignas(16) std::int32_t levels[2][3][4]; ///< By quantisation, channel and half.
	alignas(16) std::int32_t colours[2][3][4];
	alignas(16) std::int32_t isDifferential[2][4];
	alignas(32) std::int32_t sums[4][2][2][4]; ///< By half, half of the tables, quantisation, table.
	std::int32_t leastSums[2][4];              ///< By quantisation and half.
};

/// In 8 bits, as pairs.
struct BasePair
{
	int redGreen;
	int blue;
};

ZORT_INLINE BasePair basePair(const Search& search, unsigned int quantisation, unsigned int half)
{
	const auto& colours = search.colours[quantisation];
	return {pairOf(colours[0][half], colours[1][half]), colours[2][half]};
}

/// `first` in four lanes of eight, `second` in the others.
template<typename Register>
ZORT_INLINE Register besideEachOther(int first, int second, unsigned int part)
{
	if constexpr (Register::kCount == 8)
	{
		using Narrow = Lanes<typename Register::Element, Register::kCount / 2>;
		return join(Narrow::filled(first), Narrow::filled(second));
	}
	else
	{
		return Register::filled(part == 0 ? first : second);
	}
}

/// The sums of a half for four tables and both quantisations.
template<EtcMeasure measure>
ZORT_INLINE void sumTables(Search& search, unsigned int half, unsigned int upper)
{
	const BasePair base0 = basePair(search, 0, half);
	const BasePair base1 = basePair(search, 1, half);
	for (unsigned int part = 0; part < kParts; ++part)
	{
		const I16 baseRedGreen = as<std::int16_t>(besideEachOther<I32>(base0.redGreen, base1.redGreen, part));
		const I16 baseBlue = as<std::int16_t>(besideEachOther<I32>(base0.blue, base1.blue, part));
		ColourLanes<measure> colours[4];
		for (unsigned int column = 0; column < 4; ++column)
		{
			const unsigned int lane = part * I32::kCount;
			colours[column] = ColourLanes<measure>::of(limited(baseRedGreen + I16::load(kModifierLanes.redGreen[upper][column] + lane)),
			                                           limited(baseBlue + I16::load(kModifierLanes.blue[upper][column] + lane)));
		}
		I32 sums = I32::filled(0);
		for (unsigned int i = 0; i < 8; ++i)
		{
			const unsigned int texel = kHalfTexels[half][i];
			const I16 redGreen = as<std::int16_t>(I32::filled(search.texels.redGreenFactor[texel]));
			const I16 blue = as<std::int16_t>(I32::filled(search.texels.blueFactor[texel]));
			sums += least(least(colours[0].distance(redGreen, blue), colours[1].distance(redGreen, blue)),
			              least(colours[2].distance(redGreen, blue), colours[3].distance(redGreen, blue)));
		}
		(sums + I32::filled(search.squares[half])).store(&search.sums[half][upper][0][0] + part * I32::kCount);
	}
}

/// All tables of a half, and the least sum of either quantisation. `bounds` are those of the upper tables.
template<EtcMeasure measure>
ZORT_INLINE void searchHalf(Search& search, unsigned int half, const std::int32_t (&bounds)[2][4])
{
	sumTables<measure>(search, half, 0);
	int leastSums[2];
	bool isOver = true;
	for (unsigned int quantisation = 0; quantisation < 2; ++quantisation)
	{
		leastSums[quantisation] = leastLane(Quad::load(search.sums[half][0][quantisation]));
		// Of equal errors the lower table wins, but an upper one may reach into what the perceptual sums leave open.
		const int reach = reachOfSum<measure>(leastSums[quantisation]);
		isOver &= measure == EtcMeasure::Plain ? bounds[quantisation][half] >= reach : bounds[quantisation][half] > reach;
	}
	if (isOver)
	{
		for (auto& sums : search.sums[half][1])
		{
			Quad::filled(0x3FFFFFFF).store(sums);
		}
	}
	else
	{
		sumTables<measure>(search, half, 1);
		for (unsigned int quantisation = 0; quantisation < 2; ++quantisation)
		{
			const int leastUpper = leastLane(Quad::load(search.sums[half][1][quantisation]));
			leastSums[quantisation] = leastUpper < leastSums[quantisation] ? leastUpper : leastSums[quantisation];
		}
	}
	search.leastSums[0][half] = leastSums[0];
	search.leastSums[1][half] = leastSums[1];
}

/// A half with its table chosen.
struct HalfChoice
{
	float error; ///< In single precision, summed in the order of the texels; perceptual only.
	unsigned int table;
	unsigned int highBits; ///< Of the texels by their number in the half.
	unsigned int lowBits;
	I32 redGreen[kParts]; ///< What the chosen colours differ from the texels by, as pairs; perceptual only.
	I32 blue[kParts];
};

/// Eight texels of a half, in the order of their index bits.
template<typename Register>
ZORT_INLINE void loadHalf(const std::int32_t (&pairs)[16], unsigned int half, Register (&lanes)[kParts])
{
	constexpr unsigned int kCount = Register::kCount;
	for (unsigned int part = 0; part < kParts; ++part)
	{
		if (half < Top)
		{
			lanes[part] = Register::load(pairs + half * 8 + part * kCount);
			continue;
		}
		const Register first = Register::load(pairs + part * 2 * kCount);
		const Register second = Register::load(pairs + part * 2 * kCount + kCount);
		if constexpr (kCount == 8)
		{
			lanes[part] =
			    half == Top ? shuffle<0, 1, 4, 5, 8, 9, 12, 13>(first, second) : shuffle<2, 3, 6, 7, 10, 11, 14, 15>(first, second);
		}
		else
		{
			lanes[part] = half == Top ? shuffle<0, 1, 4, 5>(first, second) : shuffle<2, 3, 6, 7>(first, second);
		}
	}
}

/// Indices for one table, in plain squares.
ZORT_INLINE void matchPlain(const I32 (&redGreen)[kParts], const I32 (&blue)[kParts], const int (&base)[3], HalfChoice& choice)
{
	choice.highBits = 0;
	choice.lowBits = 0;
	for (unsigned int part = 0; part < kParts; ++part)
	{
		I32 best;
		for (unsigned int column = 0; column < 4; ++column)
		{
			const int modifier = kModifiers[choice.table][column];
			const int colour = pairOf(limitedToByte(base[0] + modifier), limitedToByte(base[1] + modifier));
			const I16 differenceRedGreen = as<std::int16_t>(redGreen[part]) - as<std::int16_t>(I32::filled(colour));
			const I16 differenceBlue = as<std::int16_t>(blue[part]) - as<std::int16_t>(I32::filled(limitedToByte(base[2] + modifier)));
			const I32 error = sumsOfProducts(differenceRedGreen, differenceRedGreen) + sumsOfProducts(differenceBlue, differenceBlue);
			// Error and column in one number: the lower column of equal errors is the least.
			const I32 key = error << 2 | I32::filled(static_cast<int>(column));
			best = column == 0 ? key : least(key, best);
		}
		indexBits(best & I32::filled(3), part, choice.highBits, choice.lowBits);
	}
}

/// Indices and error for one table, in perceptual squares as EtcTableSearch.h adds them up.
ZORT_INLINE void matchPerceptual(const I32 (&redGreen)[kParts], const I32 (&blue)[kParts], const int (&base)[3], HalfChoice& choice)
{
	choice.highBits = 0;
	choice.lowBits = 0;
	float errors[8];
	for (unsigned int part = 0; part < kParts; ++part)
	{
		F32 leastError;
		I32 best;
		for (unsigned int column = 0; column < 4; ++column)
		{
			const int modifier = kModifiers[choice.table][column];
			const int colour = pairOf(limitedToByte(base[0] + modifier), limitedToByte(base[1] + modifier));
			const I32 differenceRedGreen = as<std::int32_t>(as<std::int16_t>(redGreen[part]) - as<std::int16_t>(I32::filled(colour)));
			const I32 differenceBlue = blue[part] - I32::filled(limitedToByte(base[2] + modifier));
			const F32 r = convert<float>(differenceRedGreen << 16 >> 16);
			const F32 g = convert<float>(differenceRedGreen >> 16);
			const F32 b = convert<float>(differenceBlue);
			const F32 error = F32::filled(0.299F) * r * r + F32::filled(0.587F) * g * g + F32::filled(0.114F) * b * b;
			if (column == 0)
			{
				leastError = error;
				best = I32::filled(0);
				choice.redGreen[part] = differenceRedGreen;
				choice.blue[part] = differenceBlue;
				continue;
			}
			const I32 isLess = error < leastError;
			leastError = select(isLess, error, leastError);
			best = select(isLess, I32::filled(static_cast<int>(column)), best);
			choice.redGreen[part] = select(isLess, differenceRedGreen, choice.redGreen[part]);
			choice.blue[part] = select(isLess, differenceBlue, choice.blue[part]);
		}
		leastError.store(errors + part * F32::kCount);
		indexBits(best, part, choice.highBits, choice.lowBits);
	}
	choice.error = 0.0F;
	for (const float error : errors)
	{
		choice.error += error;
	}
}

/// The table of a half, the first on a tie, and its indices.
template<EtcMeasure measure>
ZORT_INLINE void resolveHalf(const Search& search, unsigned int quantisation, unsigned int half, HalfChoice& choice)
{
	I32 redGreen[kParts];
	I32 blue[kParts];
	loadHalf(search.texels.redGreen, half, redGreen);
	loadHalf(search.texels.blue, half, blue);
	const auto& colours = search.colours[quantisation];
	const int base[3] = {colours[0][half], colours[1][half], colours[2][half]};
	const Quad reach = Quad::filled(reachOfSum<measure>(search.leastSums[quantisation][half]));
	unsigned int tables = bitsOfMask(Quad::load(search.sums[half][0][quantisation]) <= reach) |
	                      bitsOfMask(Quad::load(search.sums[half][1][quantisation]) <= reach) << 4;
	choice.table = static_cast<unsigned int>(__builtin_ctz(tables));
	if constexpr (measure == EtcMeasure::Plain)
	{
		matchPlain(redGreen, blue, base, choice);
	}
	else
	{
		matchPerceptual(redGreen, blue, base, choice);
		// No sum, no error: then the first table is the best.
		tables = search.leastSums[quantisation][half] == 0 ? 0 : tables & (tables - 1);
		for (; tables != 0; tables &= tables - 1)
		{
			HalfChoice rival{};
			rival.table = static_cast<unsigned int>(__builtin_ctz(tables));
			matchPerceptual(redGreen, blue, base, rival);
			if (rival.error < choice.error)
			{
				choice = rival;
			}
		}
	}
}

/// 299, 587 and 114 times the squares of the channels, over the texels of a half.
ZORT_INLINE unsigned int perceptualError(const HalfChoice& choice)
{
	ChannelSquares<I32::kCount> squares;
	for (unsigned int part = 0; part < kParts; ++part)
	{
		squares.add(as<std::int16_t>(choice.redGreen[part]), as<std::int16_t>(choice.blue[part] & I32::filled(0xFFFF)));
	}
	return squares.perceptualError();
}

/// Bits of eight texels in two columns of two, spread to their places in columns of four.
ZORT_INLINE unsigned int spreadBits(unsigned int bits)
{
	return (bits & 3) | (bits & 12) << 2 | (bits & 48) << 4 | (bits & 192) << 6;
}

template<EtcMeasure measure>
ZORT_INLINE EtcCandidate resolveBlock(const Search& search, unsigned int quantisation, bool isFlipped)
{
	const unsigned int half = isFlipped ? Top : Left;
	HalfChoice first{};
	HalfChoice second{};
	resolveHalf<measure>(search, quantisation, half, first);
	resolveHalf<measure>(search, quantisation, half + 1, second);

	EtcCandidate candidate{};
	const bool isDifferential = search.isDifferential[quantisation][half] != 0;
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const unsigned int level1 = static_cast<unsigned int>(search.levels[quantisation][channel][half]);
		const unsigned int level2 = static_cast<unsigned int>(search.levels[quantisation][channel][half + 1]);
		const unsigned int bits = isDifferential ? level1 << 3 | ((level2 - level1) & 7) : level1 << 4 | level2;
		candidate.word1 |= bits << (24 - 8 * channel);
	}
	candidate.word1 |= first.table << 5 | second.table << 2 | (isDifferential ? 2U : 0U) | (isFlipped ? 1U : 0U);
	if (isFlipped)
	{
		candidate.word2 = (spreadBits(first.highBits) | spreadBits(second.highBits) << 2) << 16 | spreadBits(first.lowBits) |
		                  spreadBits(second.lowBits) << 2;
	}
	else
	{
		candidate.word2 = (first.highBits | second.highBits << 8) << 16 | first.lowBits | second.lowBits << 8;
	}
	if constexpr (measure == EtcMeasure::Plain)
	{
		candidate.error = static_cast<unsigned int>(search.leastSums[quantisation][half] + search.leastSums[quantisation][half + 1]);
	}
	else
	{
		candidate.error = perceptualError(first) + perceptualError(second);
	}
	return candidate;
}

/// The sum of the better split.
ZORT_INLINE int leastTotal(const Search& search, unsigned int quantisation)
{
	const auto& sums = search.leastSums[quantisation];
	const int upright = sums[Left] + sums[Right];
	const int flipped = sums[Top] + sums[Bottom];
	return flipped < upright ? flipped : upright;
}

/// Whether the flipped split is strictly better.
template<EtcMeasure measure>
ZORT_INLINE bool isFlippedBetter(const Search& search, unsigned int quantisation)
{
	const auto& sums = search.leastSums[quantisation];
	const int upright = sums[Left] + sums[Right];
	const int flipped = sums[Top] + sums[Bottom];
	if constexpr (measure == EtcMeasure::Perceptual)
	{
		const bool isSure = upright == 0 || reachOfSum<measure>(upright) < flipped || reachOfSum<measure>(flipped) < upright;
		if (!isSure)
		{
			float errors[4];
			for (unsigned int half = 0; half < 4; ++half)
			{
				HalfChoice choice{};
				resolveHalf<measure>(search, quantisation, half, choice);
				errors[half] = choice.error;
			}
			return errors[Top] + errors[Bottom] < errors[Left] + errors[Right];
		}
	}
	return flipped < upright;
}

/// Whether both quantisations came to the same split and base colours, and so to the same block.
ZORT_INLINE bool areSameColours(const Search& search, const bool (&isFlipped)[2])
{
	const unsigned int half = isFlipped[0] ? Top : Left;
	bool areSame = isFlipped[0] == isFlipped[1] && search.isDifferential[0][half] == search.isDifferential[1][half];
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		areSame &= search.levels[0][channel][half] == search.levels[1][channel][half];
		areSame &= search.levels[0][channel][half + 1] == search.levels[1][channel][half + 1];
	}
	return areSame;
}
} // namespace

template<ESimdLevel level, EtcMeasure measure>
EtcCandidate searchDiffFlipFast(const EtcTexelPairs& texels, EtcCandidate& rival, bool& isOpen)
{
	using W = Weights<measure>;
	Search search(texels);

	using Pairs = Lanes<std::int16_t, 8>;
	const HalfColours sums = foldPairs(texels, [](Pairs a, Pairs b) { return a + b; });
	const HalfColours least8 = foldPairs(texels, [](Pairs a, Pairs b) { return least(a, b); });
	const HalfColours greatest8 = foldPairs(texels, [](Pairs a, Pairs b) { return greatest(a, b); });
	Quad squares[4];
	for (unsigned int column = 0; column < 4; ++column)
	{
		const Pairs redGreen = Pairs::load(texels.redGreen + column * 4);
		const Pairs blue = Pairs::load(texels.blue + column * 4);
		squares[column] = sumsOfProducts(W::redGreen(redGreen), redGreen) + sumsOfProducts(W::blue(blue), blue);
	}
	foldHalves(squares[0], squares[1], squares[2], squares[3], [](Quad a, Quad b) { return a + b; }).store(search.squares);

	std::int32_t bounds[2][4];
	for (unsigned int quantisation = 0; quantisation < 2; ++quantisation)
	{
		const Bases bases = quantisation == 0
		                        ? quantise(
		                              sums, [](const HalfColours& s) { return eachChannel(s, [](Quad a) { return rounded5Bits(a); }); },
		                              [](const HalfColours& s) { return eachChannel(s, [](Quad a) { return rounded4Bits(a); }); })
		                        : quantise(
		                              sums, [](const HalfColours& s) { return quantiseJointly<measure, 5>(s); },
		                              [](const HalfColours& s) { return quantiseJointly<measure, 4>(s); });
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			bases.levels.channel[channel].store(search.levels[quantisation][channel]);
			bases.colours.channel[channel].store(search.colours[quantisation][channel]);
		}
		bases.isDifferential.store(search.isDifferential[quantisation]);
		boundOfUpperTables<measure>(bases.colours, least8, greatest8).store(bounds[quantisation]);
	}
	for (unsigned int half = 0; half < 4; ++half)
	{
		searchHalf<measure>(search, half, bounds);
	}

	// By averages, unless the other is strictly better.
	isOpen = false;
	const int totals[2] = {leastTotal(search, 0), leastTotal(search, 1)};
	if (measure == EtcMeasure::Plain || reachOfSum<measure>(totals[0]) < totals[1] || reachOfSum<measure>(totals[1]) < totals[0])
	{
		const unsigned int winner = totals[1] < totals[0] ? 1 : 0;
		return resolveBlock<measure>(search, winner, isFlippedBetter<measure>(search, winner));
	}
	const bool isFlipped[2] = {isFlippedBetter<measure>(search, 0), isFlippedBetter<measure>(search, 1)};
	const EtcCandidate average = resolveBlock<measure>(search, 0, isFlipped[0]);
	if (average.error == 0 || areSameColours(search, isFlipped))
	{
		return average;
	}
	rival = resolveBlock<measure>(search, 1, isFlipped[1]);
	isOpen = average.error == rival.error;
	return rival.error < average.error ? rival : average;
}

template EtcCandidate searchDiffFlipFast<kLanesLevel, EtcMeasure::Plain>(const EtcTexelPairs&, EtcCandidate&, bool&);
template EtcCandidate searchDiffFlipFast<kLanesLevel, EtcMeasure::Perceptual>(const EtcTexelPairs&, EtcCandidate&, bool&);
} // namespace zortexture
