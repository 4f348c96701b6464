/// @file FormatMaps.h
/// Translation of formats to and from the constants of the graphics APIs. The two directions are separate tables and no
/// exact inverses of each other: what goes out in several ways comes back in one, and some constants come back as other
/// formats than they were written for.
#ifndef ZORT_FORMAT_MAPS_H
#define ZORT_FORMAT_MAPS_H

#include "ZORTDefines.h"

namespace zortexture
{
/// The OpenGL constants of a format: sized internal format, base internal format, format, type, and bytes of the type.
/// @return false when there are none. All five are 0 then; for a compressed format that exists but has no OpenGL name,
///         format and type are 0, the type size is 1 and the internal formats keep their values.
ZORT_API bool getOpenGLFormat(const unsigned long long& pixelFormat, const EZORTVariableType& channelType,
                              const EZORTColourSpace& colourSpace, unsigned int& internalFormat, unsigned int& baseInternalFormat,
                              unsigned int& format, unsigned int& type, unsigned int& typeSize);

/// The VkFormat of a format; 0 and false when there is none.
ZORT_API bool getVulkanFormat(const unsigned long long& pixelFormat, const EZORTVariableType& channelType,
                              const EZORTColourSpace& colourSpace, unsigned int& vulkanFormat);

/// The D3DFORMAT of a format, a FourCC code for compressed ones; 0 and false when there is none.
ZORT_API bool getDirect3DFormat(const unsigned long long& pixelFormat, const EZORTVariableType& channelType,
                                const EZORTColourSpace& colourSpace, unsigned int& d3dFormat);

/// The DXGI_FORMAT of a format; 0 and false when there is none.
ZORT_API bool getDirectXGIFormat(const unsigned long long& pixelFormat, const EZORTVariableType& channelType,
                                 const EZORTColourSpace& colourSpace, unsigned int& dxgiFormat);

/// The format of an OpenGL internal format and, where that is unsized, of a type. `format` is not read. False, with the
/// outputs untouched, for constants without a format; the same holds for the three functions below.
ZORT_API bool getZorvexFormatOGL(unsigned long long& pixelFormat, EZORTVariableType& channelType, EZORTColourSpace& colourSpace,
                                 const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type);

ZORT_API bool getZorvexFormatVulkan(unsigned long long& pixelFormat, EZORTVariableType& channelType, EZORTColourSpace& colourSpace,
                                    const unsigned int& vulkanFormat);

/// `preMultiplied` is true for DXT2 and DXT4 alone.
ZORT_API bool getZorvexFormatD3D(unsigned long long& pixelFormat, EZORTVariableType& channelType, EZORTColourSpace& colourSpace,
                                 bool& preMultiplied, const unsigned int& d3dFormat);

ZORT_API bool getZorvexFormatDXGI(unsigned long long& pixelFormat, EZORTVariableType& channelType, EZORTColourSpace& colourSpace,
                                  const unsigned int& dxgiFormat);

enum EGraphicsApi : unsigned int
{
	eApi_OpenGL = 0,
	eApi_Vulkan = 1,
	eApi_Direct3D = 2,
	eApi_DXGI = 3
};

/// The published name of a constant, such as "VK_FORMAT_R8G8B8A8_UNORM" (for OpenGL of an internal format); null for a value
/// without one, FourCC codes among them. The text lives as long as the program.
ZORT_API const char* getFormatConstantName(EGraphicsApi api, unsigned int value);
} // namespace zortexture

#endif // ZORT_FORMAT_MAPS_H
