#include "wrapper.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>

#include "bitmap.h"
#include "decompress.h"
#include "kiln_localised.h"
#include "messages.h"
#include "passes.h"
#include "progress.h"
#include "ptpreprocess.h"

int tessel_decompress(const void* compressed, void* pixels, unsigned width, unsigned height, unsigned version, bool is2bpp)
{
	const unsigned blockWidth = is2bpp ? 8 : 4;
	if (width > INT_MAX - 7 || height > INT_MAX - 3)
	{
		return 0;
	}
	const int workWidth = static_cast<int>((width + blockWidth - 1) & ~(blockWidth - 1));
	const int workHeight = static_cast<int>((height + 3) & ~3U);
	const std::unique_ptr<bitmap, void (*)(bitmap*)> image(new_bitmap(workWidth, workHeight, true, nullptr), delete_bitmap);
	if (image == nullptr)
	{
		return 0;
	}
	const int generation = version != 0 ? 1 : 0;
	Decompress(compressed, 0, generation, kKilnWordType, is2bpp ? 2 : 4, workWidth, workHeight, 1, 0, generation, image.get());

	// The image is stored by columns: copy bands of rows, each column's part from one cache line.
	constexpr unsigned kBand = 16;
	auto* out = static_cast<unsigned char*>(pixels);
	for (unsigned band = 0; band < height; band += kBand)
	{
		const unsigned endRow = std::min(height, band + kBand);
		for (unsigned x = 0; x < width; ++x)
		{
			const bitmap_colour* column = image->pixels[x];
			for (unsigned y = band; y < endRow; ++y)
			{
				unsigned char* pixel = out + 4 * (static_cast<std::size_t>(y) * width + x);
				pixel[0] = column[y].r;
				pixel[1] = column[y].g;
				pixel[2] = column[y].b;
				pixel[3] = column[y].a;
			}
		}
	}
	return 1;
}

int TesselCompressTexture(const void* pixels, bool isRGBA, unsigned width, unsigned height, unsigned pitch, void* out, unsigned quality,
                          bool punchThrough, int wordType, int bpp, unsigned version, bool linear, KilnProgress* progress)
{
	kilnResetProgress(progress, static_cast<std::uint64_t>(width) * height);
	if (width > INT_MAX || height > INT_MAX)
	{
		return 1;
	}
	const std::unique_ptr<KilnImage> image = NewImage(static_cast<int>(width), static_cast<int>(height));
	if (image == nullptr)
	{
		return 1;
	}
	const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(KilnColour);
	const std::size_t stride = pitch != 0 ? pitch : rowBytes;
	for (unsigned y = 0; y < height; ++y)
	{
		std::memcpy(image->row(static_cast<int>(y)), static_cast<const unsigned char*>(pixels) + y * stride, rowBytes);
	}
	if (!isRGBA)
	{
		for (KilnColour& pixel : image->pixels)
		{
			std::swap(pixel[0], pixel[2]);
		}
	}
	if (punchThrough)
	{
		fprintf_flush(GlobDebugOutput, "Doing \"Punch-Through\" preprocess of top map.....\n");
		PTPreprocess(*image, static_cast<int>(version));
	}
	fprintf_flush(GlobDebugOutput, "Compressing top map (%d * %d).....\n", image->width, image->height);
	const unsigned level = std::min<unsigned>(quality, kKilnBestQuality);
	return KILNNewMethod(*image, wordType, bpp, static_cast<int>(version), linear, static_cast<int>(level), punchThrough, out, progress);
}

int tessel_compress(const void* in, void* out, unsigned width, unsigned height, unsigned version, unsigned quality, bool is2bpp)
{
	return TesselCompressTexture(in, true, width, height, 0, out, quality, false, kKilnWordType, is2bpp ? 2 : 4, version, version == 1,
	                             nullptr);
}
