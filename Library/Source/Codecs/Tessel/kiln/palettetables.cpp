#include "palettetables.h"

namespace
{
constexpr std::uint8_t kNo = kKilnNoSlot;
} // namespace

// The published tables. clang-format would break the rows of the window.
// clang-format off
const std::array<std::array<std::uint8_t, 4>, kKilnWindow4Bpp> PaletteModeSelection = {{
	{kNo, kNo, kNo, kNo}, {0, 1, 2, 3}, {0, 1, 2, 3}, {0, 1, 2, 3}, {kNo, kNo, kNo, kNo}, {0, 1, 2, 3}, {0, 1, 2, 3}, {0, 1, 2, 3}, {kNo, kNo, kNo, kNo},
	{0, 1, 4, 5}, {0, 1, 2, 5}, {0, 1, 2, 3}, {2, 3, 6, 1}, {0, 1, 4, 5}, {0, 1, 2, 5}, {0, 1, 2, 3}, {2, 3, 6, 1}, {2, 3, 6, 7},
	{0, 1, 4, 5}, {0, 1, 4, 5}, {0, 3, 4, 7}, {2, 3, 6, 7}, {0, 1, 4, 5}, {0, 1, 4, 5}, {0, 3, 4, 7}, {2, 3, 6, 7}, {2, 3, 6, 7},
	{0, 1, 4, 5}, {4, 5, 0, 7}, {4, 5, 6, 7}, {6, 7, 4, 3}, {0, 1, 4, 5}, {4, 5, 0, 7}, {4, 5, 6, 7}, {6, 7, 4, 3}, {2, 3, 6, 7},
	{kNo, kNo, kNo, kNo}, {0, 1, 2, 3}, {0, 1, 2, 3}, {0, 1, 2, 3}, {kNo, kNo, kNo, kNo}, {0, 1, 2, 3}, {0, 1, 2, 3}, {0, 1, 2, 3}, {kNo, kNo, kNo, kNo},
	{0, 1, 4, 5}, {0, 1, 2, 5}, {0, 1, 2, 3}, {2, 3, 6, 1}, {0, 1, 4, 5}, {0, 1, 2, 5}, {0, 1, 2, 3}, {2, 3, 6, 1}, {2, 3, 6, 7},
	{0, 1, 4, 5}, {0, 1, 4, 5}, {0, 3, 4, 7}, {2, 3, 6, 7}, {0, 1, 4, 5}, {0, 1, 4, 5}, {0, 3, 4, 7}, {2, 3, 6, 7}, {2, 3, 6, 7},
	{0, 1, 4, 5}, {4, 5, 0, 7}, {4, 5, 6, 7}, {6, 7, 4, 3}, {0, 1, 4, 5}, {4, 5, 0, 7}, {4, 5, 6, 7}, {6, 7, 4, 3}, {2, 3, 6, 7},
	{kNo, kNo, kNo, kNo}, {4, 5, 6, 7}, {4, 5, 6, 7}, {4, 5, 6, 7}, {kNo, kNo, kNo, kNo}, {4, 5, 6, 7}, {4, 5, 6, 7}, {4, 5, 6, 7}, {kNo, kNo, kNo, kNo},
}};

const std::array<std::array<std::uint8_t, 2>, kKilnWindow4Bpp> PaletteModeCentralOptions = {{
	{kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo},
	{kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {2, kNo}, {2, 3}, {kNo, 3}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo},
	{kNo, kNo}, {kNo, kNo}, {kNo, 3}, {2, 3}, {2, 3}, {2, 3}, {2, kNo}, {kNo, kNo}, {kNo, kNo},
	{kNo, kNo}, {kNo, 3}, {2, 3}, {0, 1}, {2, 3}, {0, 1}, {0, 1}, {2, kNo}, {kNo, kNo},
	{kNo, kNo}, {2, 3}, {2, 3}, {2, 3}, {kNo, kNo}, {0, 1}, {0, 1}, {0, 1}, {kNo, kNo},
	{kNo, kNo}, {2, kNo}, {2, 3}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {kNo, 3}, {kNo, kNo},
	{kNo, kNo}, {kNo, kNo}, {kNo, 1}, {0, 1}, {0, 1}, {0, 1}, {0, kNo}, {kNo, kNo}, {kNo, kNo},
	{kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, 3}, {0, 1}, {2, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo},
	{kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo}, {kNo, kNo},
}};

const std::array<std::array<std::uint8_t, 4>, 16> PalModRemapper4Col = {{
	{0, 3, 2, 1}, {2, 3, 0, 1}, {0, 1, 2, 3}, {0, 1, 2, 3},
	{2, 3, 0, 1}, {0, 1, 2, 3}, {0, 1, 2, 3}, {2, 3, 0, 1},
	{0, 1, 2, 3}, {0, 1, 2, 3}, {0, 1, 2, 3}, {0, 1, 2, 3},
	{0, 1, 2, 3}, {2, 3, 0, 1}, {0, 1, 2, 3}, {0, 1, 2, 3},
}};
// clang-format on
