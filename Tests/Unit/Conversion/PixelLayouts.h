// Pixel layouts written as text, such as "bgr10.11.11", and the ones in use by graphics interfaces and files.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "PixelEncoder.h"

namespace zortexture
{
inline PixelType layout(const std::string& text)
{
	PixelType type(0ull);
	const std::size_t digits = text.find_first_of("0123456789");
	std::istringstream widths(text.substr(digits));
	std::string width;
	for (std::size_t i = 0; i < digits && std::getline(widths, width, '.'); ++i)
	{
		type.channelName[i] = static_cast<unsigned char>(text[i]);
		type.channelBits[static_cast<unsigned int>(i)] = static_cast<unsigned char>(std::stoi(width));
	}
	return type;
}

inline std::vector<std::string> words(const std::string& text)
{
	std::istringstream stream(text);
	std::vector<std::string> result;
	for (std::string word; stream >> word;)
	{
		result.push_back(word);
	}
	return result;
}

struct SLayoutsOfType
{
	EZORTVariableType type;
	const char* layouts;
};

inline constexpr SLayoutsOfType kUnsignedLayouts[] = {
    {eVT_UnsignedByteNorm, "a8 a16 l16 abgr8.8.8.8 ai4.4 ai8.8 al4.4 al8.8 argb8.8.8.8 bgra8.8.8.8 bgrx8.8.8.8 i8 ia4.4 l8 la8.8 r8 rg8.8 "
                           "rgb3.3.2 rgb8.8.8 rgba4.4.4.4 rgba8.8.8.8 rgbx8.8.8.8 xbgr8.8.8.8 xrgb8.8.8.8"},
    {eVT_UnsignedByte, "r8 rg8.8 rgb8.8.8 rgba8.8.8.8"},
    {eVT_UnsignedShortNorm, "a16 abgr1.5.5.5 abgr16.16.16.16 abgr4.4.4.4 ai8.8 argb1.5.5.5 argb4.4.4.4 argb8.3.3.2 bgr5.6.5 bgra4.4.4.4 "
                            "bgra5.5.5.1 bgrx4.4.4.4 gr16.16 l16 la16.16 r16 rg16.16 rgb16.16.16 rgb5.6.5 rgba16.16.16.16 rgba4.4.4.4 "
                            "rgba5.5.5.1 rgbx5.5.5.1 xbgr4.4.4.4 xrgb1.5.5.5"},
    {eVT_UnsignedShort, "r16 rg16.16 rgb16.16.16 rgba16.16.16.16"},
    {eVT_UnsignedIntegerNorm, "a32 a8 abgr16.16.16.16 abgr2.10.10.10 abgr8.8.8.8 al4.4 al8.8 argb1.5.5.5 argb2.10.10.10 argb4.4.4.4 "
                              "argb8.3.3.2 argb8.8.8.8 gr16.16 l16 l32 l8 la32.32 r32 rg32.32 rgb3.3.2 rgb32.32.32 rgb5.6.5 rgb8.8.8 "
                              "rgba10.10.10.2 rgba32.32.32.32 rgbx10.10.10.2 xbgr2.10.10.10 xbgr8.8.8.8 xrgb1.5.5.5 xrgb8.8.8.8"},
    {eVT_UnsignedInteger, "abgr2.10.10.10 r32 rg32.32 rgb32.32.32 rgba10.10.10.2 rgba32.32.32.32"},
};

inline constexpr SLayoutsOfType kElementFloatLayouts[] = {
    {eVT_SignedFloat, "a16 a32 abgr16.16.16.16 abgr32.32.32.32 gr16.16 gr32.32 l16 l32 la16.16 la32.32 r16 r32 rg16.16 rg32.32 "
                      "rgb16.16.16 rgb32.32.32 rgba16.16.16.16 rgba32.32.32.32"},
};

inline constexpr SLayoutsOfType kSignedLayouts[] = {
    {eVT_SignedByteNorm, "a8 a16 l16 l8 la8.8 r8 rg8.8 rgb8.8.8 rgba8.8.8.8"},
    {eVT_SignedByte, "r8 rg8.8 rgb8.8.8 rgba8.8.8.8"},
    {eVT_SignedShortNorm, "a16 l16 la16.16 r16 rg16.16 rgb16.16.16 rgba16.16.16.16"},
    {eVT_SignedShort, "r16 rg16.16 rgb16.16.16 rgba16.16.16.16"},
    {eVT_SignedIntegerNorm, "a32 abgr16.16.16.16 abgr2.10.10.10 abgr8.8.8.8 gr16.16 gr8.8 l32 la32.32 lgr6.5.5 r32 rg32.32 "
                            "rgb32.32.32 rgba32.32.32.32 xlgr8.8.8.8"},
    {eVT_SignedInteger, "r32 rg32.32 rgb32.32.32 rgba32.32.32.32"},
};
} // namespace zortexture
