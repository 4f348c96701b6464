/// @file ElementDispatch.h
/// What the four element types of the standard layouts share: the choice of the template instance, and the walk over the
/// images of a texture.
#pragma once

#include <type_traits>

#include "ElementCeiling.h"
#include "Numbers.h"
#include "Pixel.h"
#include "ZORTexture.h"

namespace zortexture
{
/// Calls `function` with a value-less tag of the element type of a standard layout, which the channel type shifted right by 2 selects:
/// `function(std::type_identity<T>{})`.
template<typename Function>
inline auto withElementType(EZORTVariableType channelType, Function&& function)
{
	switch (channelType >> 2)
	{
	case 0:
		return function(std::type_identity<unsigned char>{});
	case 1:
		return function(std::type_identity<unsigned short>{});
	case 2:
		return function(std::type_identity<unsigned int>{});
	default:
		return function(std::type_identity<float>{});
	}
}

/// A float as an element: integer types truncate and keep the low bits, float keeps the value.
template<typename T>
inline T toElement(float value)
{
	if constexpr (std::is_same_v<T, float>)
	{
		return value;
	}
	else
	{
		return wrapToUnsigned<T>(value);
	}
}

/// The pixels of one face of one array member of one level; null for a position that the texture does not have.
template<typename T>
inline Pixel<T>* pixelsOf(const CZORTexture& texture, unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
{
	return static_cast<Pixel<T>*>(texture.getDataPtr(mipLevel, arrayMember, face));
}

/// Calls `function(mipLevel, arrayMember, face)` for every array member, face and MIP level, in that nesting.
template<typename Function>
inline void forEachImage(const CZORTextureHeader& header, Function&& function)
{
	for (unsigned int arrayMember = 0; arrayMember < header.getNumArrayMembers(); ++arrayMember)
	{
		for (unsigned int face = 0; face < header.getNumFaces(); ++face)
		{
			for (unsigned int mipLevel = 0; mipLevel < header.getNumMIPLevels(); ++mipLevel)
			{
				function(mipLevel, arrayMember, face);
			}
		}
	}
}
} // namespace zortexture
