#include "passes.h"

#include <algorithm>
#include <cmath>

namespace
{
struct PassQuality
{
	int passesTessel1;
	int passesTessel2;
	int iterations;
	int candidatesKept;
	/// Colour variants in pass 1, and how many fewer there are in each pass after it.
	int firstVariants;
	int variantsDecrease;
	/// The share of the mean error below which a block is left alone.
	double thresholdFactor;
	int hardVariantStep;
};

constexpr std::array<PassQuality, kKilnBestQuality + 1> kQualities = {{
    {2, 2, 4, 1, 4, 2, 0.5, 4},
    {4, 5, 8, 1, 7, 2, 0.4, 4},
    {6, 6, 16, 2, 10, 1, 0.3, 4},
    {8, 8, 16, 3, 13, 1, 0.2, 4},
    {16, 16, 20, 3, 13, 0, 0.001, 2},
    {32, 32, 22, 4, 13, 0, 0.0005, 1},
    {128, 128, 32, 4, 13, 0, 0.0, 1},
}};
} // namespace

int kilnPassCount(int quality, bool tessel2)
{
	const PassQuality& row = kQualities[static_cast<std::size_t>(quality)];
	return tessel2 ? row.passesTessel2 : row.passesTessel1;
}

void kilnEnterPass(KilnSettings& settings, int quality, int pass, std::uint64_t meanError)
{
	const PassQuality& row = kQualities[static_cast<std::size_t>(quality)];
	if (pass == 0)
	{
		settings.iterations = 1;
		settings.wideSearch = true;
		settings.candidatesKept = 4;
		settings.variants = 8;
		settings.errorThreshold = 0;
		settings.hardAllowed = false;
		settings.hardNeighbours = false;
		settings.modesChanged = true;
		settings.hardVariantStep = row.hardVariantStep;
		return;
	}
	constexpr int kLastSmoothPass = 3;
	constexpr int kMostWidePasses = 4;
	const KilnSettings before = settings;
	const int passes = kilnPassCount(quality, settings.tessel2);
	const int widePasses = passes > 7 ? kMostWidePasses : passes / 2;
	settings.iterations = row.iterations;
	settings.candidatesKept = row.candidatesKept;
	settings.variants = std::max(0, row.firstVariants - row.variantsDecrease * (pass - 1));
	settings.errorThreshold = static_cast<std::uint64_t>(std::floor(static_cast<double>(meanError) * row.thresholdFactor + 0.5));
	settings.hardAllowed = pass > kLastSmoothPass && settings.tessel2;
	settings.hardNeighbours = settings.hardAllowed && settings.blocksX > 1 && settings.blocksY > 1 && pass < passes - 1;
	settings.wideSearch = pass < widePasses;
	settings.modesChanged = (settings.hardAllowed && !before.hardAllowed) || (settings.hardNeighbours && !before.hardNeighbours) ||
	                        settings.variants > before.variants || settings.wideSearch != before.wideSearch;
}
