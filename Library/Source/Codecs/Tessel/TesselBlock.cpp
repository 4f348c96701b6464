#include "TesselBlock.h"

#include "TesselCompressor.h"

namespace zortexture
{
namespace
{
constexpr unsigned kFlagBit = 1U;
constexpr unsigned kOpaqueA = 1U << 15;
constexpr unsigned kHard = 1U << 15;
constexpr unsigned kOpaqueB = 1U << 31;
/// The fields of colour A without flags; those of colour B are the bits 16 to 30.
constexpr unsigned kFieldsA = 0x7FFEU;
constexpr unsigned kFieldsB = 0x7FFF0000U;

unsigned readLittleEndian(const unsigned char* bytes)
{
	return bytes[0] | (unsigned(bytes[1]) << 8) | (unsigned(bytes[2]) << 16) | (unsigned(bytes[3]) << 24);
}

void writeLittleEndian(unsigned char* bytes, unsigned word)
{
	for (int i = 0; i < 4; ++i)
	{
		bytes[i] = static_cast<unsigned char>(word >> (8 * i));
	}
}

unsigned expand3To5(unsigned value)
{
	return (value << 2) | (value >> 1);
}

unsigned expand4To5(unsigned value)
{
	return (value << 1) | (value >> 3);
}

unsigned packWorking(unsigned red, unsigned green, unsigned blue, unsigned alpha)
{
	return red | (green << 8) | (blue << 16) | (alpha << 24);
}

/// The top bits of a channel of an 8-bit colour.
unsigned topBits(unsigned colour, unsigned channel, unsigned bits)
{
	return ((colour >> (8 * channel)) & 0xFF) >> (8 - bits);
}

unsigned packFieldsA(unsigned colour, bool opaque)
{
	if (opaque)
	{
		return (topBits(colour, 0, 5) << 10) | (topBits(colour, 1, 5) << 5) | (topBits(colour, 2, 4) << 1);
	}
	return (topBits(colour, 3, 3) << 12) | (topBits(colour, 0, 4) << 8) | (topBits(colour, 1, 4) << 4) | (topBits(colour, 2, 3) << 1);
}

unsigned packFieldsB(unsigned colour, bool opaque)
{
	if (opaque)
	{
		return (topBits(colour, 0, 5) << 26) | (topBits(colour, 1, 5) << 21) | (topBits(colour, 2, 5) << 16);
	}
	return (topBits(colour, 3, 3) << 28) | (topBits(colour, 0, 4) << 24) | (topBits(colour, 1, 4) << 20) | (topBits(colour, 2, 4) << 16);
}
} // namespace

unsigned expandTesselColourA(unsigned colourWord, bool opaque)
{
	if (opaque)
	{
		return packWorking((colourWord >> 10) & 31, (colourWord >> 5) & 31, expand4To5((colourWord >> 1) & 15), 15);
	}
	return packWorking(expand4To5((colourWord >> 8) & 15), expand4To5((colourWord >> 4) & 15), expand3To5((colourWord >> 1) & 7),
	                   ((colourWord >> 12) & 7) * 2);
}

unsigned expandTesselColourB(unsigned colourWord, bool opaque)
{
	if (opaque)
	{
		return packWorking((colourWord >> 26) & 31, (colourWord >> 21) & 31, (colourWord >> 16) & 31, 15);
	}
	return packWorking(expand4To5((colourWord >> 24) & 15), expand4To5((colourWord >> 20) & 15), expand4To5((colourWord >> 16) & 15),
	                   ((colourWord >> 28) & 7) * 2);
}

unsigned int TesselBlockWords::getModulationWord() const
{
	return readLittleEndian(m_bytes);
}

void TesselBlockWords::setModulationWord(unsigned int word)
{
	writeLittleEndian(m_bytes, word);
}

unsigned int TesselBlockWords::getColourWord() const
{
	return readLittleEndian(m_bytes + 4);
}

void TesselBlockWords::setColourWord(unsigned int word)
{
	writeLittleEndian(m_bytes + 4, word);
}

void TesselBlockWords::storeModulationValue4BPP(unsigned int x, unsigned int y, unsigned int value)
{
	const unsigned position = 2 * (4 * (y & 3) + (x & 3));
	setModulationWord((getModulationWord() & ~(3U << position)) | ((value & 3) << position));
}

bool TesselBlockWords::getModulationFlag() const
{
	return (getColourWord() & kFlagBit) != 0;
}

void TesselBlockWords::setModulationFlag(bool flag)
{
	setColourWord((getColourWord() & ~kFlagBit) | (flag ? kFlagBit : 0));
}

unsigned int TesselBlockData::getColourA() const
{
	const unsigned word = getColourWord();
	return expandTesselColourA(word, (word & kOpaqueA) != 0);
}

unsigned int TesselBlockData::getColourB() const
{
	const unsigned word = getColourWord();
	return expandTesselColourB(word, (word & kOpaqueB) != 0);
}

void TesselBlockData::setColourA(unsigned int colour)
{
	const bool opaque = (colour >> 24) == 255;
	setColourWord((getColourWord() & ~(kFieldsA | kOpaqueA)) | packFieldsA(colour, opaque) | (opaque ? kOpaqueA : 0));
}

void TesselBlockData::setColourB(unsigned int colour)
{
	const bool opaque = (colour >> 24) == 255;
	setColourWord((getColourWord() & ~(kFieldsB | kOpaqueB)) | packFieldsB(colour, opaque) | (opaque ? kOpaqueB : 0));
}

unsigned int TesselIIBlockData::getColourA() const
{
	const unsigned word = getColourWord();
	return expandTesselColourA(word, (word & kOpaqueB) != 0);
}

unsigned int TesselIIBlockData::getColourB() const
{
	const unsigned word = getColourWord();
	return expandTesselColourB(word, (word & kOpaqueB) != 0);
}

void TesselIIBlockData::setColours(unsigned int colourA, unsigned int colourB)
{
	const bool opaque = ((colourA & colourB) >> 24) == 255;
	setColourWord((getColourWord() & (kFlagBit | kHard)) | packFieldsA(colourA, opaque) | packFieldsB(colourB, opaque) |
	              (opaque ? kOpaqueB : 0));
}

bool TesselIIBlockData::getHardTransitionFlag() const
{
	return (getColourWord() & kHard) != 0;
}

void TesselIIBlockData::setHardTransitionFlag(bool flag)
{
	setColourWord((getColourWord() & ~kHard) | (flag ? kHard : 0));
}
} // namespace zortexture
