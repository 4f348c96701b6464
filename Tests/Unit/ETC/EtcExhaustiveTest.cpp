#include <gtest/gtest.h>

#include "Codecs/ETC/EtcBlock.h"
#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "EtcExhaustiveSupport.h"

using namespace zortexture;
using namespace etctest;

namespace
{
struct Words
{
	unsigned int word1 = 0;
	unsigned int word2 = 0;
	bool operator==(const Words&) const = default;
};

struct Found
{
	unsigned int error = 0;
	Words words;
	bool operator==(const Found&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Found& found)
{
	return stream << std::dec << found.error << std::hex << ": " << found.words.word1 << " " << found.words.word2;
}

/// The best tables of one half: their error and their bits.
struct Half
{
	unsigned int error;
	unsigned int table;
	unsigned int highBits;
	unsigned int lowBits;
};

/// Halves count left, right, top, bottom.
Half tryTables(const Rgb16& block, const Measure& measure, unsigned int half, const std::array<int, 3>& colour, unsigned int bits)
{
	const bool isPlain = &measure == &kPlain;
	const auto beside = isPlain ? tryalltables_3bittable2x4 : tryalltables_3bittable2x4percep1000;
	const auto stacked = isPlain ? tryalltables_3bittable4x2 : tryalltables_3bittable4x2percep1000;
	unsigned char base[3];
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		base[channel] = static_cast<unsigned char>(expandBits(static_cast<unsigned int>(colour[channel]), bits));
	}
	Half found;
	found.error = half < 2 ? beside(block.data(), 4, half * 2, 0, base, found.table, found.highBits, found.lowBits)
	                       : stacked(block.data(), 4, 0, (half - 2) * 2, base, found.table, found.highBits, found.lowBits);
	return found;
}

/// The block of two colours, all bits put where the format has them.
Found assemble(const Rgb16& block, const Measure& measure, bool isFlipped, bool isDifferential, const std::array<int, 3>& first,
               const std::array<int, 3>& second)
{
	const unsigned int bits = isDifferential ? 5 : 4;
	const Half half1 = tryTables(block, measure, isFlipped ? 2 : 0, first, bits);
	const Half half2 = tryTables(block, measure, isFlipped ? 3 : 1, second, bits);
	const unsigned int shift = isFlipped ? 2 : 8;
	Found found;
	found.error = half1.error + half2.error;
	found.words.word1 = half1.table << 5 | half2.table << 2 | (isDifferential ? 2U : 0U) | (isFlipped ? 1U : 0U);
	found.words.word2 = (half1.highBits | half2.highBits << shift) << 16 | half1.lowBits | half2.lowBits << shift;
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const auto one = static_cast<unsigned int>(first[channel]);
		const unsigned int other =
		    static_cast<unsigned int>(second[channel] - (isDifferential ? first[channel] : 0)) & (isDifferential ? 7 : 15);
		found.words.word1 |= (isDifferential ? one << 3 | other : one << 4 | other) << (24 - 8 * channel);
	}
	return found;
}

/// Every colour's error in every half, colours counted with blue fastest.
std::array<std::vector<unsigned int>, 4> allHalfErrors(const Rgb16& block, const Measure& measure, unsigned int bits)
{
	std::array<std::vector<unsigned int>, 4> errors;
	const int mask = (1 << bits) - 1;
	for (int colour = 0; colour < 1 << (3 * bits); ++colour)
	{
		for (unsigned int half = 0; half < 4; ++half)
		{
			const std::array<int, 3> levels{colour >> (2 * bits), colour >> bits & mask, colour & mask};
			errors[half].push_back(tryTables(block, measure, half, levels, bits).error);
		}
	}
	return errors;
}

/// What a 4-bit colour costs each half in its first channels alone.
std::array<unsigned int, 4> stageErrors(const Rgb16& block, const Measure& measure, const std::array<int, 3>& colour, unsigned int channels)
{
	std::array<unsigned int, 4> least;
	least.fill(measure.ceiling);
	for (const auto& modifiers : compressParamsFast)
	{
		std::array<unsigned int, 4> sums{};
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			unsigned int best = measure.ceiling;
			for (const int modifier : modifiers)
			{
				unsigned int error = 0;
				for (unsigned int channel = 0; channel < channels; ++channel)
				{
					const int difference = block[texel * 3 + channel] - clamp(colour[channel] * 17 + modifier);
					error += static_cast<unsigned int>(measure.weights[channel] * difference * difference);
				}
				best = std::min(best, error);
			}
			sums[texel % 4 / 2] += best;
			sums[2 + texel / 8] += best;
		}
		for (unsigned int half = 0; half < 4; ++half)
		{
			least[half] = std::min(least[half], sums[half]);
		}
	}
	return least;
}

/// The individual search as it is defined: one walk for all halves, without colours whose red, or whose red and green, cost every half as
/// much as the bound does by then.
Found individualReference(const Rgb16& block, const Measure& measure, const EtcHalves& seed, unsigned int bound)
{
	std::array<int, 3> colours[4];
	unsigned int least[4];
	for (unsigned int half = 0; half < 4; ++half)
	{
		std::copy_n(seed.colours[half], 3, colours[half].begin());
		least[half] = seed.errors[half];
	}
	const auto fallTo = [&bound, &least]
	{
		bound = std::min({bound, least[0] + least[1], least[2] + least[3]});
	};
	const auto isLeftOut = [&](const std::array<int, 3>& colour, unsigned int channels)
	{
		const auto errors = stageErrors(block, measure, colour, channels);
		return *std::min_element(errors.begin(), errors.end()) >= bound;
	};
	fallTo();
	std::array<int, 3> colour;
	for (colour[0] = 0; colour[0] < 16; ++colour[0])
	{
		if (isLeftOut(colour, 1))
		{
			continue;
		}
		for (colour[1] = 0; colour[1] < 16; ++colour[1])
		{
			if (isLeftOut(colour, 2))
			{
				continue;
			}
			for (colour[2] = 0; colour[2] < 16; ++colour[2])
			{
				const auto errors = stageErrors(block, measure, colour, 3);
				for (unsigned int half = 0; half < 4; ++half)
				{
					if (errors[half] < least[half])
					{
						least[half] = errors[half];
						colours[half] = colour;
					}
				}
				fallTo();
			}
		}
	}
	return least[2] + least[3] < least[0] + least[1] ? assemble(block, measure, true, false, colours[2], colours[3])
	                                                 : assemble(block, measure, false, false, colours[0], colours[1]);
}

/// A flat half without error beside one that is off in red alone, or in green too: then a colour that costs one half as much as the
/// whole block may be left out of the search.
Rgb16 blockOfOneError(std::mt19937& random)
{
	Rgb16 block;
	const unsigned int channels = 1 + below(random, 2);
	const bool isFlipped = below(random, 2) != 0;
	unsigned int colours[2][3];
	for (auto& level : colours[0])
	{
		level = below(random, 16) * 17;
	}
	std::copy_n(colours[0], 3, colours[1]);
	colours[1][0] = below(random, 256);
	for (unsigned int i = 0; i < 16; ++i)
	{
		const unsigned int half = isFlipped ? i / 8 : i % 4 / 2;
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			const int noise = half == 1 && channel < channels ? static_cast<int>(below(random, 24)) : 0;
			block[i * 3 + channel] = clamp(static_cast<int>(colours[half][channel]) + noise);
		}
	}
	return block;
}

Found differentialBruteForce(const Rgb16& block, const Measure& measure, const Found& seed)
{
	const auto errors = allHalfErrors(block, measure, 5);
	Found best = seed;
	std::array<int, 3> levels[2];
	bool isFlipped = false;
	for (unsigned int first = 0; first < 32768; ++first)
	{
		if (std::min(errors[0][first], errors[2][first]) >= best.error)
		{
			continue;
		}
		const std::array<int, 3> one{static_cast<int>(first >> 10), static_cast<int>(first >> 5 & 31), static_cast<int>(first & 31)};
		for (int step = 0; step < 512; ++step)
		{
			const std::array<int, 3> other{one[0] + (step >> 6) - 4, one[1] + (step >> 3 & 7) - 4, one[2] + (step & 7) - 4};
			if (std::any_of(other.begin(), other.end(), [](int level) { return level < 0 || level > 31; }))
			{
				continue;
			}
			const auto second = static_cast<unsigned int>((other[0] * 32 + other[1]) * 32 + other[2]);
			for (unsigned int flip = 0; flip < 2; ++flip)
			{
				const unsigned int error = errors[flip * 2][first] + errors[flip * 2 + 1][second];
				if (error < best.error)
				{
					best.error = error;
					levels[0] = one;
					levels[1] = other;
					isFlipped = flip != 0;
				}
			}
		}
	}
	return best.error < seed.error ? assemble(block, measure, isFlipped, true, levels[0], levels[1]) : seed;
}

/// The first of the best triples of one channel that cost no more than the limit.
std::array<unsigned int, 3> planarChannelBruteForce(const Rgb16& block, const Measure& measure, unsigned int channel, unsigned int limit)
{
	const unsigned int bits = channel == 1 ? 7 : 6;
	std::array<unsigned int, 3> best{};
	unsigned int least = limit + 1;
	for (unsigned int triple = 0; triple < 1U << (3 * bits); ++triple)
	{
		int corners[3];
		for (unsigned int i = 0; i < 3; ++i)
		{
			corners[i] = static_cast<int>(expandBits(triple >> ((2 - i) * bits) & ((1U << bits) - 1), bits));
		}
		unsigned int error = 0;
		for (int i = 0; i < 16 && error < least; ++i)
		{
			const int sum = i % 4 * (corners[1] - corners[0]) + i / 4 * (corners[2] - corners[0]) + 4 * corners[0] + 2;
			const int difference = block[static_cast<unsigned int>(i) * 3 + channel] - clamp(sum < 0 ? 0 : sum / 4);
			error += static_cast<unsigned int>(measure.weights[channel] * difference * difference);
		}
		if (error < least)
		{
			least = error;
			best = {triple >> (2 * bits), triple >> bits & ((1U << bits) - 1), triple & ((1U << bits) - 1)};
		}
	}
	return best;
}

/// Runs a search, and checks that its error is that of its words.
template<typename Search, typename... Arguments>
Found run(Search&& search, Decoder decoder, const Rgb16& block, const Measure& measure, Arguments&&... arguments)
{
	Found found;
	found.error = search(block.data(), 4, 0, 0, found.words.word1, found.words.word2, arguments...);
	EXPECT_EQ(found.error, weightedError(block, decodeWith(decoder, found.words.word1, found.words.word2), measure.weights));
	return found;
}

TEST(EtcExhaustive, IndividualEqualsTryingEveryColour)
{
	std::mt19937 random(61);
	unsigned int leftOut = 0;
	for (unsigned int turn = 0; turn < 44; ++turn)
	{
		const Rgb16 block = turn < 6 ? anyBlock(random, turn) : blockOfOneError(random);
		const bool isPlain = turn % 2 == 0;
		const Measure& measure = *kMeasures[turn % 2];
		EtcHalves seed;
		run(isPlain ? compressBlockOnlyIndividualAverage : compressBlockOnlyIndividualAveragePerceptual1000, decompressBlockDiffFlip, block,
		    measure, seed);
		const auto search = isPlain ? compressBlockIndividualExhaustive : compressBlockIndividualExhaustivePerceptual;
		const Found found = run(search, decompressBlockDiffFlip, block, measure, measure.ceiling, searchSpace());
		EXPECT_EQ(found, individualReference(block, measure, seed, measure.ceiling)) << "turn " << turn;
		// The least error as bound: colours may be left out from the beginning, and what is above the bound is of no consequence.
		const Found bounded = run(search, decompressBlockDiffFlip, block, measure, found.error, searchSpace());
		const Found expected = individualReference(block, measure, seed, found.error);
		if (bounded.error <= found.error || expected.error <= found.error)
		{
			EXPECT_EQ(bounded, expected) << "turn " << turn;
		}
		leftOut += expected.error > found.error ? 1 : 0;
	}
	EXPECT_GT(leftOut, 0U);
}

TEST(EtcExhaustive, DifferentialEqualsTryingEveryPair)
{
	std::mt19937 random(62);
	for (const unsigned int turn : {1U, 2U, 4U, 7U})
	{
		const Rgb16 block = anyBlock(random, turn);
		const bool isPlain = turn % 2 == 0;
		const Measure& measure = *kMeasures[turn % 2];
		EtcHalves halves;
		const Found seed = run(isPlain ? compressBlockOnlyDiffFlipAverage : compressBlockOnlyDiffFlipAveragePerceptual1000,
		                       decompressBlockDiffFlip, block, measure, halves);
		EXPECT_NE(seed.words.word1 & 2, 0U);
		const auto search = isPlain ? compressBlockDifferentialExhaustive : compressBlockDifferentialExhaustivePerceptual;
		EXPECT_EQ(run(search, decompressBlockDiffFlip, block, measure, measure.ceiling, searchSpace()),
		          differentialBruteForce(block, measure, seed))
		    << "turn " << turn;
	}
}

/// Noise that grows with the turn, on a plane whose corners lie up to a whole range beyond the range.
Rgb16 steepBlock(std::mt19937& random, unsigned int turn)
{
	Rgb16 block;
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const auto anywhere = [&random]
		{
			return static_cast<int>(below(random, 512)) - 128;
		};
		const int corners[3] = {anywhere(), anywhere(), anywhere()};
		for (int i = 0; i < 16; ++i)
		{
			const int value = (i % 4 * (corners[1] - corners[0]) + i / 4 * (corners[2] - corners[0])) / 4 + corners[0];
			block[static_cast<unsigned int>(i) * 3 + channel] =
			    clamp(std::clamp(value + static_cast<int>(below(random, 1 + turn * 2)), 0, 255));
		}
	}
	return block;
}

/// All corners of red and blue for many blocks, those of green, eight times as many, for some.
TEST(EtcExhaustive, PlanarEqualsTryingEveryPlane)
{
	std::mt19937 random(63);
	for (unsigned int turn = 0; turn < 26; ++turn)
	{
		const Rgb16 block = turn < 6 ? anyBlock(random, turn) : steepBlock(random, turn - 6);
		const bool isPlain = turn % 2 == 0;
		const Measure& measure = *kMeasures[turn % 2];
		Words seed;
		unsigned int seedErrors[3];
		unsigned char decoded[48];
		compressBlockPlanar57(block.data(), 4, 0, 0, seed.word1, seed.word2);
		decompressBlockPlanar57errorPerComponent(seed.word1, seed.word2, decoded, 4, 0, 0, block.data(), seedErrors[0], seedErrors[1],
		                                         seedErrors[2]);
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			seedErrors[channel] *= static_cast<unsigned int>(measure.weights[channel]);
		}
		const auto search = isPlain ? compressBlockPlanar57Exhaustive : compressBlockPlanar57ExhaustivePerceptual;
		const Found found = run(search, decompressBlockPlanar57, block, measure, measure.ceiling, seedErrors);
		const auto& [word1, word2] = found.words;
		const std::array<unsigned int, 3> corners[3] = {{word1 >> 26, word1 >> 7 & 63, word2 >> 20 & 63},
		                                                {word1 >> 19 & 127, word1 & 127, word2 >> 13 & 127},
		                                                {word1 >> 13 & 63, word2 >> 26, word2 >> 7 & 63}};
		unsigned int errors[3];
		decompressBlockPlanar57errorPerComponent(word1, word2, decoded, 4, 0, 0, block.data(), errors[0], errors[1], errors[2]);
		for (const unsigned int channel : {0U, 1U, 2U})
		{
			const unsigned int error = errors[channel] * static_cast<unsigned int>(measure.weights[channel]);
			if (channel != 1 || turn % 8 == 7)
			{
				EXPECT_EQ(planarChannelBruteForce(block, measure, channel, error), corners[channel])
				    << "turn " << turn << ", channel " << channel;
			}
		}
		// A bound on the whole block leaves what costs as much.
		EXPECT_EQ(run(search, decompressBlockPlanar57, block, measure, found.error, seedErrors), found) << "turn " << turn;
	}
}

/// What a bound leaves to a search: everything below it is found as if it were not there, and nothing else is.
TEST(EtcExhaustive, TheBoundDecidesWhatIsFound)
{
	std::mt19937 random(64);
	const auto planar = [](const unsigned char* source, unsigned int width, unsigned int x, unsigned int y, unsigned int& word1,
	                       unsigned int& word2, unsigned int bound, EtcSearchSpace& /*space*/)
	{
		unsigned int errors[3];
		unsigned char decoded[48];
		compressBlockPlanar57(source, width, x, y, word1, word2);
		decompressBlockPlanar57errorPerComponent(word1, word2, decoded, width, x, y, source, errors[0], errors[1], errors[2]);
		return compressBlockPlanar57Exhaustive(source, width, x, y, word1, word2, bound, errors);
	};
	using Search = unsigned int (*)(const unsigned char*, unsigned int, unsigned int, unsigned int, unsigned int&, unsigned int&,
	                                unsigned int, EtcSearchSpace&);
	const struct
	{
		const char* name;
		Search search;
		Decoder decoder;
	} cases[] = {{"individual", compressBlockIndividualExhaustive, decompressBlockDiffFlip},
	             {"differential", compressBlockDifferentialExhaustive, decompressBlockDiffFlip},
	             {"planar", planar, decompressBlockPlanar57},
	             {"T", compressBlockTHUMB59TExhaustive, decompressBlockTHUMB59T},
	             {"H", compressBlockTHUMB58HExhaustive, decompressBlockTHUMB58H}};
	for (const auto& [name, search, decoder] : cases)
	{
		for (const Rgb16& block : {kNaturalBlocks[0], kNaturalBlocks[1], mixedBlock(random, 2)})
		{
			SCOPED_TRACE(name);
			const Found best = run(search, decoder, block, kPlain, kBlockErrorCeiling, searchSpace());
			ASSERT_GT(best.error, 0U);
			EXPECT_EQ(run(search, decoder, block, kPlain, best.error + 1, searchSpace()), best);
			EXPECT_GE(run(search, decoder, block, kPlain, best.error, searchSpace()).error, best.error);
			EXPECT_GE(run(search, decoder, block, kPlain, best.error / 2, searchSpace()).error, best.error);
			EXPECT_GE(run(search, decoder, block, kPlain, 0, searchSpace()).error, best.error);
		}
	}
}
} // namespace
