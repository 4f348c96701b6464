#include <bit>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <png.h>

#include "AtomicOutput.h"
#include "Layouts.h"
#include "PngFile.h"
#include "Refusal.h"

namespace zortex
{
using namespace zortexture;

namespace
{
[[noreturn]] void onError(png_structp png, png_const_charp message)
{
	auto* text = static_cast<char*>(png_get_error_ptr(png));
	std::strncpy(text, message, 159);
	png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp)
{
}

struct WriteDeleter
{
	png_infop info = nullptr;

	void operator()(png_struct* png)
	{
		png_destroy_write_struct(&png, &info);
	}
};

struct FileCloser
{
	void operator()(std::FILE* file)
	{
		std::fclose(file);
	}
};

/// Writes the whole file; false when a libpng call failed.
bool writePicture(png_structp png, png_infop info, std::FILE* file, const CZORTextureHeader& header, const unsigned char* pixels,
                  int colourType, int bitDepth, std::size_t rowBytes)
{
	if (setjmp(png_jmpbuf(png)) != 0)
	{
		return false;
	}
	png_init_io(png, file);
	png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
	png_set_IHDR(png, info, header.getWidth(), header.getHeight(), bitDepth, colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
	             PNG_FILTER_TYPE_DEFAULT);
	if (header.getColourSpace() == eCS_sRGB)
	{
		png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
	}
	else
	{
		png_set_gAMA(png, info, 1.0);
	}
	png_write_info(png, info);
	if (std::endian::native == std::endian::little)
	{
		png_set_swap(png);
	}
	const unsigned int height = header.getHeight();
	for (unsigned int y = 0; y < height; ++y)
	{
		png_write_row(png, pixels + y * rowBytes);
	}
	png_write_end(png, info);
	return true;
}
} // namespace

void pngLayout(const CZORTextureHeader& header, PixelType& layout, EZORTVariableType& type)
{
	PixelType working;
	EZORTVariableType workingType = eVT_UnsignedByteNorm;
	workingLayout(header.getPixelType(), header.getChannelType(), working, workingType);
	const bool isDeep = widestChannel(working) > 8 || isFloatType(workingType);

	const PixelType format = header.getPixelType();
	const bool isGrey = !format.isCompressed() &&
	                    (std::memchr(format.channelName, 'l', 4) != nullptr || std::memchr(format.channelName, 'i', 4) != nullptr);
	const bool hasAlpha = imageChannels(format).find('a') != std::string::npos;
	layout = makeLayout(isGrey ? (hasAlpha ? "la" : "l") : (hasAlpha ? "rgba" : "rgb"), isDeep ? 16 : 8);
	type = isDeep ? eVT_UnsignedShortNorm : eVT_UnsignedByteNorm;
}

bool isPngLayout(PixelType layout, EZORTVariableType type)
{
	for (const char* letters : {"l", "la", "rgb", "rgba"})
	{
		if ((layout.id == makeLayout(letters, 8).id && type == eVT_UnsignedByteNorm) ||
		    (layout.id == makeLayout(letters, 16).id && type == eVT_UnsignedShortNorm))
		{
			return true;
		}
	}
	return false;
}

void savePng(const CZORTexture& texture, unsigned int slice, const std::string& path)
{
	static constexpr int kColourTypes[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA};
	const PixelType layout = texture.getPixelType();
	if (!isPngLayout(layout, texture.getChannelType()) || slice >= texture.getDepth() || !texture.isDataComplete())
	{
		throw Refusal(path, "there is no picture that a PNG file holds");
	}
	const std::size_t rowBytes = static_cast<std::size_t>(texture.getWidth()) * texture.getBitsPerPixel() / 8;
	const auto* pixels = static_cast<const unsigned char*>(texture.getDataPtr()) + slice * rowBytes * texture.getHeight();

	AtomicOutput output(path);
	std::unique_ptr<std::FILE, FileCloser> file(std::fopen(output.path().c_str(), "wb"));
	char message[160] = "not enough memory";
	std::unique_ptr<png_struct, WriteDeleter> writer(png_create_write_struct(PNG_LIBPNG_VER_STRING, message, onError, onWarning));
	if (file == nullptr || writer == nullptr)
	{
		throw Refusal(path, file == nullptr ? std::string("cannot be written: ") + std::strerror(errno) : message);
	}
	writer.get_deleter().info = png_create_info_struct(writer.get());
	errno = 0;
	if (writer.get_deleter().info == nullptr || !writePicture(writer.get(), writer.get_deleter().info, file.get(), texture, pixels,
	                                                          kColourTypes[channelCount(layout) - 1], layout.channelBits[0], rowBytes))
	{
		throw Refusal(path, std::string("cannot be written: ") + (errno != 0 ? std::strerror(errno) : message));
	}
	const bool isFlushed = std::fflush(file.get()) == 0;
	const int flushError = errno;
	const bool isClosed = std::fclose(file.release()) == 0;
	if (!isFlushed || !isClosed)
	{
		throw Refusal(path, std::string("cannot be written: ") + std::strerror(isFlushed ? errno : flushError));
	}
	output.commit();
}
} // namespace zortex
