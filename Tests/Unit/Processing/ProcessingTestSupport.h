/// @file ProcessingTestSupport.h
/// Textures of the standard layouts for tests, and what is compared of them.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>
#include <vector>

#include "Pixel.h"
#include "ZORTexture.h"

namespace zortexture
{
template<typename T>
bool operator==(const Pixel<T>& a, const Pixel<T>& b)
{
	return a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a;
}

template<typename T>
void PrintTo(const Pixel<T>& p, std::ostream* stream)
{
	*stream << "(" << +p.r << " " << +p.g << " " << +p.b << " " << +p.a << ")";
}

template<typename T>
inline constexpr unsigned long long kLayoutOf = sizeof(T) == 1   ? ZORStandard8PixelType.id
                                                : sizeof(T) == 2 ? ZORStandard16PixelType.id
                                                                 : ZORStandard32PixelType.id;
template<typename T>
inline constexpr EZORTVariableType kChannelTypeOf = std::is_same_v<T, float> ? eVT_SignedFloat
                                                    : sizeof(T) == 1         ? eVT_UnsignedByteNorm
                                                    : sizeof(T) == 2         ? eVT_UnsignedShortNorm
                                                                             : eVT_UnsignedIntegerNorm;

/// A header of the standard layout of T. Width first, as images are written in tests.
template<typename T>
CZORTextureHeader standardHeader(unsigned int width, unsigned int height, unsigned int depth = 1, unsigned int levels = 1,
                                 unsigned int members = 1, unsigned int faces = 1)
{
	return {kLayoutOf<T>, height, width, depth, levels, members, faces, eCS_lRGB, kChannelTypeOf<T>};
}

template<typename T>
CZORTexture standardTexture(unsigned int width, unsigned int height, const std::vector<Pixel<T>>& pixels, unsigned int depth = 1)
{
	return CZORTexture(standardHeader<T>(width, height, depth), pixels.data());
}

/// All pixels of a texture, in the order of its block.
template<typename T>
std::vector<Pixel<T>> pixelsOfTexture(const CZORTexture& texture)
{
	std::vector<Pixel<T>> pixels(texture.getDataSize() / sizeof(Pixel<T>));
	if (!pixels.empty())
	{
		std::memcpy(pixels.data(), texture.getDataPtr(0, 0, 0), pixels.size() * sizeof(Pixel<T>));
	}
	return pixels;
}

/// The bytes of a texture's header, and of as much of its block as was there when the guard was made.
class UnchangedGuard
{
public:
	UnchangedGuard(const CZORTexture& texture, std::size_t numBytes)
	    : m_texture(texture), m_header(texture.getFileHeader()), m_data(bytes(texture, numBytes))
	{
	}

	void expectUnchanged() const
	{
		const ZORTextureHeaderV3 header = m_texture.getFileHeader();
		EXPECT_EQ(std::memcmp(&header, &m_header, sizeof(header)), 0);
		EXPECT_EQ(bytes(m_texture, m_data.size()), m_data);
	}

private:
	static std::vector<unsigned char> bytes(const CZORTexture& texture, std::size_t numBytes)
	{
		const auto* data = static_cast<const unsigned char*>(texture.getDataPtr(0, 0, 0));
		return data == nullptr ? std::vector<unsigned char>() : std::vector<unsigned char>(data, data + numBytes);
	}

	const CZORTexture& m_texture;
	ZORTextureHeaderV3 m_header;
	std::vector<unsigned char> m_data;
};

/// Runs `operation(texture)`, which must return false, on textures that no operation on a standard layout accepts, and
/// checks that it leaves them as they were.
template<typename Operation>
void expectRefusesUnusableTextures(Operation&& operation)
{
	const std::vector<Pixel<unsigned char>> pixels(12, {10, 20, 30, 4});
	const auto check = [&](CZORTexture& texture, std::size_t numBytes)
	{
		const UnchangedGuard guard(texture, numBytes);
		EXPECT_FALSE(operation(texture));
		guard.expectUnchanged();
	};

	CZORTexture texture = standardTexture<unsigned char>(4, 3, pixels);
	texture.setChannelType(eVT_UnsignedByte);
	check(texture, 48);
	texture.setChannelType(eVT_SignedFloat);
	check(texture, 48);
	texture = standardTexture<unsigned char>(4, 3, pixels);
	texture.setPixelFormat(PixelType('b', 'g', 'r', 'a', 8, 8, 8, 8));
	check(texture, 48);
	texture.setPixelFormat(ePF_ETC1);
	check(texture, 6);

	// Setters that make the header describe more than the block holds, by little, by far, and beyond 32 bits. The block
	// cannot be copied then, so the texture is worked on in place.
	const auto grown = [&](auto&& grow)
	{
		CZORTexture incomplete = standardTexture<unsigned char>(4, 3, pixels);
		grow(incomplete);
		const UnchangedGuard guard(incomplete, 48);
		EXPECT_FALSE(operation(incomplete));
		guard.expectUnchanged();
	};
	grown([](CZORTexture& t) { t.setNumMIPLevels(2); });
	grown([](CZORTexture& t) { t.setNumArrayMembers(2); });
	grown([](CZORTexture& t) { t.setDepth(1000); });
	grown(
	    [](CZORTexture& t)
	    {
		    t.setWidth(65536);
		    t.setHeight(65536);
	    });
	CZORTexture empty;
	EXPECT_FALSE(operation(empty));
	empty.setPixelFormat(ZORStandard8PixelType);
	EXPECT_FALSE(operation(empty));
}
} // namespace zortexture
