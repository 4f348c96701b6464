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

Found individualBruteForce(const Rgb16& block, const Measure& measure, const EtcHalves& seed)
{
	const auto errors = allHalfErrors(block, measure, 4);
	std::array<int, 3> colours[4];
	unsigned int least[4];
	for (unsigned int half = 0; half < 4; ++half)
	{
		std::copy_n(seed.colours[half], 3, colours[half].begin());
		least[half] = seed.errors[half];
		for (int colour = 0; colour < 4096; ++colour)
		{
			if (errors[half][static_cast<unsigned int>(colour)] < least[half])
			{
				least[half] = errors[half][static_cast<unsigned int>(colour)];
				colours[half] = {colour >> 8, colour >> 4 & 15, colour & 15};
			}
		}
	}
	return least[2] + least[3] < least[0] + least[1] ? assemble(block, measure, true, false, colours[2], colours[3])
	                                                 : assemble(block, measure, false, false, colours[0], colours[1]);
}

Found differentialBruteForce(const Rgb16& block, const Measure& measure, const Found& seed)
{
	const auto errors = allHalfErrors(block, measure, 5);
	Found best = seed;
	std::array<int, 3> levels[2];
	bool isFlipped = false;
	for (unsigned int first = 0; first < 32768; ++first)
	{
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

/// The first of the best triples of one channel, and its error.
std::pair<std::array<unsigned int, 3>, unsigned int> planarChannelBruteForce(const Rgb16& block, const Measure& measure,
                                                                             unsigned int channel)
{
	const unsigned int bits = channel == 1 ? 7 : 6;
	std::array<unsigned int, 3> best{};
	unsigned int least = measure.ceiling;
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
	return {best, least};
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
	for (unsigned int turn = 0; turn < 16; ++turn)
	{
		const Rgb16 block = anyBlock(random, turn);
		const Measure& measure = *kMeasures[turn / 8];
		EtcHalves seed;
		run(turn < 8 ? compressBlockOnlyIndividualAverage : compressBlockOnlyIndividualAveragePerceptual1000, decompressBlockDiffFlip,
		    block, measure, seed);
		const auto search = turn < 8 ? compressBlockIndividualExhaustive : compressBlockIndividualExhaustivePerceptual;
		EXPECT_EQ(run(search, decompressBlockDiffFlip, block, measure, measure.ceiling, searchSpace()),
		          individualBruteForce(block, measure, seed))
		    << "turn " << turn;
	}
}

TEST(EtcExhaustive, DifferentialEqualsTryingEveryPair)
{
	std::mt19937 random(62);
	for (const unsigned int turn : {0U, 1U, 2U, 7U})
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

TEST(EtcExhaustive, PlanarEqualsTryingEveryPlane)
{
	std::mt19937 random(63);
	for (unsigned int turn = 0; turn < 8; ++turn)
	{
		const Rgb16 block = anyBlock(random, turn);
		const Measure& measure = *kMeasures[turn % 3 / 2];
		Words seed;
		unsigned int seedErrors[3];
		unsigned char decoded[48];
		compressBlockPlanar57(block.data(), 4, 0, 0, seed.word1, seed.word2);
		decompressBlockPlanar57errorPerComponent(seed.word1, seed.word2, decoded, 4, 0, 0, block.data(), seedErrors[0], seedErrors[1],
		                                         seedErrors[2]);
		unsigned int error = 0;
		std::array<unsigned int, 3> corners[3];
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			seedErrors[channel] *= static_cast<unsigned int>(measure.weights[channel]);
			const auto [best, least] = planarChannelBruteForce(block, measure, channel);
			corners[channel] = best;
			error += least;
		}
		const auto& [red, green, blue] = corners;
		const Words words{red[0] << 26 | green[0] << 19 | blue[0] << 13 | red[1] << 7 | green[1],
		                  blue[1] << 26 | red[2] << 20 | green[2] << 13 | blue[2] << 7};
		const auto search = &measure == &kPlain ? compressBlockPlanar57Exhaustive : compressBlockPlanar57ExhaustivePerceptual;
		EXPECT_EQ(run(search, decompressBlockPlanar57, block, measure, measure.ceiling, seedErrors), (Found{error, words}))
		    << "turn " << turn;
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
