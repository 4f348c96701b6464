// Any texture to any format, nonsense layouts and lying headers included. The first bytes choose, the rest are pixels.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "Transcode.h"

using namespace zortexture;

namespace
{
class CByteSource
{
public:
	CByteSource(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size)
	{
	}

	unsigned int next()
	{
		return m_position < m_size ? m_data[m_position++] : 0u;
	}

	/// A number from 1 to `limit`.
	unsigned int count(unsigned int limit)
	{
		return next() % limit + 1;
	}

	/// Repeats the bytes that are left over a whole buffer.
	void fill(unsigned char* buffer, std::size_t size) const
	{
		for (std::size_t i = 0; i < size && m_position < m_size; ++i)
		{
			buffer[i] = m_data[m_position + i % (m_size - m_position)];
		}
	}

private:
	const std::uint8_t* m_data;
	std::size_t m_size;
	std::size_t m_position = 0;
};

/// A compressed format (or a number of none), a plausible layout, or one of any widths.
PixelType anyPixelType(CByteSource& source)
{
	const unsigned int kind = source.next() % 4;
	if (kind < 2)
	{
		return PixelType(source.next() % 54);
	}
	constexpr unsigned char kWidths[] = {8, 8, 16, 32, 0, 1, 2, 3, 4, 5, 6, 10, 11, 16, 24, 32};
	PixelType type(0ull);
	for (unsigned int position = 0; position < 4; ++position)
	{
		type.channelName[position] = static_cast<unsigned char>("rgbalix"[source.next() % 8]);
		const unsigned int width = source.next();
		type.channelBits[position] = kind == 2 ? kWidths[width % 16] : static_cast<unsigned char>(width);
	}
	return type;
}

/// Formats of the external encoder: no business of a fuzzer, which would start it some thousand times.
bool isASTC(PixelType type)
{
	return type.isCompressed() && getCodecType(static_cast<EZORTPixelFormat>(type.id)) == eCodecASTC;
}

void transcodeAny(CByteSource& source)
{
	const PixelType from = anyPixelType(source);
	const PixelType to = anyPixelType(source);
	if (isASTC(from) || isASTC(to))
	{
		return;
	}
	const auto fromType = static_cast<EZORTVariableType>(source.next() % 15);
	const auto toType = static_cast<EZORTVariableType>(source.next() % 15);
	const unsigned int options = source.next();
	const auto fromSpace = static_cast<EZORTColourSpace>(options & 1);
	const auto toSpace = static_cast<EZORTColourSpace>(options >> 1 & 1);
	const auto quality = static_cast<ECompressorQuality>(options >> 2 & 1);
	const bool dither = (options & 8) != 0;
	const unsigned int width = source.count(20);
	const unsigned int height = source.count(20);
	const unsigned int depth = (options & 16) != 0 ? source.count(5) : 1;
	const unsigned int levels = source.count(8);
	CZORTexture texture(CZORTextureHeader(from.id, height, width, depth, levels, source.count(2), source.count(2), fromSpace, fromType));
	if ((options & 32) != 0)
	{
		// The header grows, the block does not.
		texture.setWidth(width * (source.next() << 16));
		texture.setNumMIPLevels(source.count(40));
	}
	else
	{
		source.fill(static_cast<unsigned char*>(texture.getDataPtr()), texture.getDataSize());
	}

	const bool isWhole = Transcode(texture, to, toType, toSpace, quality, dither);
	if (isWhole && (texture.getPixelType().id != to.id || !texture.isDataComplete()))
	{
		std::abort();
	}
	if (texture.isDataComplete() && texture.getDataSize() != 0)
	{
		// A block shorter than its header says would be read past its end here.
		const volatile unsigned char* const block = static_cast<const unsigned char*>(texture.getDataPtr());
		static_cast<void>(block[texture.getDataSize() - 1]);
	}
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
	CByteSource source(data, size);
	try
	{
		transcodeAny(source);
	}
	catch (const std::bad_alloc&)
	{
		// Layouts of huge pixels may be refused by the memory limit.
	}
	return 0;
}
