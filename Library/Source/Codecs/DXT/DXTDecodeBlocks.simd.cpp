// Whole blocks with lanes: the palette as four 32-bit texels, and rows of texels at once selected from it by masks of index bits.

#include "Codecs/BlockLanes.h"
#include "DXTBlock.h"

namespace zortexture
{
namespace
{
enum class AlphaHalf
{
	None,
	Explicit,
	Interpolated
};

/// The four palette entries. Where three-colour blocks are known and colour 0 <= colour 1, the last entry is 0, alpha included: the formats
/// with an alpha half put theirs in its place.
ZORT_INLINE Row paletteOf(std::uint32_t ends, bool knowsThreeColours)
{
	// R, G, B of both colours in lanes of their own, at the top of 16 bits; then floor(r * 33 / 4) is r << 3 | r >> 2, and for the six
	// bits of green floor(g * 65 / 16) is g << 2 | g >> 4.
	constexpr Words8 kToTop = {{1, 32, 2048, 0, 1, 32, 2048, 0}};
	constexpr Words8 kTopBits = {{0xF800, 0xFC00, 0xF800, 0, 0xF800, 0xFC00, 0xF800, 0}};
	constexpr Words8 kExpand = {{264, 260, 264, 0, 264, 260, 264, 0}};
	constexpr Words8 kOpaque = {{0, 0, 0, 255, 0, 0, 0, 255}};
	const auto both = shuffle<0, 0, 0, 0, 1, 1, 1, 1>(as<std::uint16_t>(Row::filled(ends)));
	const Words8 near = multiplyHigh((both * kToTop) & kTopBits, kExpand) | kOpaque;
	const Words8 far = shuffle<4, 5, 6, 7, 0, 1, 2, 3>(near);

	// Sixty-fourths of the nearer and of the farther colour for entries 2 and 3.
	static constexpr std::uint16_t kWeights[2][2][8] = {{{42, 42, 42, 42, 42, 42, 42, 42}, {22, 22, 22, 22, 22, 22, 22, 22}},
	                                                    {{32, 32, 32, 32, 0, 0, 0, 0}, {32, 32, 32, 32, 0, 0, 0, 0}}};
	const unsigned int isThreeColours = knowsThreeColours && (ends & 0xFFFF) <= ends >> 16 ? 1 : 0;
	const Words8 mixed = (near * Words8::load(kWeights[isThreeColours][0]) + far * Words8::load(kWeights[isThreeColours][1])) >> 6;
	return as<std::uint32_t>(packUnsigned(as<std::int16_t>(near), as<std::int16_t>(mixed)));
}

ZORT_INLINE Rows decodeColours(const unsigned char* block, bool knowsThreeColours)
{
	const U32 palette = repeated(paletteOf(loadWord(block), knowsThreeColours));
	const FourColours colours(spread<0>(palette), spread<1>(palette), spread<2>(palette), spread<3>(palette));
	const U32 indices = U32::filled(loadWord(block + 4));
	return makeRows(
	    [&](auto step)
	    {
		    const auto low = maskOfBits<step.kNumber>(indices, [](unsigned int x, unsigned int y) { return 8 * y + 2 * x; });
		    const auto high = maskOfBits<step.kNumber>(indices, [](unsigned int x, unsigned int y) { return 8 * y + 2 * x + 1; });
		    return colours(low, high);
	    });
}

ZORT_INLINE Bytes16 decodeExplicitAlpha(Bytes16 block)
{
	const auto mask = Bytes16::filled(15);
	const Bytes16 high = as<std::uint8_t>(as<std::uint16_t>(block) >> 4) & mask;
	const Bytes16 nibbles = interleaveLow(block & mask, high);
	return nibbles | as<std::uint8_t>(as<std::uint16_t>(nibbles) << 4);
}

ZORT_INLINE Bytes16 decodeInterpolatedAlpha(Bytes16 block, unsigned int alpha0, unsigned int alpha1)
{
	// The steps between both alphas: sevenths, or fifths and the two constant entries. One division is (a * reciprocal) >> 16, exact for
	// all that 255 times seven reaches.
	static constexpr std::uint16_t kWeights[2][2][8] = {{{7, 0, 6, 5, 4, 3, 2, 1}, {0, 7, 1, 2, 3, 4, 5, 6}},
	                                                    {{5, 0, 4, 3, 2, 1, 0, 0}, {0, 5, 1, 2, 3, 4, 0, 0}}};
	static constexpr std::uint16_t kReciprocals[2] = {9363, 13108};
	static constexpr std::uint16_t kConstants[2][8] = {{}, {0, 0, 0, 0, 0, 0, 0, 255}};
	const unsigned int isFifths = alpha0 <= alpha1 ? 1 : 0;
	const Words8 sums = Words8::filled(static_cast<std::uint16_t>(alpha0)) * Words8::load(kWeights[isFifths][0]) +
	                    Words8::filled(static_cast<std::uint16_t>(alpha1)) * Words8::load(kWeights[isFifths][1]);
	const Words8 palette = multiplyHigh(sums, Words8::filled(kReciprocals[isFifths])) | Words8::load(kConstants[isFifths]);

	// Four indices are twelve bits of a 16-bit window, which starts at bits 16, 24, 40 and 48 of the block. A multiplication brings each
	// to the top of its lane.
	constexpr Words8 kToTop = {{1 << 13, 1 << 10, 1 << 7, 1 << 4, 1 << 9, 1 << 6, 1 << 3, 1 << 0}};
	const auto even = as<std::uint16_t>(block);
	const auto odd = as<std::uint16_t>(as<std::uint64_t>(block) >> 8);
	const auto first = (shuffle<1, 1, 1, 1, 9, 9, 9, 9>(even, odd) * kToTop) >> 13;
	const auto second = (shuffle<2, 2, 2, 2, 11, 11, 11, 11>(odd, even) * kToTop) >> 13;
	const auto indices = packUnsigned(as<std::int16_t>(first), as<std::int16_t>(second));
	return lookUpEight(packUnsigned(as<std::int16_t>(palette), as<std::int16_t>(palette)), indices);
}

template<AlphaHalf alpha>
ZORT_INLINE void decodeBlocks(const unsigned char* blocks, std::size_t count, unsigned char* texels, std::size_t rowBytes)
{
	constexpr unsigned int kBlockBytes = alpha == AlphaHalf::None ? 8 : 16;
	for (const unsigned char* block = blocks; block != blocks + count * kBlockBytes; block += kBlockBytes, texels += 16)
	{
		Rows rows = decodeColours(block + kBlockBytes - 8, alpha != AlphaHalf::Explicit);
		if constexpr (alpha != AlphaHalf::None)
		{
			const auto bytes = Bytes16::load(block);
			rows = withAlphas(rows, alpha == AlphaHalf::Explicit ? decodeExplicitAlpha(bytes)
			                                                     : decodeInterpolatedAlpha(bytes, block[0], block[1]));
		}
		forEachRow(rows, [&](Row row, unsigned int y) { row.store(texels + y * rowBytes); });
	}
}
} // namespace

template<ESimdLevel level>
void decodeDXTBlocks(const unsigned char* blocks, std::size_t count, unsigned int number, unsigned char* texels, std::size_t rowBytes)
{
	switch (number)
	{
	case 1:
		decodeBlocks<AlphaHalf::None>(blocks, count, texels, rowBytes);
		break;
	case 2:
	case 3:
		decodeBlocks<AlphaHalf::Explicit>(blocks, count, texels, rowBytes);
		break;
	default:
		decodeBlocks<AlphaHalf::Interpolated>(blocks, count, texels, rowBytes);
		break;
	}
}

template void decodeDXTBlocks<kLanesLevel>(const unsigned char*, std::size_t, unsigned int, unsigned char*, std::size_t);
} // namespace zortexture
