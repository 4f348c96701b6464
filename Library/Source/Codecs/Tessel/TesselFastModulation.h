/// @file TesselFastModulation.h
/// How the fast compressors choose, simulate and pack the modulation of one block. Overloads on the record make 2 and 4 bits a
/// pixel interchangeable.
#pragma once

#include "TesselCompressor.h"
#include "TesselPlanes.h"

namespace zortexture
{
/// What differs between the two bit rates.
template<typename Record>
struct TesselFit;

template<>
struct TesselFit<Tessel2bppRecord>
{
	static constexpr unsigned kPixels = 32;
	static constexpr float kThreshold = 128.0F;
	/// Whether first colours may come from a window that overlaps the neighbours.
	static constexpr bool kOverlaps = false;
};

template<>
struct TesselFit<Tessel4bppRecord>
{
	static constexpr unsigned kPixels = 16;
	static constexpr float kThreshold = 32.0F;
	static constexpr bool kOverlaps = true;
};

/// A direct index for every pixel: 0 when strictly nearer to A, else 3.
void calculate1BPPModulation(Tessel2bppRecord& record, const TesselBlockPixels& block);
/// The best index of every pixel with even x + y.
void calculate2BPPInterpolatedModulation(Tessel2bppRecord& record, const TesselBlockPixels& block);
/// The 32 weights of a mode. Neighbours outside the block do not count: at its edges weights of 9 and 10 come out, which then
/// wrap in the mix.
void getModulationValues(const Tessel2bppRecord& record, unsigned mode, unsigned char* out);

/// The best indices of mode 0 and of mode 1.
void calculateModulations_Standard(Tessel4bppRecord& record, const TesselBlockPixels& block);
void calculateModulations_Punchthrough(Tessel4bppRecord& record, const TesselBlockPixels& block);

/// The pixels that planes and record give in a mode. The punch-through index is not made transparent.
void decompressTesselBlock(const Tessel2bppRecord& record, const TesselBlockPixels& block, TesselPixel* out, unsigned mode);
void decompressTesselBlock(const Tessel4bppRecord& record, const TesselBlockPixels& block, TesselPixel* out, unsigned mode);

/// Chooses all indices of a block and its mode.
void chooseModulation(Tessel2bppRecord& record, const TesselBlockPixels& block);
void chooseModulation(Tessel4bppRecord& record, const TesselBlockPixels& block);

/// The weights of the chosen mode as the fit takes them.
void fitWeights(const Tessel2bppRecord& record, float* out);
void fitWeights(const Tessel4bppRecord& record, float* out);

/// Word 0 of a 2bpp block with the bits that select how left-out pixels are interpolated; of direct blocks as it is.
unsigned selectTesselInterpolation(unsigned word, unsigned mode);

/// Writes word 0 and the mode flag.
void packModulation(const Tessel2bppRecord& record, TesselBlockWords& block);
void packModulation(const Tessel4bppRecord& record, TesselBlockWords& block);
} // namespace zortexture
