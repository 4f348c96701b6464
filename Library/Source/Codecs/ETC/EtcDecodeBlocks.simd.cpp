// Whole blocks with lanes: each mode but the planar one makes palettes of four 32-bit texels, and rows of texels at once are selected from
// them by masks of index bits.

#include "EtcDecodeBlocks.h"

#include "Codecs/BlockLanes.h"
#include "EacLanes.h"
#include "EtcBlock.h"
#include "EtcTables.h"

namespace zortexture
{
namespace
{
constexpr std::uint32_t kOpaque = 0xFF000000;

/// What is added to the bytes of a palette, and what is then taken away, by stored index. An entry that loses 255 in each byte is clear.
struct Shifts
{
	std::uint8_t raise[4][4];
	std::uint8_t lower[4][4];

	constexpr void set(unsigned int index, int shift)
	{
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			raise[index][channel] = static_cast<std::uint8_t>(shift > 0 ? shift : 0);
			lower[index][channel] = static_cast<std::uint8_t>(shift < 0 ? -shift : 0);
		}
	}
	constexpr void clear(unsigned int index)
	{
		for (unsigned int channel = 0; channel < 4; ++channel)
		{
			lower[index][channel] = 255;
		}
	}
};

/// The shifts of a mode by table codeword or distance index: opaque, and with index 2 clear.
struct ModeShifts
{
	Shifts opaque[8];
	Shifts clear[8];
};

/// Two halves with a base colour and a table each. Where index 2 is clear, index 0 is the base colour as it stands.
constexpr ModeShifts kHalves = []
{
	ModeShifts shifts{};
	for (unsigned int table = 0; table < 8; ++table)
	{
		for (unsigned int index = 0; index < 4; ++index)
		{
			const int shift = compressParamsFast[table][unscramble[index]];
			shifts.opaque[table].set(index, shift);
			shifts.clear[table].set(index, index % 2 != 0 ? shift : 0);
		}
		shifts.clear[table].clear(2);
	}
	return shifts;
}();

/// T: the first colour, and the second one with the distance added, as it is, and with the distance taken away.
/// H: both colours with the distance added and taken away.
constexpr ModeShifts makeDistances(bool isH)
{
	ModeShifts shifts{};
	for (unsigned int distance = 0; distance < 8; ++distance)
	{
		for (unsigned int index = 0; index < 4; ++index)
		{
			const int signs[2][4] = {{0, 1, 0, -1}, {1, -1, 1, -1}};
			const int shift = signs[isH ? 1 : 0][index] * table58H[distance];
			shifts.opaque[distance].set(index, shift);
			shifts.clear[distance].set(index, index != 2 ? shift : 0);
		}
		shifts.clear[distance].clear(2);
	}
	return shifts;
}
constexpr ModeShifts kT = makeDistances(false);
constexpr ModeShifts kH = makeDistances(true);

ZORT_INLINE Row shifted(Row colours, const Shifts& shifts)
{
	return as<std::uint32_t>(
	    subtractSaturated(addSaturated(as<std::uint8_t>(colours), Bytes16::load(shifts.raise)), Bytes16::load(shifts.lower)));
}

/// Both words of a block as they lie in memory, the first byte lowest: the channels of base colours then stand in the order of a texel's.
/// Byte 3 of the first holds the tables, the diff bit (25) and the flip bit (24).
struct Block
{
	std::uint32_t colours;
	std::uint32_t indices;

	ZORT_INLINE bool isDifferential() const
	{
		return (colours >> 25 & 1) != 0;
	}
	ZORT_INLINE bool isFlipped() const
	{
		return (colours >> 24 & 1) != 0;
	}
};

/// The texels of a row register.
template<unsigned int step>
ZORT_INLINE U32 paintRow(const FourColours& colours, U32 indices)
{
	const auto low = maskOfBits<step>(indices, [](unsigned int x, unsigned int y) { return (4 * x + y) ^ 24; });
	const auto high = maskOfBits<step>(indices, [](unsigned int x, unsigned int y) { return (16 + 4 * x + y) ^ 24; });
	return colours(low, high);
}

ZORT_INLINE FourColours spreadPalettes(U32 left, U32 right)
{
	return {spread<0>(left, right), spread<1>(left, right), spread<2>(left, right), spread<3>(left, right)};
}

ZORT_INLINE Rows paintHalves(std::uint32_t base1, std::uint32_t base2, const Block& block, const Shifts (&shifts)[8])
{
	const Row palette1 = shifted(Row::filled(base1), shifts[block.colours >> 29]);
	const Row palette2 = shifted(Row::filled(base2), shifts[block.colours >> 26 & 7]);
	const U32 indices = U32::filled(block.indices);
	const auto isFlipped = Mask<std::uint32_t, U32::kCount>::filled(block.isFlipped() ? -1 : 0);
#if defined(__AVX2__)
	const U32 upright1 = join(palette1, palette1);
	const U32 upright2 = join(palette2, palette2);
	const U32 flipped = join(palette1, palette2);
	const FourColours colours = spreadPalettes(select(isFlipped, flipped, upright1), select(isFlipped, flipped, upright2));
	return makeRows([&](auto step) { return paintRow<step.kNumber>(colours, indices); });
#else
	const FourColours above = spreadPalettes(palette1, select(isFlipped, palette1, palette2));
	const FourColours below = spreadPalettes(select(isFlipped, palette2, palette1), palette2);
	return makeRows([&](auto step) { return paintRow<step.kNumber>(step.kNumber < 2 ? above : below, indices); });
#endif
}

ZORT_INLINE Rows paintWhole(Row palette, const Block& block)
{
	const U32 wide = repeated(palette);
	const FourColours colours(spread<0>(wide), spread<1>(wide), spread<2>(wide), spread<3>(wide));
	const U32 indices = U32::filled(block.indices);
	return makeRows([&](auto step) { return paintRow<step.kNumber>(colours, indices); });
}

/// A colour of three times four bits, the red ones highest.
ZORT_INLINE std::uint32_t expandNibbles(std::uint32_t colour)
{
	return ((colour >> 8 & 15) | (colour & 0xF0) << 4 | (colour & 15) << 16) * 17 | kOpaque;
}

ZORT_INLINE Rows decodeT(const Block& block, const Shifts (&shifts)[8])
{
	unsigned int packed = 0;
	unsigned int indices = 0;
	unstuff59bits(__builtin_bswap32(block.colours), 0, packed, indices);
	const std::uint32_t first = expandNibbles(packed >> 15);
	const std::uint32_t second = expandNibbles(packed >> 3);
	return paintWhole(shifted(Row{{first, second, second, second}}, shifts[packed & 7]), block);
}

ZORT_INLINE Rows decodeH(const Block& block, const Shifts (&shifts)[8])
{
	unsigned int packed = 0;
	unsigned int indices = 0;
	unstuff58bits(__builtin_bswap32(block.colours), 0, packed, indices);
	const unsigned int first = packed >> 14 & 0xFFF;
	const unsigned int second = packed >> 2 & 0xFFF;
	const unsigned int distance = (packed & 3) << 1 | (first >= second ? 1 : 0);
	const std::uint32_t colour1 = expandNibbles(first);
	const std::uint32_t colour2 = expandNibbles(second);
	return paintWhole(shifted(Row{{colour1, colour1, colour2, colour2}}, shifts[distance]), block);
}

/// A channel of 6 or 7 bits spread over 8.
ZORT_INLINE std::int16_t corner(unsigned int word, unsigned int bits)
{
	const unsigned int value = word & ((1U << bits) - 1);
	return static_cast<std::int16_t>(value << (8 - bits) | value >> (2 * bits - 8));
}

Rows decodePlanar(const Block& block)
{
	unsigned int word1 = 0;
	unsigned int word2 = 0;
	unstuff57bits(__builtin_bswap32(block.colours), __builtin_bswap32(block.indices), word1, word2);
	// R, G, B, A twice: two texels side by side. A plane of alpha that is 255 everywhere.
	using Texels = Lanes<std::int16_t, 8>;
	const auto twice = [](std::int16_t red, std::int16_t green, std::int16_t blue)
	{
		return Texels{{red, green, blue, 255, red, green, blue, 255}};
	};
	const Texels origin = twice(corner(word1 >> 26, 6), corner(word1 >> 19, 7), corner(word1 >> 13, 6));
	const Texels right = twice(corner(word1 >> 7, 6), corner(word1, 7), corner(word2 >> 26, 6)) - origin;
	const Texels down = twice(corner(word2 >> 20, 6), corner(word2 >> 13, 7), corner(word2 >> 7, 6)) - origin;
	constexpr Texels kColumns = {{0, 0, 0, 0, 1, 1, 1, 1}};
	Texels first = (origin << 2) + Texels::filled(2) + right * kColumns;
	Texels second = first + (right << 1);
	Row rows[4];
	for (Row& row : rows)
	{
		row = as<std::uint32_t>(packUnsigned(first >> 2, second >> 2));
		first += down;
		second += down;
	}
#if defined(__AVX2__)
	return {{join(rows[0], rows[2]), join(rows[1], rows[3])}};
#else
	return {{rows[0], rows[1], rows[2], rows[3]}};
#endif
}

/// Individual blocks: four bits a channel, side by side in each byte.
ZORT_INLINE Rows decodeIndividual(const Block& block)
{
	const std::uint32_t base1 = block.colours & 0xF0F0F0;
	const std::uint32_t base2 = block.colours & 0x0F0F0F;
	return paintHalves(base1 | base1 >> 4 | kOpaque, base2 | base2 << 4 | kOpaque, block, kHalves.opaque);
}

/// Five bits a channel, at the bottom of each byte.
ZORT_INLINE std::uint32_t expandFive(std::uint32_t base)
{
	return (base << 3 & 0xF8F8F8) | (base >> 2 & 0x070707) | kOpaque;
}

/// Blocks with the diff bit set, and all blocks of the one-bit-alpha format, where that bit tells whether all texels are opaque.
ZORT_INLINE Rows decodeByDeltas(const Block& block, bool isOpaque)
{
	// In each byte the base of five bits plus the delta plus 32: beyond the range of a base, bit 5 is clear. The first channel of which
	// this holds tells the mode.
	const std::uint32_t base = block.colours >> 3 & 0x1F1F1F;
	const std::uint32_t sums = base + ((block.colours & 0x070707) ^ 0x040404) + 0x1C1C1C;
	const std::uint32_t overflows = ~sums & 0x202020;
	if (overflows == 0)
	{
		return paintHalves(expandFive(base), expandFive(sums & 0x1F1F1F), block, isOpaque ? kHalves.opaque : kHalves.clear);
	}
	if ((overflows & 0x20) != 0)
	{
		return decodeT(block, isOpaque ? kT.opaque : kT.clear);
	}
	if ((overflows & 0x2000) != 0)
	{
		return decodeH(block, isOpaque ? kH.opaque : kH.clear);
	}
	return decodePlanar(block);
}

ZORT_INLINE Rows decodeColours(const unsigned char* bytes)
{
	const Block block = {loadWord(bytes), loadWord(bytes + 4)};
	return block.isDifferential() ? decodeByDeltas(block, true) : decodeIndividual(block);
}

ZORT_INLINE Rows decodeColoursOrClear(const unsigned char* bytes)
{
	const Block block = {loadWord(bytes), loadWord(bytes + 4)};
	return decodeByDeltas(block, block.isDifferential());
}

/// ETC1 alone: sums beyond the range of a base are expanded in eight bits.
ZORT_INLINE Rows decodeEtc1(const unsigned char* bytes)
{
	const Block block = {loadWord(bytes), loadWord(bytes + 4)};
	if (!block.isDifferential())
	{
		return decodeIndividual(block);
	}
	const std::uint32_t base = block.colours >> 3 & 0x1F1F1F;
	const std::uint32_t sums = base + ((block.colours & 0x070707) ^ 0x040404) + 0x1C1C1C; // and 32 in each byte
	std::uint32_t second = kOpaque;
	for (unsigned int shift = 0; shift < 24; shift += 8)
	{
		const std::uint32_t sum = ((sums >> shift & 0xFF) - 32) & 0xFF;
		second |= (((sum >> 2) + sum * 8) & 0xFF) << shift;
	}
	return paintHalves(expandFive(base), second, block, kHalves.opaque);
}

ZORT_INLINE void storeWithoutAlpha(Row row, unsigned char* texels)
{
#if defined(__AVX2__)
	constexpr std::uint8_t kNone = 128;
	const Bytes16 packed =
	    shuffleBytes(as<std::uint8_t>(row), Bytes16{{0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, kNone, kNone, kNone, kNone}});
	std::memcpy(texels, &packed.v, 12);
#else
	using Pairs = Lanes<std::uint64_t, 2>;
	const auto pairs = as<std::uint64_t>(row);
	const Pairs packed = (pairs & Pairs::filled(0xFFFFFF)) | (pairs >> 8 & Pairs::filled(0xFFFFFF000000));
	const std::uint64_t low = packed[0] | packed[1] << 48;
	const auto high = static_cast<std::uint32_t>(packed[1] >> 16);
	std::memcpy(texels, &low, 8);
	std::memcpy(texels + 8, &high, 4);
#endif
}

/// Calls `decode(block, texels)` for each block.
template<unsigned int blockBytes, unsigned int texelBytes, typename Decode>
ZORT_INLINE void forEachBlock(const EtcRun& run, Decode&& decode)
{
	for (std::size_t i = 0; i < run.count; ++i)
	{
		decode(run.blocks + i * blockBytes, run.texels + i * 4 * texelBytes);
	}
}

ZORT_INLINE void storeRows(const Rows& rows, unsigned char* texels, std::size_t rowBytes)
{
	forEachRow(rows, [&](Row row, unsigned int y) { row.store(texels + y * rowBytes); });
}

void decodeRgb(const EtcRun& run)
{
	forEachBlock<8, 3>(
	    run, [&](const unsigned char* block, unsigned char* texels)
	    { forEachRow(decodeColours(block), [&](Row row, unsigned int y) { storeWithoutAlpha(row, texels + y * run.rowBytes); }); });
}

void decodeR11(const EtcRun& run, bool isSigned)
{
	forEachBlock<8, 2>(run,
	                   [&](const unsigned char* block, unsigned char* texels)
	                   {
		                   const EacWords values = decodeEacWords(block, isSigned);
		                   for (unsigned int y = 0; y < 4; y += 2)
		                   {
			                   lower(values.halves[y / 2]).store(texels + y * run.rowBytes);
			                   upper(values.halves[y / 2]).store(texels + (y + 1) * run.rowBytes);
		                   }
	                   });
}

void decodeRg11(const EtcRun& run, bool isSigned)
{
	forEachBlock<16, 4>(run,
	                    [&](const unsigned char* block, unsigned char* texels)
	                    {
		                    const EacWords red = decodeEacWords(block, isSigned);
		                    const EacWords green = decodeEacWords(block + 8, isSigned);
		                    for (unsigned int y = 0; y < 4; y += 2)
		                    {
			                    interleaveLow(red.halves[y / 2], green.halves[y / 2]).store(texels + y * run.rowBytes);
			                    interleaveHigh(red.halves[y / 2], green.halves[y / 2]).store(texels + (y + 1) * run.rowBytes);
		                    }
	                    });
}
} // namespace

template<ESimdLevel level>
void decodeEtcBlocks(const EtcRun& run, unsigned int format, bool isSigned)
{
	switch (format)
	{
	case ePF_ETC2_RGBA:
		forEachBlock<16, 4>(run, [&](const unsigned char* block, unsigned char* texels)
		                    { storeRows(withAlphas(decodeColours(block + 8), decodeEacBytes(block)), texels, run.rowBytes); });
		break;
	case ePF_ETC2_RGB_A1:
		forEachBlock<8, 4>(run, [&](const unsigned char* block, unsigned char* texels)
		                   { storeRows(decodeColoursOrClear(block), texels, run.rowBytes); });
		break;
	case ePF_EAC_R11:
		decodeR11(run, isSigned);
		break;
	case ePF_EAC_RG11:
		decodeRg11(run, isSigned);
		break;
	default:
		decodeRgb(run);
		break;
	}
}

template<ESimdLevel level>
void decodeEtc1Blocks(const EtcRun& run)
{
	forEachBlock<8, 4>(run, [&](const unsigned char* block, unsigned char* texels) { storeRows(decodeEtc1(block), texels, run.rowBytes); });
}

template void decodeEtcBlocks<kLanesLevel>(const EtcRun&, unsigned int, bool);
template void decodeEtc1Blocks<kLanesLevel>(const EtcRun&);
} // namespace zortexture
