/// @file EtcFastLadder.cpp
/// The fast levels on vector units: the choices of EtcLadder.cpp, made of what the vector searches tell.
///
/// No candidate is decoded: its error is known from the search. Perceptual errors are compared as the integers that they are thousandths
/// of; only where two of these are equal can the roundings of the floating-point errors matter, and then both blocks are decoded.
#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <utility>

#include "Codecs/ETC/EtcFastKernels.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcLadder.h"
#include "Codecs/ETC/EtcPlanarCorners.h"
#include "Codecs/ETC/EtcPunchThrough.h"
#include "Codecs/ETC/EtcThSearch.h"
#include "ZORTDefines.h"

#if ZORT_HAS_SIMD

namespace zortexture
{
namespace
{
EtcTexelPairs pairsOf(const TexelBlock& block)
{
	EtcTexelPairs texels;
	for (int y = 0; y < 4; ++y)
	{
		for (int x = 0; x < 4; ++x)
		{
			const unsigned char* texel = block.colours + y * 12 + x * 3;
			const int red = texel[0];
			const int green = texel[1];
			const int blue = texel[2];
			texels.redGreen[x * 4 + y] = pairOf(red, green);
			texels.blue[x * 4 + y] = blue;
			texels.redGreenFactor[x * 4 + y] = pairOf(-2 * red, -2 * green);
			texels.blueFactor[x * 4 + y] = pairOf(-2 * blue, 0);
		}
	}
	return texels;
}

/// Both colours of a T or H candidate, in 4 bits, in the order of the block.
struct PackedPair
{
	EtcColourPair colours;
};

PackedPair packedPair(const EtcColourPair& colours)
{
	PackedPair packed;
	compressColor(4, 4, 4, colours, packed.colours);
	return packed;
}

PackedPair sortedPair(PackedPair packed)
{
	sortColorsRGB444(packed.colours);
	return packed;
}

using Stuffing = void (*)(unsigned int, unsigned int, unsigned int&, unsigned int&);

/// The block that a fast search builds up.
template<ESimdLevel level, EtcMeasure measure>
class CFastLadder
{
public:
	explicit CFastLadder(const TexelBlock& block) : m_texels(pairsOf(block)), m_block(block)
	{
	}

	/// The step of ETC1.
	void searchDiffFlip()
	{
		EtcCandidate rival{};
		bool isOpen = false;
		m_best = searchDiffFlipFast<level, measure>(m_texels, rival, isOpen);
		if (isOpen && measuredError(rival) < measuredError(m_best))
		{
			m_best = rival;
		}
	}

	/// All modes of the one-bit-alpha format, for alphas of 0 and 255 alone: other ones are not counted alike by the searches and the
	/// measure.
	void searchOneBitAlpha()
	{
		unsigned int opaque = 0;
		for (unsigned int i = 0; i < 16; ++i)
		{
			opaque |= static_cast<unsigned int>(m_block.alphas[i] != 0) << (i % 4 * 4 + i / 4);
		}
		m_best = searchPunchThroughHalves(true);
		if (m_best.error != 0)
		{
			tryPunchThroughT(opaque);
			tryPunchThroughH();
		}
		if (opaque != 0xFFFF)
		{
			return;
		}
		keepIfBetter(searchPunchThroughHalves(false));
		tryFurtherModes();
	}

	/// Planar, T and H, and the wider search of T or H if that mode won.
	void tryFurtherModes()
	{
		if (m_best.error == 0)
		{
			return; // nothing can be strictly better
		}
		tryPlanar();
		if (isBeyondPaintsFast<level, measure>(m_texels, m_best.error))
		{
			return;
		}

		const PackedPair packed = halfIntensityPair();
		const PackedPair sorted = sortedPair(packed);
		EtcPaintSums sums;
		sumPaints<measure>(packed, sums);
		const bool isT = tryT(packed, sums);
		if (std::memcmp(packed.colours[0], packed.colours[1], sizeof(packed.colours[0])) == 0)
		{
			sumPaints<measure>(sorted, sums); // pulled apart
		}
		const bool isH = tryH(sorted, sums);
		if (isH)
		{
			refineH();
		}
		else if (isT)
		{
			refineT(packed);
		}
	}

	void give(unsigned int& word1, unsigned int& word2) const
	{
		word1 = m_best.word1;
		word2 = m_best.word2;
	}

private:
	/// The perceptual error of a block as the plain ladder measures it.
	[[nodiscard]] double measuredError(const EtcCandidate& candidate) const
	{
		unsigned char decoded[16 * 3];
		decompressBlockETC2(candidate.word1, candidate.word2, decoded, 4, 0, 0);
		return calcBlockPerceptualErrorRGB(m_block.colours, decoded, 4, 0, 0);
	}

	/// Takes the candidate if it is strictly better.
	bool keepIfBetter(const EtcCandidate& candidate)
	{
		bool isBetter = candidate.error < m_best.error;
		if (measure == EtcMeasure::Perceptual && candidate.error == m_best.error)
		{
			isBetter = measuredError(candidate) * 1000.0 < measuredError(m_best) * 1000.0;
		}
		if (isBetter)
		{
			m_best = candidate;
		}
		return isBetter;
	}

	void tryPlanar()
	{
		const EtcPlanarFit fit = fitPlanarFast<level, measure>(m_texels);
		if (fit.error > m_best.error)
		{
			return;
		}
		const auto corners = [&fit](unsigned int channel)
		{
			return PlanarCorners{fit.levels[channel][0], fit.levels[channel][1], fit.levels[channel][2]};
		};
		EtcCandidate planar{0, 0, fit.error};
		unsigned int packed1 = 0;
		unsigned int packed2 = 0;
		packPlanarCorners(corners(0), corners(1), corners(2), packed1, packed2);
		stuff57bits(packed1, packed2, planar.word1, planar.word2);
		keepIfBetter(planar);
	}

	/// The clustering that T and H have in common.
	PackedPair halfIntensityPair()
	{
		if (!m_isClustered)
		{
			m_halfIntensity = cluster<EtcClustering::HalfIntensityFast>();
			m_isClustered = true;
		}
		return m_halfIntensity;
	}

	[[nodiscard]] EtcCandidate searchPunchThroughHalves(bool isTransparent) const
	{
		const auto searchTables = [isTransparent](const PunchThroughHalf& half, const unsigned char(&base)[3])
		{
			const EtcHalfTable best = searchPunchThroughTables<level>(isTransparent, half.texels.rgb, half.opaque, base);
			return TableChoice<unsigned int>{best.error, {best.table, best.highBits, best.lowBits}};
		};
		const auto best = searchPunchThrough(isTransparent, searchTables, m_block.colours, m_block.alphas, 4, 0, 0);
		return {best.word1, best.word2, best.error};
	}

	void tryPunchThroughT(unsigned int opaque)
	{
		if (opaque == 0xFFFF && isBeyondPaintsFast<level, EtcMeasure::Plain>(m_texels, m_best.error))
		{
			return;
		}
		const PackedPair packed = halfIntensityPair();
		EtcColourPair colours;
		decompressColor(4, 4, 4, packed.colours, colours);
		std::int32_t sums[2][8];
		sumPunchThroughPaints<level>(m_texels, opaque, colours, sums);
		const auto candidateOf = [&](unsigned int i)
		{
			return tCandidate(packed, i >= 8, i % 8, stuff59bitsDiffFalse,
			                  [&](const EtcPaintColours& paint, unsigned int& indices)
			                  { return matchPunchThroughPaints<level>(m_texels, opaque, paint, indices); });
		};
		EtcCandidate candidate{};
		if (chooseCandidate<EtcMeasure::Plain>(bothOrders(sums), candidateOf, candidate))
		{
			keepIfBetter(candidate);
		}
	}

	/// The H search gives its transparent index to the opaque texels, so that they come out black whatever it finds for the others: its
	/// error is known beforehand, and seldom the least.
	void tryPunchThroughH()
	{
		EtcCandidate candidate{};
		for (unsigned int i = 0; i < 16; ++i)
		{
			const unsigned char* texel = m_block.colours + i * 3;
			candidate.error += m_block.alphas[i] == 0 ? 0 : PlainScale::square(texel[0], texel[1], texel[2]);
		}
		if (candidate.error < m_best.error)
		{
			compressBlockTHUMB58HAlpha(m_block.colours, m_block.alphas, 4, 0, 0, candidate.word1, candidate.word2);
			stuff58bitsDiffFalse(candidate.word1, candidate.word2, candidate.word1, candidate.word2);
			m_best = candidate;
		}
	}

	template<EtcMeasure m>
	void sumPaints(const PackedPair& packed, EtcPaintSums& sums) const
	{
		EtcColourPair colours;
		decompressColor(4, 4, 4, packed.colours, colours);
		sumPaintsFast<level, m>(m_texels, colours, sums);
	}

	/// Whether the error of the sum is certainly above the best one.
	template<EtcMeasure m>
	[[nodiscard]] bool isBeyond(int sum) const
	{
		if constexpr (m == EtcMeasure::Plain)
		{
			return static_cast<unsigned int>(sum) > m_best.error;
		}
		else
		{
			// Thousandths of the error are at least 1000 / 184.22 of the sum.
			return static_cast<std::uint64_t>(sum) * 100000 > static_cast<std::uint64_t>(m_best.error) * 18422;
		}
	}

	/// `match` gives the error of four paint colours and their indices.
	template<typename Match>
	EtcCandidate tCandidate(PackedPair packed, bool isSwapped, unsigned int distance, Stuffing stuff, Match&& match) const
	{
		if (isSwapped)
		{
			swapColors(packed.colours);
		}
		EtcColourPair colours;
		EtcPaintColours paint;
		decompressColor(4, 4, 4, packed.colours, colours);
		paintColoursT(distance, colours, paint);
		unsigned int indices = 0;
		EtcCandidate candidate{0, 0, match(paint, indices)};
		stuff(packRgb444(packed.colours[0]) << 15 | packRgb444(packed.colours[1]) << 3 | distance, indices, candidate.word1,
		      candidate.word2);
		return candidate;
	}

	template<EtcMeasure m>
	EtcCandidate hCandidate(const PackedPair& sorted, unsigned int distance) const
	{
		EtcColourPair colours;
		EtcPaintColours paint;
		decompressColor(4, 4, 4, sorted.colours, colours);
		paintColoursH(distance, colours, paint);
		unsigned int indices = 0;
		EtcCandidate candidate{0, 0, matchPaintsFast<level, m>(m_texels, paint, indices)};
		unsigned int first = packRgb444(sorted.colours[0]);
		unsigned int second = packRgb444(sorted.colours[1]);
		if ((distance & 1) != 0)
		{
			// The order of the colours stores the low bit; indices 0, 1 and 2, 3 change places with them.
			std::swap(first, second);
			indices ^= 0xFFFF0000;
		}
		stuff58bits(first << 14 | second << 2 | distance >> 1, indices, candidate.word1, candidate.word2);
		return candidate;
	}

	/// The best of candidates by their sums, in order, the first on a tie; false if none can be better than the best block. `candidate`
	/// makes the block of a number.
	template<EtcMeasure m, typename Sums, typename Make>
	bool chooseCandidate(const Sums& sums, Make&& makeCandidate, EtcCandidate& chosen) const
	{
		const auto count = static_cast<unsigned int>(std::size(sums));
		int least = sums[0];
		unsigned int first = 0;
		for (unsigned int i = 1; i < count; ++i)
		{
			first = sums[i] < least ? i : first;
			least = sums[i] < least ? sums[i] : least;
		}
		if (isBeyond<m>(least))
		{
			return false;
		}
		if constexpr (m == EtcMeasure::Plain)
		{
			chosen = makeCandidate(first);
		}
		else
		{
			bool isFirst = true;
			for (unsigned int i = 0; i < count; ++i)
			{
				if (sums[i] <= reachOfSum<m>(least))
				{
					const EtcCandidate candidate = makeCandidate(i);
					if (isFirst || candidate.error < chosen.error)
					{
						chosen = candidate;
					}
					isFirst = false;
				}
			}
		}
		return true;
	}

	/// Sixteen sums, those of the given order first.
	static std::array<std::int32_t, 16> bothOrders(const std::int32_t (&sums)[2][8])
	{
		std::array<std::int32_t, 16> both;
		std::memcpy(both.data(), sums, sizeof(both));
		return both;
	}

	template<EtcMeasure m>
	bool chooseT(const PackedPair& packed, const EtcPaintSums& sums, EtcCandidate& chosen) const
	{
		const auto candidateOf = [&](unsigned int i)
		{
			return tCandidate(packed, i >= 8, i % 8, stuff59bits,
			                  [&](const EtcPaintColours& paint, unsigned int& indices)
			                  { return matchPaintsFast<level, m>(m_texels, paint, indices); });
		};
		return chooseCandidate<m>(bothOrders(sums.t), candidateOf, chosen);
	}

	bool tryT(const PackedPair& packed, const EtcPaintSums& sums)
	{
		EtcCandidate candidate{};
		return chooseT<measure>(packed, sums, candidate) && keepIfBetter(candidate);
	}

	bool tryH(const PackedPair& sorted, const EtcPaintSums& sums)
	{
		EtcCandidate candidate{};
		return chooseCandidate<measure>(
		           sums.h, [&](unsigned int i) { return hCandidate<measure>(sorted, i); }, candidate) &&
		       keepIfBetter(candidate);
	}

	/// The wider searches are plain ones in both measures, and their result is compared in plain squares also with a best one of the other
	/// scale; see EtcLadder.cpp.
	struct Refinement
	{
		bool isFound = false;
		EtcCandidate candidate{};
	};

	void refine(Refinement& refinement, const EtcCandidate& candidate) const
	{
		if (!refinement.isFound || candidate.error < refinement.candidate.error)
		{
			refinement.isFound = true;
			refinement.candidate = candidate;
		}
	}

	void keepRefinement(const Refinement& refinement)
	{
		if (!refinement.isFound)
		{
			return;
		}
		bool isBetter = refinement.candidate.error < m_best.error;
		if (measure == EtcMeasure::Perceptual && refinement.candidate.error == m_best.error)
		{
			isBetter = refinement.candidate.error < measuredError(m_best) * 1000.0;
		}
		if (isBetter)
		{
			m_best = refinement.candidate;
		}
	}

	template<EtcClustering clustering>
	PackedPair cluster() const
	{
		EtcColourPair colours;
		clusterColoursFast<level, clustering>(m_block.colours, colours);
		return packedPair(colours);
	}

	void refineT(const PackedPair& halfIntensity)
	{
		constexpr EtcMeasure kPlain = EtcMeasure::Plain;
		const PackedPair pairs[3] = {cluster<EtcClustering::NotIntensityFast>(), halfIntensity, cluster<EtcClustering::Fast>()};
		Refinement refinement;
		for (const PackedPair& packed : pairs)
		{
			EtcPaintSums sums;
			EtcCandidate candidate{};
			sumPaints<kPlain>(packed, sums);
			if (chooseT<kPlain>(packed, sums, candidate))
			{
				refine(refinement, candidate);
			}
		}
		keepRefinement(refinement);
	}

	void refineH()
	{
		constexpr EtcMeasure kPlain = EtcMeasure::Plain;
		const PackedPair pairs[2] = {sortedPair(cluster<EtcClustering::NotIntensity>()), sortedPair(cluster<EtcClustering::All>())};
		Refinement refinement;
		for (const PackedPair& sorted : pairs)
		{
			EtcPaintSums sums;
			EtcCandidate candidate{};
			sumPaints<kPlain>(sorted, sums);
			if (chooseCandidate<kPlain>(
			        sums.h, [&](unsigned int i) { return hCandidate<kPlain>(sorted, i); }, candidate))
			{
				refine(refinement, candidate);
			}
		}
		keepRefinement(refinement);
	}

	const EtcTexelPairs m_texels;
	const TexelBlock& m_block;
	EtcCandidate m_best{};
	PackedPair m_halfIntensity{};
	bool m_isClustered = false;
};

template<ESimdLevel level, EtcMeasure measure>
void compress(const TexelBlock& block, unsigned int format, unsigned int& word1, unsigned int& word2)
{
	CFastLadder<level, measure> ladder(block);
	ladder.searchDiffFlip();
	if (format != ePF_ETC1)
	{
		ladder.tryFurtherModes();
	}
	ladder.give(word1, word2);
}
} // namespace

template<ESimdLevel level>
void compressColoursFast(const TexelBlock& texels, unsigned int format, int quality, unsigned int& word1, unsigned int& word2)
{
	if (format == ePF_ETC2_RGB_A1)
	{
		const bool isCutOut =
		    std::all_of(std::begin(texels.alphas), std::end(texels.alphas), [](unsigned char a) { return a == 0 || a == 255; });
		if (!isCutOut)
		{
			compressColoursFast<eSimdPlain>(texels, format, quality, word1, word2);
			return;
		}
		CFastLadder<level, EtcMeasure::Plain> ladder(texels);
		ladder.searchOneBitAlpha();
		ladder.give(word1, word2);
	}
	else if (quality == ETCQualityFast)
	{
		compress<level, EtcMeasure::Plain>(texels, format, word1, word2);
	}
	else
	{
		compress<level, EtcMeasure::Perceptual>(texels, format, word1, word2);
	}
}

template void compressColoursFast<eSimdSse2>(const TexelBlock&, unsigned int, int, unsigned int&, unsigned int&);
template void compressColoursFast<eSimdAvx2>(const TexelBlock&, unsigned int, int, unsigned int&, unsigned int&);
} // namespace zortexture

#endif
