#include "ByteChannels.h"

#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
constexpr std::size_t kPixelsInRegister = kLanesBytes / 4;

/// Bytes of a register of pixels moved about within each pixel.
class Mover
{
public:
	ZORT_INLINE explicit Mover(const ByteMoves& moves)
	{
		std::uint8_t kept[kLanesBytes];
#if defined(__AVX2__)
		std::uint8_t control[kLanesBytes];
		for (unsigned int i = 0; i < kLanesBytes; ++i)
		{
			const unsigned int from = moves.from[i % 4];
			kept[i] = from == ByteMoves::eKept ? 0xFF : 0;
			control[i] = static_cast<std::uint8_t>(from < 4 ? i % 16 / 4 * 4 + from : 0x80);
		}
		m_control = U8::load(control);
#else
		for (unsigned int turn = 0; turn < 4; ++turn)
		{
			std::uint8_t wanted[kLanesBytes];
			for (unsigned int i = 0; i < kLanesBytes; ++i)
			{
				const unsigned int from = moves.from[i % 4];
				kept[i] = from == ByteMoves::eKept ? 0xFF : 0;
				wanted[i] = from < 4 && (from + turn) % 4 == i % 4 ? 0xFF : 0;
			}
			m_wanted[turn] = U32::load(wanted);
		}
#endif
		m_kept = U8::load(kept);
	}

	ZORT_INLINE void move(const unsigned char* source, unsigned char* destination) const
	{
		const U8 kept = U8::load(destination) & m_kept;
#if defined(__AVX2__)
		(kept | shuffleBytes(U8::load(source), m_control)).store(destination);
#else
		// Without an instruction for it: the pixel turned by each number of bytes, and what is wanted of each turn.
		const U32 pixels = U32::load(source);
		U32 moved = pixels & m_wanted[0];
		moved |= (pixels << 8 | pixels >> 24) & m_wanted[1];
		moved |= (pixels << 16 | pixels >> 16) & m_wanted[2];
		moved |= (pixels << 24 | pixels >> 8) & m_wanted[3];
		(kept | as<std::uint8_t>(moved)).store(destination);
#endif
	}

private:
	U8 m_kept;
#if defined(__AVX2__)
	U8 m_control;
#else
	U32 m_wanted[4];
#endif
};

ZORT_INLINE void preMultiplyRegister(unsigned char* pixels)
{
	const U32 all = U32::load(pixels);
	const F32 factor = convert<float>(as<std::int32_t>(all >> 24)) / F32::filled(255.0f);
	U32 result = all & U32::filled(0xFF000000);
	for (int shift = 0; shift < 24; shift += 8)
	{
		const F32 channel = convert<float>(as<std::int32_t>((all >> shift) & U32::filled(0xFF)));
		result |= as<std::uint32_t>(truncated(channel * factor)) << shift;
	}
	result.store(pixels);
}
} // namespace

template<ESimdLevel level>
void moveBytes(const unsigned char* source, unsigned char* destination, std::size_t numPixels, const ByteMoves& moves)
{
	const Mover mover(moves);
	std::size_t i = 0;
	for (; i + kPixelsInRegister <= numPixels; i += kPixelsInRegister)
	{
		mover.move(source + 4 * i, destination + 4 * i);
	}
	if (i != numPixels)
	{
		unsigned char last[2][kLanesBytes] = {};
		std::memcpy(last[0], source + 4 * i, 4 * (numPixels - i));
		std::memcpy(last[1], destination + 4 * i, 4 * (numPixels - i));
		mover.move(last[0], last[1]);
		std::memcpy(destination + 4 * i, last[1], 4 * (numPixels - i));
	}
}

template<ESimdLevel level>
void preMultiplyBytes(unsigned char* pixels, std::size_t numPixels)
{
	std::size_t i = 0;
	for (; i + kPixelsInRegister <= numPixels; i += kPixelsInRegister)
	{
		preMultiplyRegister(pixels + 4 * i);
	}
	if (i != numPixels)
	{
		unsigned char last[kLanesBytes] = {};
		std::memcpy(last, pixels + 4 * i, 4 * (numPixels - i));
		preMultiplyRegister(last);
		std::memcpy(pixels + 4 * i, last, 4 * (numPixels - i));
	}
}

template void moveBytes<kLanesLevel>(const unsigned char*, unsigned char*, std::size_t, const ByteMoves&);
template void preMultiplyBytes<kLanesLevel>(unsigned char*, std::size_t);
} // namespace zortexture
