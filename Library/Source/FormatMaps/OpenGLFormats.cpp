#include <algorithm>
#include <optional>

#include "FormatMaps.h"
#include "OpenGLFormatTable.h"

namespace zortexture
{
namespace
{
/// The five outputs of the forward map.
struct OpenGLOutputs
{
	unsigned int& internalFormat;
	unsigned int& baseInternalFormat;
	unsigned int& format;
	unsigned int& type;
	unsigned int& typeSize;

	void clear() const
	{
		internalFormat = baseInternalFormat = format = type = typeSize = 0;
	}

	void set(const OpenGLUncompressedRow& row, EZORTColourSpace colourSpace) const
	{
		internalFormat = colourSpace == eCS_sRGB && row.internalFormatSRGB != kNoConstant ? row.internalFormatSRGB : row.internalFormat;
		baseInternalFormat = row.format;
		format = row.format;
		type = row.type;
		typeSize = row.typeSize;
	}
};

bool findCompressed(unsigned long long pixelFormat, EZORTVariableType channelType, EZORTColourSpace colourSpace,
                    const OpenGLOutputs& outputs)
{
	if (pixelFormat > ePF_NumCompressedPFs)
	{
		outputs.clear();
		return false;
	}
	// A format without a name still gets these three, and keeps the caller's internal formats.
	outputs.format = 0;
	outputs.type = 0;
	outputs.typeSize = 1;
	if (pixelFormat == kOpenGLSharedExponent.pixelFormat)
	{
		outputs.set(kOpenGLSharedExponent, colourSpace);
		return true;
	}
	const bool isSignedType = isSigned(channelType);
	for (const OpenGLCompressedRow& row : kOpenGLCompressed)
	{
		if (row.pixelFormat == pixelFormat && rowServes(row.channelType, channelType, isSignedType))
		{
			outputs.baseInternalFormat = row.baseInternalFormat;
			outputs.internalFormat =
			    colourSpace == eCS_sRGB && row.internalFormatSRGB != kNoConstant ? row.internalFormatSRGB : row.internalFormat;
			return true;
		}
	}
	return false;
}

bool findUncompressed(unsigned long long pixelFormat, EZORTVariableType channelType, EZORTColourSpace colourSpace,
                      const OpenGLOutputs& outputs)
{
	for (const OpenGLUncompressedRow& row : kOpenGLUncompressed)
	{
		if (row.channelType == channelType && row.pixelFormat == pixelFormat)
		{
			outputs.set(row, colourSpace);
			return true;
		}
	}
	outputs.clear();
	return false;
}

/// The format of an unsized internal format and a type; `isUnsized` tells whether the internal format is one.
std::optional<FormatDescription> findUnsized(unsigned int internalFormat, unsigned int type, bool& isUnsized)
{
	isUnsized = internalFormat == GL_BGRA;
	for (const OpenGLUnsizedPair& pair : kOpenGLUnsizedPairs)
	{
		if (pair.internalFormat == internalFormat && pair.type == type)
		{
			isUnsized = true;
			return FormatDescription{pair.pixelFormat, pair.channelType, eCS_lRGB};
		}
	}
	for (const OpenGLUnsizedFormat& format : kOpenGLUnsizedFormats)
	{
		if (format.internalFormat != internalFormat)
		{
			continue;
		}
		isUnsized = true;
		for (const OpenGLUnsizedType& candidate : kOpenGLUnsizedTypes)
		{
			if (candidate.type == type)
			{
				unsigned char widths[4] = {};
				for (unsigned int i = 0; format.letters[i] != 0; ++i)
				{
					widths[i] = candidate.width;
				}
				return FormatDescription{layout(format.letters, widths[0], widths[1], widths[2], widths[3]), candidate.channelType,
				                         eCS_lRGB};
			}
		}
	}
	return std::nullopt;
}

/// Whether a row holds an internal format, and in which colour space.
template<typename Row>
std::optional<EZORTColourSpace> rowHolds(const Row& row, unsigned int internalFormat)
{
	if (row.internalFormat == internalFormat)
	{
		return eCS_lRGB;
	}
	return row.internalFormatSRGB == internalFormat ? std::optional(eCS_sRGB) : std::nullopt;
}

std::optional<FormatDescription> findSized(unsigned int internalFormat)
{
	if (internalFormat == kNoConstant)
	{
		return std::nullopt;
	}
	if (const ReverseRow* exception = findException(kOpenGLReverseExceptions, internalFormat))
	{
		return exception->pixelFormat == kNoFormat
		           ? std::nullopt
		           : std::optional(FormatDescription{exception->pixelFormat, exception->channelType, exception->colourSpace});
	}
	if (rowHolds(kOpenGLSharedExponent, internalFormat))
	{
		return FormatDescription{kOpenGLSharedExponent.pixelFormat, kOpenGLSharedExponent.channelType, eCS_lRGB};
	}
	for (const OpenGLUncompressedRow& row : kOpenGLUncompressed)
	{
		if (const auto colourSpace = rowHolds(row, internalFormat))
		{
			return FormatDescription{row.pixelFormat, row.channelType, *colourSpace};
		}
	}
	for (const OpenGLCompressedRow& row : kOpenGLCompressed)
	{
		if (const auto colourSpace = rowHolds(row, internalFormat))
		{
			return FormatDescription{row.pixelFormat, reverseType(row.channelType), *colourSpace};
		}
	}
	return std::nullopt;
}
} // namespace

bool getOpenGLFormat(const unsigned long long& pixelFormat, const EZORTVariableType& channelType, const EZORTColourSpace& colourSpace,
                     unsigned int& internalFormat, unsigned int& baseInternalFormat, unsigned int& format, unsigned int& type,
                     unsigned int& typeSize)
{
	const OpenGLOutputs outputs{internalFormat, baseInternalFormat, format, type, typeSize};
	return PixelType(pixelFormat).isCompressed() ? findCompressed(pixelFormat, channelType, colourSpace, outputs)
	                                             : findUncompressed(pixelFormat, channelType, colourSpace, outputs);
}

bool getZorvexFormatOGL(unsigned long long& pixelFormat, EZORTVariableType& channelType, EZORTColourSpace& colourSpace,
                        const unsigned int& internalFormat, const unsigned int& /*format*/, const unsigned int& type)
{
	bool isUnsized = false;
	auto found = findUnsized(internalFormat, type, isUnsized);
	if (!isUnsized)
	{
		found = findSized(internalFormat);
	}
	if (found)
	{
		found->store(pixelFormat, channelType, colourSpace);
	}
	return found.has_value();
}
} // namespace zortexture
