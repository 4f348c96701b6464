#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "ChannelAccess.h"
#include "Channels.h"
#include "ElementDispatch.h"
#include "Simd/SimdLevel.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
// The same numbers in all layouts: an alpha element between the two, in a float layout, is neither.
constexpr unsigned int kLargestTransparentAlpha = 7;
constexpr unsigned int kSmallestOpaqueAlpha = 8;
/// How far the neighbourhood of a pixel reaches on each axis.
constexpr unsigned int kReach = 8;

/// The part of an axis of `size` pixels around a coordinate.
struct Span
{
	Span(unsigned int centre, unsigned int size)
	    : begin(centre - std::min(centre, kReach)), end(centre + 1 + std::min(size - 1 - centre, kReach))
	{
	}

	unsigned int begin;
	unsigned int end;
};

template<typename T>
bool isClear(const Pixel<T>& pixel)
{
	return pixel.a <= static_cast<T>(kLargestTransparentAlpha);
}
template<typename T>
bool isOpaque(const Pixel<T>& pixel)
{
	return pixel.a >= static_cast<T>(kSmallestOpaqueAlpha);
}

template<typename T>
T truncatedMean(float sum, float count)
{
	return toElement<T>(std::trunc(sum / count));
}

template<typename T>
void fill(Pixel<T>& pixel, const Pixel<float>& sum, unsigned int count)
{
	const auto divisor = static_cast<float>(count);
	pixel.r = count == 0 ? T{} : truncatedMean<T>(sum.r, divisor);
	pixel.g = count == 0 ? T{} : truncatedMean<T>(sum.g, divisor);
	pixel.b = count == 0 ? T{} : truncatedMean<T>(sum.b, divisor);
}

/// Gives a pixel the mean colour of the opaque pixels in a box, summed up in order; black when there are none.
template<typename T>
void fillFromBox(const Pixel<T>* image, std::size_t width, std::size_t height, const Span& spanX, const Span& spanY, const Span& spanZ,
                 Pixel<T>& pixel)
{
	Pixel<float> sum{};
	unsigned int count = 0;
	for (unsigned int z = spanZ.begin; z < spanZ.end; ++z)
	{
		for (unsigned int y = spanY.begin; y < spanY.end; ++y)
		{
			const Pixel<T>* row = image + (z * height + y) * width;
			for (unsigned int x = spanX.begin; x < spanX.end; ++x)
			{
				if (isOpaque(row[x]))
				{
					sum.r += static_cast<float>(row[x].r);
					sum.g += static_cast<float>(row[x].g);
					sum.b += static_cast<float>(row[x].b);
					++count;
				}
			}
		}
	}
	fill(pixel, sum, count);
}

/// The whole neighbourhood of every pixel. It needs no copy of the image: only clear pixels are written, and only opaque ones read.
template<typename T>
void bleedByBoxes(Pixel<T>* image, unsigned int width, unsigned int height, unsigned int depth)
{
	Pixel<T>* pixel = image;
	for (unsigned int z = 0; z < depth; ++z)
	{
		const Span spanZ(z, depth);
		for (unsigned int y = 0; y < height; ++y)
		{
			const Span spanY(y, height);
			for (unsigned int x = 0; x < width; ++x, ++pixel)
			{
				if (isClear(*pixel))
				{
					fillFromBox(image, width, height, Span(x, width), spanY, spanZ, *pixel);
				}
			}
		}
	}
}

/// The opaque pixels of a region: how many, and the sums of their colours, two numbers of 32 bits in each word. Regions are taken out
/// again, so that single steps may borrow from one number to the other; what is left in the end is right.
struct OpaqueSums
{
	std::uint64_t redGreen = 0;
	std::uint64_t blueCount = 0;

	OpaqueSums& operator+=(const OpaqueSums& other)
	{
		redGreen += other.redGreen;
		blueCount += other.blueCount;
		return *this;
	}
	OpaqueSums& operator-=(const OpaqueSums& other)
	{
		redGreen -= other.redGreen;
		blueCount -= other.blueCount;
		return *this;
	}
};

template<typename T>
OpaqueSums sumsOf(const Pixel<T>& pixel)
{
	const std::uint64_t mask = isOpaque(pixel) ? ~std::uint64_t{0} : 0;
	return {(std::uint64_t{pixel.g} << 32 | pixel.r) & mask, (std::uint64_t{1} << 32 | pixel.b) & mask};
}

/// The same with sums that run along each axis, whose cost does not depend on the size of the neighbourhood: of the columns of pixels
/// behind each other (in a volume), of these columns above each other, and of these side by side.
template<typename T>
class RunningSums
{
public:
	RunningSums(Pixel<T>* image, unsigned int width, unsigned int height, unsigned int depth)
	    : m_image(image), m_width(width), m_height(height), m_depth(depth), m_alongY(width)
	{
		if (depth > 1)
		{
			m_alongZ.resize(std::size_t{width} * height);
		}
	}

	void bleed()
	{
		forEachWindow(
		    m_depth, [&](unsigned int z) { moveAlongZ(z, true); }, [&](unsigned int z) { moveAlongZ(z, false); },
		    [&](unsigned int z)
		    {
			    std::fill(m_alongY.begin(), m_alongY.end(), OpaqueSums());
			    forEachWindow(
			        m_height, [&](unsigned int y) { moveAlongY(z, y, true); }, [&](unsigned int y) { moveAlongY(z, y, false); },
			        [&](unsigned int y) { bleedRow(y, z); });
		    });
	}

private:
	/// For each place on an axis: `enter` and `leave` what comes into its neighbourhood and what is left behind, and then `visit` it.
	template<typename Enter, typename Leave, typename Visit>
	static void forEachWindow(unsigned int size, Enter&& enter, Leave&& leave, Visit&& visit)
	{
		unsigned int begin = 0;
		unsigned int end = 0;
		for (unsigned int centre = 0; centre < size; ++centre)
		{
			const Span span(centre, size);
			for (; end < span.end; ++end)
			{
				enter(end);
			}
			for (; begin < span.begin; ++begin)
			{
				leave(begin);
			}
			visit(centre);
		}
	}

	template<typename Read>
	static void addAll(std::vector<OpaqueSums>& sums, bool isEntering, Read&& read)
	{
		for (std::size_t i = 0; i < sums.size(); ++i)
		{
			isEntering ? sums[i] += read(i) : sums[i] -= read(i);
		}
	}

	void moveAlongZ(unsigned int z, bool isEntering)
	{
		const Pixel<T>* const plane = m_image + std::size_t{z} * m_width * m_height;
		addAll(m_alongZ, isEntering, [plane](std::size_t i) { return sumsOf(plane[i]); });
	}

	void moveAlongY(unsigned int z, unsigned int y, bool isEntering)
	{
		if (m_depth > 1)
		{
			const OpaqueSums* const row = m_alongZ.data() + std::size_t{y} * m_width;
			addAll(m_alongY, isEntering, [row](std::size_t i) { return row[i]; });
			return;
		}
		const Pixel<T>* const row = m_image + (std::size_t{z} * m_height + y) * m_width;
		addAll(m_alongY, isEntering, [row](std::size_t i) { return sumsOf(row[i]); });
	}

	void bleedRow(unsigned int y, unsigned int z)
	{
		Pixel<T>* const row = m_image + (std::size_t{z} * m_height + y) * m_width;
		OpaqueSums sums;
		forEachWindow(
		    m_width, [&](unsigned int x) { sums += m_alongY[x]; }, [&](unsigned int x) { sums -= m_alongY[x]; },
		    [&](unsigned int x)
		    {
			    if (isClear(row[x]))
			    {
				    bleedPixel(row[x], sums, x, y, z);
			    }
		    });
	}

	void bleedPixel(Pixel<T>& pixel, const OpaqueSums& sums, unsigned int x, unsigned int y, unsigned int z) const
	{
		const auto red = static_cast<std::uint32_t>(sums.redGreen);
		const auto green = static_cast<std::uint32_t>(sums.redGreen >> 32);
		const auto blue = static_cast<std::uint32_t>(sums.blueCount);
		// A sum of floats is exact, and so the same in any order, while it is at most 2^24: 4913 pixels of 8 bits always are.
		constexpr std::uint32_t kLargestExact = 1u << 24;
		if (sizeof(T) > 1 && std::max({red, green, blue}) > kLargestExact)
		{
			fillFromBox(m_image, m_width, m_height, Span(x, m_width), Span(y, m_height), Span(z, m_depth), pixel);
			return;
		}
		fill(pixel, {static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue), 0.0f},
		     static_cast<unsigned int>(sums.blueCount >> 32));
	}

	Pixel<T>* m_image;
	unsigned int m_width;
	unsigned int m_height;
	unsigned int m_depth;
	std::vector<OpaqueSums> m_alongZ; ///< one for each pixel of a plane
	std::vector<OpaqueSums> m_alongY; ///< one for each pixel of a row
};
} // namespace

template<typename T>
bool Bleed(Pixel<T>* image, const unsigned int& width, const unsigned int& height, const unsigned int& depth)
{
	if (image == nullptr)
	{
		return false;
	}
	if constexpr (sizeof(T) <= 2)
	{
		if (simdLevel() != eSimdPlain)
		{
			try
			{
				RunningSums<T>(image, width, height, depth).bleed();
				return true;
			}
			catch (const std::bad_alloc&) // before anything is written
			{
			}
		}
	}
	bleedByBoxes(image, width, height, depth);
	return true;
}

bool Bleed(CZORTexture& texture)
{
	if (!isProcessable(texture))
	{
		return false;
	}
	return withElementType(texture.getChannelType(),
	                       [&]<typename T>(std::type_identity<T>)
	                       {
		                       bool result = true;
		                       forEachImage(texture,
		                                    [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
		                                    {
			                                    result &=
			                                        Bleed(pixelsOf<T>(texture, mipLevel, arrayMember, face), texture.getWidth(mipLevel),
			                                              texture.getHeight(mipLevel), texture.getDepth(mipLevel));
		                                    });
		                       return result;
	                       });
}

#define ZORT_BLEED(T) template ZORT_API bool Bleed(Pixel<T>*, const unsigned int&, const unsigned int&, const unsigned int&);
ZORT_BLEED(unsigned char)
ZORT_BLEED(unsigned short)
ZORT_BLEED(unsigned int)
ZORT_BLEED(float)
#undef ZORT_BLEED
} // namespace zortexture
