#include <cstdio>
#include <cstdlib>

#include "kiln.h"

int ConstructListOfNeededModes(const KilnSettings& settings, const KilnBlock& block, bool useHard, std::array<int, kKilnModeSlots>& modes)
{
	if (settings.bpp != 2 && settings.bpp != 4)
	{
		std::fputs("Exiting! 1bpp not yet implemented (OptimiseRegion)\n", stderr);
		std::abort();
	}

	int count = 0;
	if (settings.bpp == 4)
	{
		modes[count++] = kKilnStandard;
		modes[count++] = kKilnPunchThrough;
	}
	else if (block.preferredInterpolation != 0)
	{
		modes[count++] = kKilnDirect;
		modes[count++] = kKilnDirect + block.preferredInterpolation;
	}
	else
	{
		for (int mode = kKilnDirect; mode <= kKilnInterpolatedVertical; ++mode)
		{
			modes[count++] = mode;
		}
	}

	if (useHard && settings.tessel2)
	{
		const int smoothCount = count;
		for (int i = 0; i < smoothCount; ++i)
		{
			modes[count++] = modes[i] + kilnHardBit(settings.bpp);
		}
	}
	return count;
}
