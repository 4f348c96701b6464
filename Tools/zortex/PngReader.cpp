#include <algorithm>
#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <memory>
#include <png.h>

#include "PngFile.h"
#include "Refusal.h"

namespace zortex
{
using namespace zortexture;

namespace
{
/// The most that one byte of a deflate stream can expand to.
constexpr unsigned long long kMaxDeflateRatio = 1032;

/// The state that libpng's callbacks see. Plain data only: errors leave them by longjmp.
struct ReadState
{
	const unsigned char* bytes;
	std::size_t remaining;
	char message[160];
};

void keepMessage(ReadState& state, const char* message)
{
	std::strncpy(state.message, message, sizeof(state.message) - 1);
	state.message[sizeof(state.message) - 1] = '\0';
}

[[noreturn]] void onError(png_structp png, png_const_charp message)
{
	keepMessage(*static_cast<ReadState*>(png_get_error_ptr(png)), message);
	png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp)
{
}

void onRead(png_structp png, png_bytep destination, png_size_t count)
{
	auto& state = *static_cast<ReadState*>(png_get_io_ptr(png));
	if (count > state.remaining)
	{
		png_error(png, "the file is cut short");
	}
	std::memcpy(destination, state.bytes, count);
	state.bytes += count;
	state.remaining -= count;
}

/// Runs a step of libpng calls; false when one of them failed. The step holds nothing that needs a destructor.
template<typename Step>
bool guarded(png_structp png, Step step)
{
	if (setjmp(png_jmpbuf(png)) != 0)
	{
		return false;
	}
	step();
	return true;
}

struct ReadDeleter
{
	png_infop info = nullptr;

	void operator()(png_struct* png)
	{
		png_destroy_read_struct(&png, &info, nullptr);
	}
};

struct Picture
{
	unsigned int width;
	unsigned int height;
	unsigned int bitDepth;
	unsigned int channels;
	std::size_t rowBytes;
	bool isLinear;
};

/// Reads what stands before the pixels, and asks for pixels of 8 or 16 bits without a palette.
void readHeader(png_structp png, png_infop info, Picture& picture)
{
	png_read_info(png, info);
	png_set_expand(png);
	if (std::endian::native == std::endian::little)
	{
		png_set_swap(png);
	}
	png_set_interlace_handling(png);
	png_read_update_info(png, info);

	picture.width = png_get_image_width(png, info);
	picture.height = png_get_image_height(png, info);
	picture.bitDepth = png_get_bit_depth(png, info);
	picture.channels = png_get_channels(png, info);
	picture.rowBytes = png_get_rowbytes(png, info);

	double gamma = 0.0;
	const bool hasProfile = png_get_valid(png, info, PNG_INFO_sRGB) != 0 || png_get_valid(png, info, PNG_INFO_iCCP) != 0;
	picture.isLinear = !hasProfile && png_get_gAMA(png, info, &gamma) != 0 && std::abs(gamma - 1.0) < 0.05;
}

PixelType layoutOf(const Picture& picture)
{
	static constexpr const char* kLetters[] = {"l", "la", "rgb", "rgba"};
	PixelType layout;
	for (unsigned int i = 0; i < picture.channels; ++i)
	{
		layout.channelName[i] = static_cast<unsigned char>(kLetters[picture.channels - 1][i]);
		layout.channelBits[i] = static_cast<unsigned char>(picture.bitDepth);
	}
	return layout;
}
} // namespace

bool isPngSignature(const unsigned char* bytes, std::size_t count)
{
	return count >= 8 && png_sig_cmp(bytes, 0, 8) == 0;
}

CZORTexture decodePng(const std::vector<unsigned char>& content, const std::string& path)
{
	if (!isPngSignature(content.data(), content.size()))
	{
		throw Refusal(path, "is not a PNG file");
	}
	ReadState state = {content.data(), content.size(), {}};
	std::unique_ptr<png_struct, ReadDeleter> reader(png_create_read_struct(PNG_LIBPNG_VER_STRING, &state, onError, onWarning));
	if (reader == nullptr)
	{
		throw Refusal(path, state.message[0] != '\0' ? state.message : "not enough memory");
	}
	png_structp png = reader.get();
	png_infop info = png_create_info_struct(png);
	if (info == nullptr)
	{
		throw Refusal(path, "not enough memory");
	}
	reader.get_deleter().info = info;

	Picture picture = {};
	const bool hasHeader = guarded(png,
	                               [png, info, &state, &picture]()
	                               {
		                               png_set_read_fn(png, &state, onRead);
		                               readHeader(png, info, picture);
	                               });
	if (!hasHeader)
	{
		throw Refusal(path, std::string("is a damaged PNG file: ") + state.message);
	}

	const unsigned long long totalBytes = static_cast<unsigned long long>(picture.rowBytes) * picture.height;
	if (totalBytes > 0xFFFFFFFFull)
	{
		throw Refusal(path, "the picture is too large");
	}
	// A file that is far too small for its picture is refused before the picture takes memory. Palettes and few bits a
	// pixel expand by another factor of up to 32 (one bit to four bytes).
	if (totalBytes / 32 > kMaxDeflateRatio * content.size())
	{
		throw Refusal(path, "is a damaged PNG file: too short for its picture");
	}

	CZORTextureHeader header(layoutOf(picture).id, picture.height, picture.width);
	header.setColourSpace(picture.isLinear ? eCS_lRGB : eCS_sRGB);
	header.setChannelType(picture.bitDepth == 16 ? eVT_UnsignedShortNorm : eVT_UnsignedByteNorm);
	CZORTexture texture(header, nullptr);
	auto* const pixels = static_cast<unsigned char*>(texture.getDataPtr());
	if (pixels == nullptr || !texture.isDataComplete())
	{
		throw Refusal(path, "the picture is too large");
	}
	std::vector<png_bytep> rows(picture.height);
	for (std::size_t y = 0; y < rows.size(); ++y)
	{
		rows[y] = pixels + y * picture.rowBytes;
	}
	png_bytepp rowTable = rows.data();
	const bool isWhole = guarded(png,
	                             [png, rowTable]()
	                             {
		                             png_read_image(png, rowTable);
		                             png_read_end(png, nullptr);
	                             });
	if (!isWhole)
	{
		throw Refusal(path, std::string("is a damaged PNG file: ") + state.message);
	}
	return texture;
}
} // namespace zortex
