#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>

#include "Codecs/Tessel/TesselTwiddle.h"
#include "TesselCompressor.h"
#include "TesselOracle.h"

using namespace zortexture;

namespace
{
/// red, green, blue, alpha
constexpr unsigned rgba(unsigned r, unsigned g, unsigned b, unsigned a)
{
	return r | (g << 8) | (b << 16) | (a << 24);
}
} // namespace

TEST(TesselBlock, ReadsEveryFieldOfTheColourWord)
{
	const struct
	{
		unsigned word;
		unsigned a;
		unsigned b;
		unsigned secondA;
		unsigned secondB;
	} cases[] = {
	    // Opaque fields one by one: the lowest and the highest bit of each.
	    {0x80008000U | (0x11U << 10), rgba(17, 0, 0, 15), rgba(0, 0, 0, 15), rgba(17, 0, 0, 15), rgba(0, 0, 0, 15)},
	    {0x80008000U | (0x11U << 5), rgba(0, 17, 0, 15), rgba(0, 0, 0, 15), rgba(0, 17, 0, 15), rgba(0, 0, 0, 15)},
	    {0x80008000U | (0x9U << 1), rgba(0, 0, 19, 15), rgba(0, 0, 0, 15), rgba(0, 0, 19, 15), rgba(0, 0, 0, 15)},
	    {0x80008000U | (0x11U << 26), rgba(0, 0, 0, 15), rgba(17, 0, 0, 15), rgba(0, 0, 0, 15), rgba(17, 0, 0, 15)},
	    {0x80008000U | (0x11U << 21), rgba(0, 0, 0, 15), rgba(0, 17, 0, 15), rgba(0, 0, 0, 15), rgba(0, 17, 0, 15)},
	    {0x80008000U | (0x11U << 16), rgba(0, 0, 0, 15), rgba(0, 0, 17, 15), rgba(0, 0, 0, 15), rgba(0, 0, 17, 15)},
	    // Translucent fields.
	    {0x5U << 12, rgba(0, 0, 0, 10), 0, rgba(0, 0, 0, 10), 0},
	    {0x9U << 8, rgba(19, 0, 0, 0), 0, rgba(19, 0, 0, 0), 0},
	    {0x9U << 4, rgba(0, 19, 0, 0), 0, rgba(0, 19, 0, 0), 0},
	    {0x5U << 1, rgba(0, 0, 22, 0), 0, rgba(0, 0, 22, 0), 0},
	    {0x7U << 28, 0, rgba(0, 0, 0, 14), 0, rgba(0, 0, 0, 14)},
	    {0x9U << 24, 0, rgba(19, 0, 0, 0), 0, rgba(19, 0, 0, 0)},
	    {0x9U << 20, 0, rgba(0, 19, 0, 0), 0, rgba(0, 19, 0, 0)},
	    {0x9U << 16, 0, rgba(0, 0, 19, 0), 0, rgba(0, 0, 19, 0)},
	    // The mode flag is no part of a colour.
	    {0x00000001U, 0, 0, 0, 0},
	    // Each its own flag in the first generation; bit 31 for both in the second, whatever bit 15 says.
	    {0x80007FFEU, rgba(31, 31, 31, 14), rgba(0, 0, 0, 15), rgba(31, 31, 31, 15), rgba(0, 0, 0, 15)},
	    {0x7FFFFFFEU, rgba(31, 31, 31, 15), rgba(31, 31, 31, 14), rgba(31, 31, 31, 14), rgba(31, 31, 31, 14)},
	};
	for (const auto& test : cases)
	{
		TesselBlockData first;
		first.setColourWord(test.word);
		EXPECT_EQ(first.getColourA(), test.a) << std::hex << test.word;
		EXPECT_EQ(first.getColourB(), test.b) << std::hex << test.word;
		TesselIIBlockData second;
		second.setColourWord(test.word);
		EXPECT_EQ(second.getColourA(), test.secondA) << std::hex << test.word;
		EXPECT_EQ(second.getColourB(), test.secondB) << std::hex << test.word;
	}
}

TEST(TesselBlock, PacksTruncatedAndKeepsTheOtherFields)
{
	const unsigned opaque = rgba(0xFF, 0x0F, 0xAF, 255); // 31, 1, 10 (4 bits) or 21 (5 bits)
	const unsigned nearly = rgba(0xFF, 0x1F, 0xAF, 254); // alpha 7; 15, 1, 5 (3 bits) or 10 (4 bits)
	const unsigned opaqueA = 0x8000U | (31U << 10) | (1U << 5) | (10U << 1);
	const unsigned nearlyA = (7U << 12) | (15U << 8) | (1U << 4) | (5U << 1);
	const unsigned opaqueB = 0x80000000U | (31U << 26) | (1U << 21) | (21U << 16);
	const unsigned nearlyB = (7U << 28) | (15U << 24) | (1U << 20) | (10U << 16);
	for (const unsigned before : {0U, 0xFFFFFFFFU, 0x5A5AA5A5U})
	{
		const auto packed = [before](auto&& write)
		{
			TesselBlockData block;
			block.setColourWord(before);
			write(block);
			return block.getColourWord();
		};
		EXPECT_EQ(packed([&](auto& b) { b.setColourA(opaque); }), (before & 0xFFFF0001U) | opaqueA);
		EXPECT_EQ(packed([&](auto& b) { b.setColourA(nearly); }), (before & 0xFFFF0001U) | nearlyA);
		EXPECT_EQ(packed([&](auto& b) { b.setColourB(opaque); }), (before & 0x0000FFFFU) | opaqueB);
		EXPECT_EQ(packed([&](auto& b) { b.setColourB(nearly); }), (before & 0x0000FFFFU) | nearlyB);

		TesselIIBlockData second;
		second.setColourWord(before);
		second.setColours(opaque, nearly);
		EXPECT_EQ(second.getColourWord(), (before & 0x8001U) | (7U << 12) | (15U << 8) | (0U << 4) | (5U << 1) | nearlyB);
		second.setColours(opaque, opaque);
		EXPECT_EQ(second.getColourWord(), (before & 0x8001U) | (opaqueA & 0x7FFEU) | opaqueB);
	}
}

TEST(TesselBlock, StoresWordsLittleEndianAndModulationByPixel)
{
	TesselBlockData block;
	block.setModulationWord(0xFFFFFFFFU);
	block.storeModulationValue4BPP(1, 2, 1);
	EXPECT_EQ(block.getModulationWord(), 0xFFF7FFFFU);
	block.setModulationWord(0x04030201U);
	block.setColourWord(0x08070605U);
	const unsigned char bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
	EXPECT_EQ(std::memcmp(&block, bytes, 8), 0);
	block.setModulationFlag(false);
	EXPECT_EQ(block.getColourWord(), 0x08070604U);
}

TEST(TesselTwiddle, EqualsTheListOfBits)
{
	for (unsigned numY = 1; numY <= 19; ++numY)
	{
		for (unsigned numX = 1; numX <= 19; ++numX)
		{
			for (unsigned by = 0; by < numY; ++by)
			{
				for (unsigned bx = 0; bx < numX; ++bx)
				{
					ASSERT_EQ(TesselCompressor::getTwiddleOffset(numX, numY, bx, by), oracleTwiddle(numX, numY, bx, by))
					    << bx << "," << by << " of " << numX << "x" << numY;
				}
			}
		}
	}
	// y0 below x0 below what remains of x; one place past the data where counts are no powers of two; the widest coordinates.
	EXPECT_EQ(twiddledBlockIndex(4, 2, 1, 0), 2U);
	EXPECT_EQ(twiddledBlockIndex(4, 2, 2, 1), 5U);
	EXPECT_EQ(twiddledBlockIndex(6, 6, 5, 5), 51U);
	EXPECT_EQ(twiddledBlockIndex(0xFFFFFFFFU, 0xFFFFFFFFU, 0xFFFFFFFFU, 0xFFFFFFFFU), 0xFFFFFFFFFFFFFFFFULL);
	EXPECT_EQ(twiddledBlockIndex(1, 0xFFFFFFFFU, 0, 0xFFFFFFFEU), 0xFFFFFFFEULL);
}
