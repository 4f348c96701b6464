#include "PixelShuffle.h"

#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
#if defined(__AVX2__)
/// A register's 16 bytes of the pattern hold as many whole pixels as fit, whatever their sizes.
std::size_t shuffleBlocks(const SPixelShuffle& shuffle, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
{
	constexpr unsigned int kHalf = 16;
	const unsigned int inBytes = shuffle.sourceBytes;
	const unsigned int outBytes = shuffle.destinationBytes;
	const unsigned int pixelsOfHalf = kHalf / (inBytes > outBytes ? inBytes : outBytes);
	unsigned char from[kLanesBytes];
	unsigned char fill[kLanesBytes];
	for (unsigned int i = 0; i < kLanesBytes; ++i)
	{
		const unsigned int byte = i % kHalf % outBytes;
		const unsigned int pixel = i % kHalf / outBytes;
		const bool isUsed = pixel < pixelsOfHalf;
		const bool isMoved = isUsed && shuffle.from[byte] != SPixelShuffle::kNoByte;
		from[i] = isMoved ? static_cast<unsigned char>(pixel * inBytes + shuffle.from[byte]) : SPixelShuffle::kNoByte;
		fill[i] = isUsed && !isMoved ? shuffle.fill[byte] : 0;
	}
	const U8 pattern = U8::load(from);
	const U8 constants = U8::load(fill);
	const std::size_t inStep = static_cast<std::size_t>(pixelsOfHalf) * inBytes;
	const std::size_t outStep = static_cast<std::size_t>(pixelsOfHalf) * outBytes;
	using Half = Lanes<std::uint8_t, kHalf>;

	std::size_t done = 0;
	if (inStep == kHalf && outStep == kHalf)
	{
		for (; numPixels - done >= 2 * pixelsOfHalf; done += 2 * pixelsOfHalf)
		{
			(shuffleBytes(U8::load(source + done * inBytes), pattern) | constants).store(destination + done * outBytes);
		}
		return done;
	}
	const Half halfPattern = lower(pattern);
	const Half halfConstants = lower(constants);
	// Loads and stores of whole halves reach beyond the pixels that they are for, and must still end within the images.
	const std::size_t inSize = numPixels * inBytes;
	const std::size_t outSize = numPixels * outBytes;
	std::size_t in = 0;
	std::size_t out = 0;
	for (; in + inStep + kHalf <= inSize && out + outStep + kHalf <= outSize; done += 2 * pixelsOfHalf)
	{
		(shuffleBytes(Half::load(source + in), halfPattern) | halfConstants).store(destination + out);
		(shuffleBytes(Half::load(source + in + inStep), halfPattern) | halfConstants).store(destination + out + outStep);
		in += 2 * inStep;
		out += 2 * outStep;
	}
	return done;
}
#else
/// Without a shuffle of bytes: each byte shifted to its place, for pixels of four bytes alone.
std::size_t shuffleBlocks(const SPixelShuffle& shuffle, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
{
	if (shuffle.sourceBytes != 4 || shuffle.destinationBytes != 4)
	{
		return 0;
	}
	int right[4];
	U32 masks[4];
	std::uint32_t fill = 0;
	for (unsigned int byte = 0; byte < 4; ++byte)
	{
		const bool isMoved = shuffle.from[byte] != SPixelShuffle::kNoByte;
		right[byte] = isMoved ? shuffle.from[byte] * 8 : 0;
		masks[byte] = U32::filled(isMoved ? 0xFFu : 0u);
		fill |= static_cast<std::uint32_t>(shuffle.fill[byte]) << (byte * 8);
	}
	const U32 constants = U32::filled(fill);
	std::size_t done = 0;
	for (; numPixels - done >= U32::kCount; done += U32::kCount)
	{
		const U32 pixels = U32::load(source + done * 4);
		const U32 low = ((pixels >> right[0]) & masks[0]) | (((pixels >> right[1]) & masks[1]) << 8);
		const U32 high = (((pixels >> right[2]) & masks[2]) << 16) | (((pixels >> right[3]) & masks[3]) << 24);
		(low | high | constants).store(destination + done * 4);
	}
	return done;
}
#endif
} // namespace

template<ESimdLevel level>
std::size_t shufflePixels(const SPixelShuffle& shuffle, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
{
	return shuffleBlocks(shuffle, source, destination, numPixels);
}
template std::size_t shufflePixels<kLanesLevel>(const SPixelShuffle&, const unsigned char*, unsigned char*, std::size_t);
} // namespace zortexture
