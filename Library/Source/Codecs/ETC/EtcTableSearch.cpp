/// @file EtcTableSearch.cpp
/// The table searches on half blocks by their names.
#include "Codecs/ETC/EtcTableSearch.h"

#include "Codecs/ETC/EtcFastSearch.h"

namespace zortexture
{
namespace
{
template<typename Scale, HalfShape Shape>
typename Scale::Error withTable(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits)
{
	const auto choice =
	    matchTable<Scale, Shape>(loadHalfTexels<Shape>(source, width, startX, startY), base, static_cast<unsigned int>(row));
	highBits = choice.bits.highBits;
	lowBits = choice.bits.lowBits;
	return choice.error;
}

template<typename Scale, HalfShape Shape>
typename Scale::Error tryAllTables(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                   const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits)
{
	const auto choice = searchTables<Scale, Shape>(loadHalfTexels<Shape>(source, width, startX, startY), base);
	table = choice.bits.table;
	highBits = choice.bits.highBits;
	lowBits = choice.bits.lowBits;
	return choice.error;
}
} // namespace

unsigned int compressBlockWithTable2x4(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                       const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits)
{
	return withTable<PlainScale, HalfShape::Upright>(source, width, startX, startY, base, row, highBits, lowBits);
}

unsigned int compressBlockWithTable4x2(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                       const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits)
{
	return withTable<PlainScale, HalfShape::Flipped>(source, width, startX, startY, base, row, highBits, lowBits);
}

float compressBlockWithTable2x4percep(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits)
{
	return withTable<PerceptualScale, HalfShape::Upright>(source, width, startX, startY, base, row, highBits, lowBits);
}

float compressBlockWithTable4x2percep(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits)
{
	return withTable<PerceptualScale, HalfShape::Flipped>(source, width, startX, startY, base, row, highBits, lowBits);
}

unsigned int compressBlockWithTable2x4percep1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits)
{
	return withTable<Perceptual1000Scale, HalfShape::Upright>(source, width, startX, startY, base, row, highBits, lowBits);
}

unsigned int compressBlockWithTable4x2percep1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits)
{
	return withTable<Perceptual1000Scale, HalfShape::Flipped>(source, width, startX, startY, base, row, highBits, lowBits);
}

unsigned int tryalltables_3bittable2x4(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                       const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits)
{
	return tryAllTables<PlainScale, HalfShape::Upright>(source, width, startX, startY, base, table, highBits, lowBits);
}

unsigned int tryalltables_3bittable4x2(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                       const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits)
{
	return tryAllTables<PlainScale, HalfShape::Flipped>(source, width, startX, startY, base, table, highBits, lowBits);
}

float tryalltables_3bittable2x4percep(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits)
{
	return tryAllTables<PerceptualScale, HalfShape::Upright>(source, width, startX, startY, base, table, highBits, lowBits);
}

float tryalltables_3bittable4x2percep(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits)
{
	return tryAllTables<PerceptualScale, HalfShape::Flipped>(source, width, startX, startY, base, table, highBits, lowBits);
}

unsigned int tryalltables_3bittable2x4percep1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits,
                                                 unsigned int& lowBits)
{
	return tryAllTables<Perceptual1000Scale, HalfShape::Upright>(source, width, startX, startY, base, table, highBits, lowBits);
}

unsigned int tryalltables_3bittable4x2percep1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits,
                                                 unsigned int& lowBits)
{
	return tryAllTables<Perceptual1000Scale, HalfShape::Flipped>(source, width, startX, startY, base, table, highBits, lowBits);
}

} // namespace zortexture
