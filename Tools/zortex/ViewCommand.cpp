#include <algorithm>
#include <cmath>
#include <iostream>

#include "Commands.h"
#include "Layouts.h"
#include "PngFile.h"
#include "Refusal.h"
#include "StandardForm.h"
#include "Text.h"
#include "TextureDescription.h"
#include "TextureFile.h"

namespace zortex
{
using namespace zortexture;

namespace
{
using Length = unsigned long long;

constexpr Length kGap = 4;
constexpr Length kMaxSide = 65535;
constexpr Length kMaxTexels = 1u << 28;
constexpr unsigned char kBackground = 64;
constexpr unsigned char kChecker[] = {153, 204};
constexpr unsigned int kCheckerSide = 8;

struct Place
{
	Length x = 0;
	Length y = 0;
};

/// Where everything goes: a cell for each face of each surface; in it the top level, and the others one below the other at
/// its right; and the depth slices of a level as a square.
class SheetLayout
{
public:
	explicit SheetLayout(const CZORTextureHeader& header) : m_faces(header.getNumFaces())
	{
		for (unsigned int level = 0; level < header.getNumMIPLevels(); ++level)
		{
			const auto columns = static_cast<Length>(std::ceil(std::sqrt(static_cast<double>(header.getDepth(level)))));
			const Length rows = (header.getDepth(level) + columns - 1) / columns;
			m_levels.push_back({{}, columns, header.getWidth(level), header.getHeight(level)});
			const Length width = columns * (header.getWidth(level) + kGap);
			const Length height = rows * (header.getHeight(level) + kGap);
			Place& place = m_levels.back().place;
			if (level > 0)
			{
				place = {m_topWidth, m_sideHeight};
				m_sideHeight += height;
				m_sideWidth = std::max(m_sideWidth, width);
			}
			else
			{
				m_topWidth = width;
				m_cellHeight = height;
			}
		}
		m_cellHeight = std::max(m_cellHeight, m_sideHeight);
		// A column for each face, or an array as a square.
		const Length surfaces = header.getNumArrayMembers();
		const Length cells = surfaces * m_faces;
		m_columns = m_faces > 1 ? m_faces : static_cast<Length>(std::ceil(std::sqrt(static_cast<double>(surfaces))));
		m_rows = (cells + m_columns - 1) / m_columns;
	}

	Length width() const
	{
		return m_columns * (m_topWidth + m_sideWidth) + kGap;
	}

	Length height() const
	{
		return m_rows * m_cellHeight + kGap;
	}

	/// The top left corner of a slice.
	Place placeOf(unsigned int level, unsigned int surface, unsigned int face, unsigned int slice) const
	{
		const Length cell = static_cast<Length>(surface) * m_faces + face;
		const Level& row = m_levels[level];
		return {kGap + cell % m_columns * (m_topWidth + m_sideWidth) + row.place.x + slice % row.columns * (row.width + kGap),
		        kGap + cell / m_columns * m_cellHeight + row.place.y + slice / row.columns * (row.height + kGap)};
	}

private:
	struct Level
	{
		Place place;
		Length columns;
		Length width;
		Length height;
	};

	std::vector<Level> m_levels;
	Length m_faces;
	Length m_columns = 1;
	Length m_rows = 1;
	Length m_topWidth = 0;
	Length m_sideWidth = 0;
	Length m_sideHeight = 0;
	Length m_cellHeight = 0;
};

/// One colour over the checkerboard.
unsigned char blend(unsigned int colour, unsigned int alpha, unsigned int background, bool isPreMultiplied)
{
	const unsigned int foreground = isPreMultiplied ? colour * 255 : colour * alpha;
	return static_cast<unsigned char>(std::min(255u, (foreground + background * (255 - alpha) + 127) / 255));
}

/// Draws one slice of rgba texels.
void drawSlice(const unsigned char* texels, unsigned int width, unsigned int height, bool isPreMultiplied, const Place& place,
               CZORTexture& sheet)
{
	auto* const pixels = static_cast<unsigned char*>(sheet.getDataPtr());
	for (unsigned int y = 0; y < height; ++y)
	{
		unsigned char* out = pixels + ((place.y + y) * sheet.getWidth() + place.x) * 3;
		for (unsigned int x = 0; x < width; ++x, texels += 4, out += 3)
		{
			const unsigned int background = kChecker[(x / kCheckerSide + y / kCheckerSide) % 2];
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				out[channel] = blend(texels[channel], texels[3], background, isPreMultiplied);
			}
		}
	}
}

CZORTexture drawSheet(const CZORTexture& texture, const std::string& file)
{
	const SheetLayout layout(texture);
	if (layout.width() > kMaxSide || layout.height() > kMaxSide || layout.width() * layout.height() > kMaxTexels)
	{
		throw Refusal(file, "is too large for one picture: it would be " + std::to_string(layout.width()) + "x" +
		                        std::to_string(layout.height()));
	}
	const CZORTextureHeader header(makeLayout("rgb", 8).id, static_cast<unsigned int>(layout.height()),
	                               static_cast<unsigned int>(layout.width()), 1, 1, 1, 1, eCS_sRGB);
	CZORTexture sheet(header);
	auto* const pixels = static_cast<unsigned char*>(sheet.getDataPtr());
	std::fill(pixels, pixels + sheet.getDataSize(), kBackground);
	for (unsigned int level = 0; level < texture.getNumMIPLevels(); ++level)
	{
		const std::size_t sliceBytes = static_cast<std::size_t>(texture.getWidth(level)) * texture.getHeight(level) * 4;
		for (unsigned int surface = 0; surface < texture.getNumArrayMembers(); ++surface)
		{
			for (unsigned int face = 0; face < texture.getNumFaces(); ++face)
			{
				const auto* texels = static_cast<const unsigned char*>(texture.getDataPtr(level, surface, face));
				for (unsigned int slice = 0; slice < texture.getDepth(level); ++slice)
				{
					drawSlice(texels + slice * sliceBytes, texture.getWidth(level), texture.getHeight(level), texture.isPreMultiplied(),
					          layout.placeOf(level, surface, face, slice), sheet);
				}
			}
		}
	}
	return sheet;
}
} // namespace

void runView(const std::string& input, const std::string& output)
{
	if (extensionOf(output) != "png")
	{
		throw UsageError(output + ": the output's extension must be .png");
	}
	CZORTexture texture = loadTexture(input).texture;
	const CZORTextureHeader header = texture.getHeader();
	if (const std::string problem = sourceProblem(texture); !problem.empty())
	{
		throw Refusal(input, problem);
	}
	// Directions have no colour space to be converted from.
	makeStandard(texture, eVT_UnsignedByteNorm, texture.isBumpMap() ? texture.getColourSpace() : eCS_sRGB, input);
	const CZORTexture sheet = drawSheet(texture, input);
	savePng(sheet, 0, output);
	std::cout << output << ": " << sheet.getWidth() << "x" << sheet.getHeight() << ", all of " << summariseTexture(header) << "\n";
}
} // namespace zortex
