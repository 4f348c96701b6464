#include "FormatCapabilities.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

#include "FormatNames.h"
#include "Layouts.h"
#include "TranscodeTexture.h"

using namespace zortexture;
using namespace zortex;

namespace
{
// At least two by two blocks of every format; codecs pad what is no whole block.
constexpr unsigned int kSide = 16;

CZORTexture makePicture(unsigned int width, unsigned int height)
{
	const CZORTextureHeader header(ZORStandard8PixelType.id, height, width);
	CZORTexture texture(header, nullptr);
	auto* pixels = static_cast<unsigned char*>(texture.getDataPtr());
	for (unsigned int i = 0; i < width * height * 4; ++i)
	{
		pixels[i] = static_cast<unsigned char>(i % 4 == 3 ? 255 : (i * 3) % 251);
	}
	return texture;
}

/// ASTC is coded by a program, which is not built on every machine.
bool isTestable(const CompressedFormat& format)
{
	static const bool hasEncoder = []
	{
		const std::string folder = ZORT_ASTCENC_FOLDER;
		const char* const path = std::getenv("PATH");
		setenv("PATH", (folder + ":" + (path != nullptr ? path : "")).c_str(), 1);
		return !folder.empty();
	}();
	return hasEncoder || getCodecType(format.id) != eCodecASTC;
}

/// Two of the formats of ASTC stand for all where much is tried: each image is one start of the program.
bool isTriedAtLength(const CompressedFormat& format)
{
	return getCodecType(format.id) != eCodecASTC || (isTestable(format) && (format.id == ePF_ASTC_6x5 || format.id == ePF_ASTC_4x4x3));
}

bool encode(CZORTexture& texture, const CompressedFormat& format, int quality)
{
	const PixelType target(format.id);
	return transcodeTexture(texture, target, defaultChannelType(target), eCS_lRGB, quality);
}

/// Whether any byte of a texture is not zero: codecs that do not exist leave everything zero.
bool hasContent(const CZORTexture& texture)
{
	const auto* bytes = static_cast<const unsigned char*>(texture.getDataPtr());
	for (unsigned int i = 0; i < texture.getDataSize(); ++i)
	{
		if (bytes[i] != 0)
		{
			return true;
		}
	}
	return false;
}

TEST(FormatCapabilities, AgreesWithTheLibraryOnWhatIsDecoded)
{
	for (const CompressedFormat& format : compressedFormats())
	{
		if (!isTestable(format))
		{
			continue;
		}
		const CZORTextureHeader header(format.id, kSide, kSide, 1, 1, 1, 1, eCS_lRGB, defaultChannelType(PixelType(format.id)));
		CZORTexture texture(header, nullptr);
		if (texture.getDataSize() != 0)
		{
			std::memset(texture.getDataPtr(), 0x5A, texture.getDataSize());
		}
		const bool isDecoded = Transcode(texture, ZORStandard8PixelType, eVT_UnsignedByteNorm, eCS_lRGB);
		EXPECT_EQ(isDecoded, format.codec->decodes) << format.name;
		EXPECT_EQ(canDecode(PixelType(format.id)), format.codec->decodes) << format.name;
	}
}

TEST(FormatCapabilities, AgreesWithTheLibraryOnWhatIsEncoded)
{
	for (const CompressedFormat& format : compressedFormats())
	{
		EXPECT_EQ(canEncode(PixelType(format.id)), format.codec->encodes) << format.name;
		if (!isTestable(format))
		{
			continue;
		}
		if (!format.codec->encodes)
		{
			CZORTexture texture = makePicture(kSide, kSide);
			EXPECT_FALSE(encode(texture, format, 0) && hasContent(texture)) << format.name;
			continue;
		}
		// Beyond the middle ones, qualities are more of the same, for minutes.
		const int last = isTriedAtLength(format) ? std::min(format.codec->bestQuality, 4) : 0;
		for (int quality = 0; quality <= last; ++quality)
		{
			CZORTexture texture = makePicture(kSide, kSide);
			EXPECT_TRUE(encode(texture, format, quality)) << format.name << " " << quality;
			EXPECT_TRUE(hasContent(texture)) << format.name << " " << quality;
		}
		for (const int quality : format.codec->namedQualities)
		{
			EXPECT_LE(quality, format.codec->bestQuality) << format.name;
		}
	}
}

TEST(FormatCapabilities, SizesThatAreNotRefusedAreEncoded)
{
	for (const CompressedFormat& format : compressedFormats())
	{
		if (!format.codec->encodes || !isTriedAtLength(format))
		{
			continue;
		}
		for (const unsigned int width : {1u, 2u, 3u, 5u, 6u, 8u, 10u, 16u})
		{
			for (const unsigned int height : {1u, 3u, 4u, 8u})
			{
				CZORTexture texture = makePicture(width, height);
				if (sizeProblem(texture, PixelType(format.id)).empty())
				{
					EXPECT_TRUE(encode(texture, format, 0)) << format.name << " " << width << "x" << height;
				}
			}
		}
	}
}

TEST(FormatCapabilities, RefusedSizesComeWithOneThatIsNot)
{
	struct SizeCase
	{
		EZORTPixelFormat format;
		unsigned int width;
		unsigned int height;
		unsigned int levels;
		const char* suggestion;
	};
	for (const SizeCase& size :
	     {SizeCase{ePF_TesselI_4bpp_RGB, 600, 400, 1, "try --resize 512x512"},
	      SizeCase{ePF_TesselI_2bpp_RGB, 24, 24, 1, "try --resize 32x32"}, SizeCase{ePF_TesselI_4bpp_RGBA, 6, 8, 1, "try --resize 8x8"},
	      SizeCase{ePF_BW1bpp, 24, 8, 3, "(at level 1); try --resize"}, SizeCase{ePF_UYVY, 3, 8, 1, "try --resize 4x8"}})
	{
		const CZORTextureHeader header(ZORStandard8PixelType.id, size.height, size.width, 1, size.levels);
		EXPECT_NE(sizeProblem(header, PixelType(size.format)).find(size.suggestion), std::string::npos)
		    << sizeProblem(header, PixelType(size.format));
	}
	const CZORTextureHeader volume(ZORStandard8PixelType.id, 8, 8, 2);
	EXPECT_NE(sizeProblem(volume, PixelType(ePF_TesselI_4bpp_RGB)), "");
	EXPECT_EQ(sizeProblem(CZORTextureHeader(ZORStandard8PixelType.id, 1, 1), PixelType(ePF_TesselI_2bpp_RGB)), "");
}
} // namespace
