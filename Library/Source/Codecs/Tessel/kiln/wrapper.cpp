#include "wrapper.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <memory>

#include "bitmap.h"
#include "decompress.h"

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
