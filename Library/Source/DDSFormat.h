/// @file DDSFormat.h
/// The published layout of DDS files, and the recognition of a format from bit masks.
#pragma once

namespace zortexture
{
namespace dds
{
inline constexpr unsigned int kMagic = 0x20534444u;          ///< "DDS "
inline constexpr unsigned int kFourCCExtended = 0x30315844u; ///< "DX10"

inline constexpr unsigned int kFlagsAlways = 0x1007u; ///< caps, height, width, pixel format
inline constexpr unsigned int kFlagPitch = 0x8u;
inline constexpr unsigned int kFlagMIPMapCount = 0x20000u;
inline constexpr unsigned int kFlagLinearSize = 0x80000u;
inline constexpr unsigned int kFlagDepth = 0x800000u;

inline constexpr unsigned int kPixelAlpha = 0x1u;
inline constexpr unsigned int kPixelAlphaOnly = 0x2u;
inline constexpr unsigned int kPixelFourCC = 0x4u;
inline constexpr unsigned int kPixelRGB = 0x40u;
inline constexpr unsigned int kPixelLuminance = 0x20000u;
inline constexpr unsigned int kPixelBumpLuminance = 0x40000u;
inline constexpr unsigned int kPixelBump = 0x80000u;

inline constexpr unsigned int kCapsTexture = 0x1000u;
inline constexpr unsigned int kCapsCubeMap = 0x1008u;
inline constexpr unsigned int kCapsMIPMaps = 0x401008u;
inline constexpr unsigned int kCaps2CubeMapAllFaces = 0xFE00u;
inline constexpr unsigned int kCaps2Volume = 0x200000u;

inline constexpr unsigned int kDimension1D = 2;
inline constexpr unsigned int kDimension2D = 3;
inline constexpr unsigned int kDimension3D = 4;
inline constexpr unsigned int kMiscCubeMap = 4;

struct PixelFormat
{
	unsigned int size;
	unsigned int flags;
	unsigned int fourCC;
	unsigned int bitCount;
	unsigned int redMask;
	unsigned int greenMask;
	unsigned int blueMask;
	unsigned int alphaMask;
};

struct Header
{
	unsigned int size;
	unsigned int flags;
	unsigned int height;
	unsigned int width;
	unsigned int pitchOrLinearSize;
	unsigned int depth;
	unsigned int mipMapCount;
	unsigned int reserved[11];
	PixelFormat pixelFormat;
	unsigned int caps;
	unsigned int caps2;
	unsigned int caps3;
	unsigned int caps4;
	unsigned int reserved2;
};
static_assert(sizeof(Header) == 124, "the header must have the layout of the file");

struct ExtendedHeader
{
	unsigned int dxgiFormat;
	unsigned int resourceDimension;
	unsigned int miscFlag;
	unsigned int arraySize;
	unsigned int miscFlag2;
};
static_assert(sizeof(ExtendedHeader) == 20, "the header must have the layout of the file");

/// The D3DFORMAT that a pixel-format record stands for, by FourCC or masks; 0 when it is none of those known.
unsigned int recognise(const PixelFormat& pixelFormat);

/// Fills flags, FourCC and masks for a D3DFORMAT. False for one that only the extended header can hold.
bool describe(unsigned int d3dFormat, unsigned int bitsPerPixel, PixelFormat& pixelFormat);
} // namespace dds
} // namespace zortexture
