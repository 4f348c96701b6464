/// @file EtcIndividualExhaustive.cpp
/// All individual blocks. The halves do not interact, so one walk over the 4-bit colours serves all four of them.
#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcHalfErrors.h"
#include "Codecs/ETC/EtcSplit.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kLevels = 16;

template<typename Scale, typename Seed>
unsigned int search(Seed&& seed, const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                    unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	EtcHalves best;
	bound = std::min(bound, seed(source, width, startX, startY, word1, word2, best));

	const SearchTexels<16> texels = loadBlockColumns(source, width, startX, startY);
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		for (unsigned int level = 0; level < kLevels; ++level)
		{
			precomputeModifierErrors<Scale>(texels, channel, static_cast<int>(expandBits(level, 4)), space.modifierErrors[channel][level]);
		}
	}
	visitBaseColours<kLevels>(space.modifierErrors, bound,
	                          [&best, &bound](unsigned int red, unsigned int green, unsigned int blue, const HalfErrors& errors)
	                          {
		                          bool isBetter = false;
		                          for (unsigned int half = 0; half < 4; ++half)
		                          {
			                          if (errors.at[half] < best.errors[half])
			                          {
				                          best.errors[half] = errors.at[half];
				                          best.colours[half][0] = static_cast<int>(red);
				                          best.colours[half][1] = static_cast<int>(green);
				                          best.colours[half][2] = static_cast<int>(blue);
				                          isBetter = true;
			                          }
		                          }
		                          if (isBetter)
		                          {
			                          bound = std::min({bound, best.errors[kLeftHalf] + best.errors[kRightHalf],
			                                            best.errors[kTopHalf] + best.errors[kBottomHalf]});
		                          }
	                          });

	const bool isFlipped = best.errors[kTopHalf] + best.errors[kBottomHalf] < best.errors[kLeftHalf] + best.errors[kRightHalf];
	const auto result =
	    isFlipped ? encodeSplit<Scale, HalfShape::Flipped>(loadSplitTexels<HalfShape::Flipped>(source, width, startX, startY),
	                                                       ColourMode::Individual, best.colours[kTopHalf], best.colours[kBottomHalf])
	              : encodeSplit<Scale, HalfShape::Upright>(loadSplitTexels<HalfShape::Upright>(source, width, startX, startY),
	                                                       ColourMode::Individual, best.colours[kLeftHalf], best.colours[kRightHalf]);
	word1 = result.word1;
	word2 = result.word2;
	return result.error;
}
} // namespace

unsigned int compressBlockIndividualExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                               unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	return search<PlainScale>(compressBlockOnlyIndividualAverage, source, width, startX, startY, word1, word2, bound, space);
}

unsigned int compressBlockIndividualExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                         unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                         EtcSearchSpace& space)
{
	return search<Perceptual1000Scale>(compressBlockOnlyIndividualAveragePerceptual1000, source, width, startX, startY, word1, word2, bound,
	                                   space);
}
} // namespace zortexture
