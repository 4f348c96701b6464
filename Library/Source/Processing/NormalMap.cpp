#include "NormalMap.h"

#include <cmath>
#include <cstddef>
#include <utility>

#include "ElementDispatch.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kNumElements = 4;

/// The element of the output pixel that each value goes to; kNumElements, a slot that nothing reads, for values that the
/// order does not name.
struct ElementOrder
{
	unsigned int x = kNumElements;
	unsigned int y = kNumElements;
	unsigned int z = kNumElements;
	unsigned int height = kNumElements;
};

ElementOrder parseOrder(const char* channelOrder)
{
	ElementOrder order;
	for (unsigned int i = 0; i < kNumElements && channelOrder[i] != '\0'; ++i)
	{
		switch (channelOrder[i])
		{
		case 'x':
			order.x = i;
			break;
		case 'y':
			order.y = i;
			break;
		case 'z':
			order.z = i;
			break;
		case 'h':
			order.height = i;
			break;
		default:
			break;
		}
	}
	return order;
}

/// Lower case without regard to the locale, since the letters end up in files.
std::string toLowerCase(std::string text)
{
	for (char& letter : text)
	{
		if (letter >= 'A' && letter <= 'Z')
		{
			letter = static_cast<char>(letter - 'A' + 'a');
		}
	}
	return text;
}

/// The height of a pixel as a share of the element type's range.
template<typename T>
float heightOf(const Pixel<T>& pixel)
{
	if constexpr (std::is_same_v<T, unsigned int>)
	{
		return static_cast<float>(pixel.r) * 2.3283064e-10f; // 2^-32 to the precision of float
	}
	else
	{
		return static_cast<float>(pixel.r) / kElementCeiling<T>;
	}
}

/// The output pixel for a height and its differences, which the scale has been applied to.
Pixel<float> packNormal(float dx, float dy, float height, const ElementOrder& order)
{
	static constexpr float spfWhite[kNumElements] = {1.0f, 1.0f, 1.0f, 1.0f};

	const double squares = static_cast<double>(dx) * dx + static_cast<double>(dy) * dy;
	const float length = static_cast<float>(std::sqrt(squares + 1.0));
	float elements[kNumElements + 1] = {spfWhite[0], spfWhite[1], spfWhite[2], spfWhite[3]};
	elements[order.x] = dx / length * 0.5f + 0.5f;
	elements[order.y] = dy / length * 0.5f + 0.5f;
	elements[order.z] = 1.0f / length * 0.5f + 0.5f;
	elements[order.height] = height;
	return {elements[0], elements[1], elements[2], elements[3]};
}

/// One row of the normal map. The first and the last column stand apart, so that the loop between them finds its
/// neighbours at fixed distances.
template<typename T>
void createRow(const Pixel<T>* row, const Pixel<T>* above, const Pixel<T>* below, Pixel<float>* destination, unsigned int width,
               float scale, const ElementOrder& order)
{
	const auto create = [&](unsigned int x, unsigned int left, unsigned int right)
	{
		const float dx = (heightOf(row[left]) - heightOf(row[right])) * scale;
		const float dy = (heightOf(above[x]) - heightOf(below[x])) * scale;
		destination[x] = packNormal(dx, dy, heightOf(row[x]), order);
	};
	const unsigned int last = width - 1;
	create(0, last, width > 1 ? 1 : 0);
	for (unsigned int x = 1; x < last; ++x)
	{
		create(x, x - 1, x + 1);
	}
	if (width > 1)
	{
		create(last, last - 1, 0);
	}
}
} // namespace

template<typename T>
bool CreateNormalMap(Pixel<T>* source, Pixel<float>* destination, unsigned int width, unsigned int height, unsigned int depth, float scale,
                     const char* channelOrder)
{
	if (scale == 0.0f || source == nullptr || destination == nullptr)
	{
		return false;
	}
	const ElementOrder order = parseOrder(channelOrder != nullptr ? channelOrder : "xyz");
	if (width == 0)
	{
		return true;
	}
	for (unsigned int z = 0; z < depth; ++z)
	{
		for (unsigned int y = 0; y < height; ++y)
		{
			const std::size_t offset = (std::size_t{z} * height + y) * width;
			const Pixel<T>* row = source + offset;
			// The rows wrap to those of the first slice, whichever slice they are in.
			const Pixel<T>* above = y > 0 ? row - width : source + std::size_t{height - 1} * width;
			const Pixel<T>* below = y + 1 < height ? row + width : source;
			createRow(row, above, below, destination + offset, width, scale, order);
		}
	}
	return true;
}

template ZORT_API bool CreateNormalMap<unsigned char>(Pixel<unsigned char>*, Pixel<float>*, unsigned int, unsigned int, unsigned int, float,
                                                      const char*);
template ZORT_API bool CreateNormalMap<unsigned short>(Pixel<unsigned short>*, Pixel<float>*, unsigned int, unsigned int, unsigned int,
                                                       float, const char*);
template ZORT_API bool CreateNormalMap<unsigned int>(Pixel<unsigned int>*, Pixel<float>*, unsigned int, unsigned int, unsigned int, float,
                                                     const char*);
template ZORT_API bool CreateNormalMap<float>(Pixel<float>*, Pixel<float>*, unsigned int, unsigned int, unsigned int, float, const char*);

bool GenerateNormalMap(CZORTexture& texture, float scale, const std::string& channelOrder)
{
	if (!isProcessable(texture))
	{
		return false;
	}
	CZORTextureHeader newHeader(texture.getHeader());
	newHeader.setPixelFormat(ZORStandard32PixelType);
	newHeader.setChannelType(eVT_SignedFloat);
	CZORTexture newTexture = createTexture(newHeader);
	if (!newTexture.isDataComplete())
	{
		return false;
	}

	const std::string order = toLowerCase(channelOrder);
	bool result = false;
	forEachImage(texture,
	             [&](unsigned int level, unsigned int arrayMember, unsigned int face)
	             {
		             result = withElementType(texture.getChannelType(),
		                                      [&](auto tag)
		                                      {
			                                      using T = typename decltype(tag)::type;
			                                      return CreateNormalMap(pixelsOf<T>(texture, level, arrayMember, face),
			                                                             pixelsOf<float>(newTexture, level, arrayMember, face),
			                                                             texture.getWidth(level), texture.getHeight(level),
			                                                             texture.getDepth(level), scale, order.c_str());
		                                      });
	             });
	texture = std::move(newTexture);
	texture.setBumpMap(scale, order);
	return result;
}
} // namespace zortexture
