// The fast ways of converting and dithering many pixels against the encoders, pixel by pixel: every byte, and what is left in the encoders.

#include <bit>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <numeric>

#include "PixelLayouts.h"
#include "Simd/SimdLevels.h"
#include "TextureTools.h"

using namespace zortexture;

namespace
{
struct SForm
{
	std::string text;
	EZORTVariableType type;
};

/// Every layout in use, and some that no interface knows: odd widths, fields at the ends of 64 bits, signed and float fields that run into
/// each other, mixed and overlapping forms, and errors.
std::vector<SForm> allForms()
{
	std::vector<SForm> forms;
	const auto add = [&](const SLayoutsOfType& group)
	{
		for (const std::string& text : words(group.layouts))
		{
			forms.push_back({text, group.type});
		}
	};
	for (const SLayoutsOfType& group : kUnsignedLayouts)
	{
		add(group);
	}
	for (const SLayoutsOfType& group : kSignedLayouts)
	{
		add(group);
	}
	for (const SLayoutsOfType& group : kElementFloatLayouts)
	{
		add(group);
	}
	const SLayoutsOfType more[] = {
	    {eVT_UnsignedFloat, "rgba16.16.16.16 l16 bgr10.11.11 rgb11.11.10 lxi10.11.11 r32 ra10.6"},
	    {eVT_SignedFloat, "bgr10.11.11 rg16.32 il32.32 ixl16.16.16 xli32.32.32"},
	    {eVT_UnsignedIntegerNorm, "argb1.2.3.2 bgra13.17.2.16 rgba16.16.16.16 rgb24.24.16 li12.12 rgba13.1.15.3 i16 xgra9.9.9.29"},
	    {eVT_UnsignedByteNorm,
	     "rg4.12 rgb8.4.4 il8.8 lixa8.8.8.8 ilr4.8.4 bagr8.8.8.8 rr8.8 gl5.3 rgba31.31.31.3 rgb7.7.7 rgba64.64.64.64"},
	    {eVT_SignedShortNorm, "rgb5.6.5 rgba4.4.4.4 li16.16 xbgr1.5.5.5 rgba1.1.3.3 lr2.6 rgba9.7.15.1"},
	    {eVT_SignedByteNorm, "agbr1.4.7.4 il8.8 rgba24.24.8.8"},
	    {eVT_NumVarTypes, "rgba8.8.8.8"},
	};
	for (const SLayoutsOfType& group : more)
	{
		add(group);
	}
	return forms;
}

/// Random bytes; channels of floats mostly with values about 0..1 and some of any bits.
CZORTexture randomPixels(const SForm& form, unsigned int numPixels, std::mt19937& random)
{
	CZORTexture texture = randomTexture(CZORTextureHeader(layout(form.text).id, 1, numPixels, 1, 1, 1, 1, eCS_lRGB, form.type), random());
	if (form.type == eVT_SignedFloat && layout(form.text).channelBits[0u] == 32)
	{
		auto* data = static_cast<unsigned char*>(texture.getDataPtr());
		std::uniform_real_distribution<float> values(-0.1f, 1.1f);
		for (unsigned int i = 0; i + 4 <= texture.getDataSize(); i += 4)
		{
			const float special[] = {0.0f,   -0.0f,    1.0f,     -1.0f, INFINITY, -INFINITY, NAN,
			                         1e-40f, 65504.0f, 65536.0f, 3e9f,  -3e9f,    1e20f,     6.1e-5f};
			const float value = random() % 4 == 0 ? special[random() % std::size(special)] : values(random);
			if (random() % 8 != 0)
			{
				std::memcpy(data + i, &value, sizeof(value));
			}
		}
	}
	return texture;
}

struct SResult
{
	Bytes pixels;
	unsigned int bytesWritten;
	Bytes encoders; ///< the pixels left in them

	bool operator==(const SResult& other) const
	{
		return pixels == other.pixels && bytesWritten == other.bytesWritten && encoders == other.encoders;
	}
};

/// @param spare  pixels that the destination has beyond those of the source, and that stay as they are
SResult convert(CZORTexture& source, const SForm& from, const SForm& to, unsigned int spare, EZORTColourSpace target,
                EZORTColourSpace space)
{
	CZORTexture destination =
	    randomTexture(CZORTextureHeader(layout(to.text).id, 1, source.getWidth() + spare, 1, 1, 1, 1, target, to.type), 7);
	CPixelEncoder sourceEncoder(layout(from.text), from.type);
	CPixelEncoder destinationEncoder(layout(to.text), to.type);
	std::memset(sourceEncoder.GetColourData(), 0x5A, 16);
	std::memset(destinationEncoder.GetColourData(), 0xA5, 16);
	SResult result;
	result.bytesWritten = TranscodeTrivial(source, destination, sourceEncoder, destinationEncoder, target, space);
	result.pixels = bytesOf(destination);
	for (CPixelEncoder* const encoder : {&sourceEncoder, &destinationEncoder})
	{
		result.encoders.insert(result.encoders.end(), encoder->GetColourData(), encoder->GetColourData() + 16);
	}
	return result;
}

void compare(CZORTexture& source, const SForm& from, const SForm& to, EZORTColourSpace target, EZORTColourSpace space, std::mt19937& random)
{
	if (!source.isDataComplete())
	{
		return;
	}
	const unsigned int spare = random() % 3;
	const auto run = [&]
	{
		return convert(source, from, to, spare, target, space);
	};
	const SResult plain = atSimdLevel(eSimdPlain, run);
	for (const ESimdLevel level : kVectorLevels)
	{
		ASSERT_EQ(atSimdLevel(level, run), plain)
		    << from.text << " type " << from.type << " to " << to.text << " type " << to.type << ", " << source.getWidth()
		    << " pixels, space " << space << " to " << target << ", level " << level;
	}
}

void compare(const SForm& from, const SForm& to, unsigned int numPixels, EZORTColourSpace target, EZORTColourSpace space,
             std::mt19937& random)
{
	CZORTexture source = randomPixels(from, numPixels, random);
	compare(source, from, to, target, space, random);
}
} // namespace

TEST(BulkConversion, GivesTheBytesOfTheEncoders)
{
	const std::vector<SForm> forms = allForms();
	std::mt19937 random(1);
	const unsigned int counts[] = {0, 1, 65, 131, 300, 2100, 2111, 8800};
	constexpr int kPairs = 600;
	for (int pair = 0; pair < kPairs && !HasFatalFailure(); ++pair)
	{
		const unsigned int numPixels = counts[random() % std::size(counts)];
		const EZORTColourSpace target = random() % 3 == 0 ? eCS_sRGB : eCS_lRGB;
		const EZORTColourSpace space = random() % 3 == 0 ? eCS_sRGB : eCS_lRGB;
		const SForm& from = forms[random() % forms.size()];
		compare(from, forms[random() % forms.size()], numPixels, target, space, random);
	}
}

// Every number of 16 bits, and floats about every rounding and limit, out of and into every kind of channel.
TEST(BulkConversion, HoldsForAllNumbers)
{
	std::mt19937 random(2);
	std::vector<std::uint32_t> floats;
	for (std::uint32_t exponent = 0; exponent < 512; ++exponent) // with both signs
	{
		for (const std::uint32_t mantissa : {0x0u, 0x1u, 0xFFFu, 0x1000u, 0x1FFFu, 0x2000u, 0x400000u, 0x7FE000u, 0x7FFFFEu, 0x7FFFFFu})
		{
			floats.push_back(exponent << 23 | mantissa);
		}
	}
	for (std::uint32_t step = 0; step <= 0xFFFF; ++step)
	{
		const float halfStep = (static_cast<float>(step) + 0.5f) / 65535.0f;
		floats.push_back(std::bit_cast<std::uint32_t>(step % 3 == 0 ? halfStep : std::nextafter(halfStep, step % 3 == 1 ? 1.0f : 0.0f)));
	}
	const SForm whole = {"r32", eVT_SignedFloat};
	const SForm narrow[] = {
	    {"r16", eVT_UnsignedShortNorm}, {"r16", eVT_SignedShortNorm}, {"r16", eVT_SignedFloat}, {"r16", eVT_UnsignedFloat}};
	const SForm wide[] = {{"r32", eVT_UnsignedIntegerNorm}, {"r32", eVT_SignedIntegerNorm}, whole};
	const SForm others[] = {{"r8", eVT_UnsignedByteNorm},
	                        {"r8", eVT_SignedByteNorm},
	                        {"agbr2.10.10.10", eVT_SignedIntegerNorm},
	                        {"rgb11.11.10", eVT_UnsignedFloat}};
	std::vector<unsigned short> numbers(65536);
	std::iota(numbers.begin(), numbers.end(), static_cast<unsigned short>(0));
	const auto textureOfNumbers = [](const SForm& form, const auto& values)
	{
		return CZORTexture(
		    CZORTextureHeader(layout(form.text).id, 1, static_cast<unsigned int>(values.size()), 1, 1, 1, 1, eCS_lRGB, form.type),
		    values.data());
	};
	CZORTexture sourceOfFloats = textureOfNumbers(whole, floats);
	for (const SForm& form : narrow)
	{
		CZORTexture source = textureOfNumbers(form, numbers);
		compare(source, form, whole, eCS_lRGB, eCS_lRGB, random);
		compare(sourceOfFloats, whole, form, eCS_lRGB, eCS_lRGB, random);
	}
	for (const SForm& form : wide)
	{
		CZORTexture source = textureOfNumbers(form, floats);
		compare(source, form, whole, eCS_lRGB, eCS_lRGB, random);
		compare(sourceOfFloats, whole, form, eCS_lRGB, eCS_lRGB, random);
	}
	for (const SForm& form : others)
	{
		compare(sourceOfFloats, whole, form, eCS_lRGB, eCS_lRGB, random);
	}
}

// Tables of 65536 values, which few pixels are not worth.
TEST(BulkConversion, LargeTablesGiveTheBytesOfTheEncoders)
{
	std::mt19937 random(4);
	compare({"r16", eVT_UnsignedShortNorm}, {"ra32.32", eVT_SignedFloat}, 8 * 65536 + 3, eCS_sRGB, eCS_lRGB, random);
	compare({"ra16.16", eVT_SignedFloat}, {"ar16.16", eVT_SignedFloat}, 65536 + 5, eCS_lRGB, eCS_sRGB, random);
}

TEST(BulkConversion, EveryImageOfATextureIsConverted)
{
	CZORTexture source = randomTexture(CZORTextureHeader(layout("rgb8.8.8").id, 21, 43, 3, 4, 2, 6), 5);
	const auto run = [&]
	{
		CZORTexture texture(source);
		Transcode(texture, layout("bgr5.6.5"), eVT_UnsignedShortNorm, eCS_lRGB);
		return bytesOf(texture);
	};
	const Bytes plain = atSimdLevel(eSimdPlain, run);
	for (const ESimdLevel level : kVectorLevels)
	{
		EXPECT_EQ(atSimdLevel(level, run), plain);
	}
}

/// An encoder that serves both sides clears each pixel before it is read.
TEST(BulkConversion, OneEncoderOnBothSides)
{
	CZORTextureHeader header(ZORStandard8PixelType.id, 16, 16);
	CZORTexture source = randomTexture(header, 3);
	for (const ESimdLevel level : {eSimdPlain, eSimdSse2, eSimdAvx2})
	{
		const ForcedSimdLevel forced(level);
		CZORTexture destination = randomTexture(header, 4);
		CPixelEncoder encoder(ZORStandard8PixelType, eVT_UnsignedByteNorm);
		EXPECT_EQ(TranscodeTrivial(source, destination, encoder, encoder, eCS_sRGB, eCS_lRGB), 1024u);
		const CZORTexture black(header);
		EXPECT_EQ(std::memcmp(destination.getDataPtr(), black.getDataPtr(), 1024), 0) << level;
	}
}

TEST(Dither, WavesOfRowsGiveTheBytesOfTheWalkByColumns)
{
	std::mt19937 random(3);
	const char* const targets[] = {"rgb5.6.5", "rgba4.4.4.4", "rgba1.2.3.7", "bgra5.5.5.1", "l3", "xr1.1"};
	for (int round = 0; round < 300; ++round)
	{
		const unsigned int width = 1 + random() % (round % 10 == 0 ? 40 : 9);
		const unsigned int height = 1 + random() % (round % 7 == 0 ? 40 : 9);
		const unsigned int depth = 1 + random() % 3;
		const PixelType target = layout(targets[random() % std::size(targets)]);
		Bytes pixels(std::size_t{4} * width * height * depth);
		for (unsigned char& value : pixels)
		{
			value = static_cast<unsigned char>(random() % 4 == 0 ? 255 * (random() % 2) : random());
		}
		const auto run = [&]
		{
			Bytes dithered(pixels);
			Dither(dithered.data(), target, width, height, depth);
			return dithered;
		};
		const Bytes plain = atSimdLevel(eSimdPlain, run);
		for (const ESimdLevel level : kVectorLevels)
		{
			ASSERT_EQ(atSimdLevel(level, run), plain) << width << " x " << height << " x " << depth << ", level " << level;
		}
	}
}
