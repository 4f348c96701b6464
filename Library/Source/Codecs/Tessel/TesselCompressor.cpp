#include "TesselCompressor.h"

#include "TesselTwiddle.h"

namespace zortexture
{
unsigned int TesselCompressor::getTwiddleOffset(unsigned int numX, unsigned int numY, unsigned int blockX, unsigned int blockY)
{
	return static_cast<unsigned>(twiddledBlockIndex(numX, numY, blockX, blockY));
}
} // namespace zortexture
