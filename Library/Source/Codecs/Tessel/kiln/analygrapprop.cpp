#include "analygrapprop.h"

#include <bit>
#include <cstring>

#include "flatness.h"

using namespace zortexture;

namespace
{
constexpr int kMaxHeight = 9;

/// A bit for each pixel of each row of a window, between two rows of none.
struct RowBits
{
	std::array<std::uint32_t, kMaxHeight + 2> rows = {};

	std::uint32_t& at(int y)
	{
		return rows[static_cast<unsigned>(y + 1)];
	}
	std::uint32_t at(int y) const
	{
		return rows[static_cast<unsigned>(y + 1)];
	}
};

struct WindowShape
{
	int width;
	int height;
	int pixels;
	/// The bits of a whole row.
	std::uint32_t all;

	explicit WindowShape(const KilnSettings& settings)
	    : width(settings.windowWidth), height(settings.windowHeight), pixels(settings.windowPixels()), all((1U << width) - 1)
	{
	}

	RowBits inRows(const KilnPixelBits& bits) const
	{
		RowBits result;
		for (int y = 0; y < height; ++y)
		{
			const unsigned first = static_cast<unsigned>(y * width);
			const std::uint64_t next = first / 32 + 1 < std::size(bits.words) ? bits.words[first / 32 + 1] : 0;
			result.at(y) = static_cast<std::uint32_t>((next << 32 | bits.words[first / 32]) >> (first % 32)) & all;
		}
		return result;
	}

	/// Rim pixels, which lack a neighbour, take the bits of the pixel inside of them.
	void copyToRim(RowBits& bits) const
	{
		for (int y = 1; y < height - 1; ++y)
		{
			const std::uint32_t inner = bits.at(y) & (all >> 1) & ~1U;
			bits.at(y) = inner | (inner >> 1 & 1) | (inner << 1 & (all + 1) >> 1);
		}
		bits.at(0) = bits.at(1);
		bits.at(height - 1) = bits.at(height - 2);
	}
};

/// The steps by which a region may grow.
struct Growth
{
	/// Pixels alike to its first one, from any side.
	RowBits alike;
	/// Pixels at which colours run straight on, along that direction.
	RowBits horizontal;
	RowBits vertical;
};

/// Lets a region grow over free pixels.
void growRegion(const WindowShape& shape, const Growth& growth, const RowBits& isFree, RowBits& region)
{
	const auto growRow = [&](int y)
	{
		const std::uint32_t beside = region.at(y - 1) | region.at(y + 1);
		const std::uint32_t fromRows = ((beside | beside << 1 | beside >> 1) & growth.alike.at(y)) | (beside & growth.vertical.at(y));
		std::uint32_t row = region.at(y) | (fromRows & isFree.at(y));
		// Along the row as far as it goes.
		const std::uint32_t open = (growth.alike.at(y) | growth.horizontal.at(y)) & isFree.at(y);
		for (std::uint32_t before = 0; before != row;)
		{
			before = row;
			row |= (row << 1 | row >> 1) & open;
		}
		const bool changed = row != region.at(y);
		region.at(y) = row;
		return changed;
	};
	for (bool changed = true; changed;)
	{
		changed = false;
		for (int y = 0; y < shape.height; ++y)
		{
			changed = growRow(y) || changed;
		}
		for (int y = shape.height - 2; y >= 0 && changed; --y)
		{
			growRow(y);
		}
	}
}

/// Finds the regions of a window one after another, in the order of their first pixels.
/// @param visit  takes the bits of each.
/// @return their number; counting ends at `most`.
template<typename Visit>
int findRegions(const KilnColour* window, const KilnSettings& settings, int most, const Visit& visit)
{
	const WindowShape shape(settings);
	KilnPaddedWindow padded;
	std::uint8_t* const pixels = padded.bytes + 4 * KilnPaddedWindow::kMargin;
	const std::size_t size = 4 * static_cast<std::size_t>(shape.pixels);
	std::memset(padded.bytes, 0, 4 * KilnPaddedWindow::kMargin);
	std::memcpy(pixels, window, size);
	std::memset(pixels + size, 0, sizeof(padded.bytes) - 4 * KilnPaddedWindow::kMargin - size);

	return withSimdLevel(
	    [&](auto level)
	    {
		    using Flatness = KilnFlatness<level>;
		    KilnPixelBits bits = {};
		    Growth growth;
		    Flatness::findStraight(padded, shape.pixels, 1, bits);
		    growth.horizontal = shape.inRows(bits);
		    shape.copyToRim(growth.horizontal);
		    Flatness::findStraight(padded, shape.pixels, shape.width, bits);
		    growth.vertical = shape.inRows(bits);
		    shape.copyToRim(growth.vertical);
		    RowBits clear;
		    if (settings.punchThrough)
		    {
			    for (int i = 0; i < shape.pixels; ++i)
			    {
				    clear.at(i / shape.width) |= window[i][3] == 0 ? 1U << i % shape.width : 0;
			    }
		    }
		    RowBits isFree;
		    for (int y = 0; y < shape.height; ++y)
		    {
			    isFree.at(y) = shape.all;
		    }
		    int count = 0;
		    for (int y = 0; y < shape.height && count < most;)
		    {
			    if (isFree.at(y) == 0)
			    {
				    ++y;
				    continue;
			    }
			    const int x = std::countr_zero(isFree.at(y));
			    Flatness::findAlike(padded, shape.pixels, y * shape.width + x, bits);
			    growth.alike = shape.inRows(bits);
			    if ((clear.at(y) >> x & 1) != 0)
			    {
				    for (int row = 0; row < shape.height; ++row)
				    {
					    growth.alike.at(row) |= clear.at(row);
				    }
			    }
			    RowBits region;
			    region.at(y) = 1U << x;
			    growRegion(shape, growth, isFree, region);
			    for (int row = 0; row < shape.height; ++row)
			    {
				    isFree.at(row) &= ~region.at(row);
			    }
			    visit(count++, region);
		    }
		    return count;
	    });
}
} // namespace

int AnalyseGraphicsProperties(const KilnColour* window, const KilnSettings& settings, KilnRegions& regions)
{
	int listed = 0;
	regions.count = findRegions(window, settings, settings.windowPixels(),
	                            [&](int number, const RowBits& region)
	                            {
		                            for (int y = 0; y < settings.windowHeight; ++y)
		                            {
			                            for (std::uint32_t row = region.at(y); row != 0; row &= row - 1)
			                            {
				                            const int pixel = y * settings.windowWidth + std::countr_zero(row);
				                            regions.map[pixel] = static_cast<std::uint8_t>(number);
				                            regions.order[listed++] = static_cast<std::uint8_t>(pixel);
			                            }
		                            }
	                            });
	return regions.count;
}

bool kilnIsGraphics(const KilnColour* window, const KilnSettings& settings)
{
	const int tooMany = (settings.windowPixels() + 3) / 4;
	return findRegions(window, settings, tooMany, [](int, const RowBits&) {}) < tooMany;
}
