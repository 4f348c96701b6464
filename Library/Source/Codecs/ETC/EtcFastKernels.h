/// @file EtcFastKernels.h
/// The searches of the fast levels in their vector forms. The plain forms are those of EtcFastSearch.h, which EtcLadder.cpp puts together;
/// here the same choices are made by comparing numbers that need not be the errors themselves as long as they order the candidates alike.
#pragma once

#include <cstdint>

#include "Codecs/ETC/EtcBlock.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
/// The measure that a search goes by: plain squares, or squares weighted by 299, 587 and 114.
enum class EtcMeasure
{
	Plain,
	Perceptual
};

/// A block and its error in integers of the measure.
struct EtcCandidate
{
	unsigned int word1;
	unsigned int word2;
	unsigned int error;
	/// Two candidates came out so close that only the order of floating-point additions tells which one the search takes: the plain form
	/// has to be asked. Words and error mean nothing then.
	bool isOpen;
};

/// The better of the individual and differential blocks by averages and by joint quantisation, words as stored. `colours` are 16 texels
/// R, G, B in rows.
template<ESimdLevel level, EtcMeasure measure>
EtcCandidate searchDiffFlipFast(const unsigned char (&colours)[48]);
} // namespace zortexture
