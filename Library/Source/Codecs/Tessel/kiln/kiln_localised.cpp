#include "kiln_localised.h"

#include <algorithm>
#include <bit>
#include <new>

#include "decompress.h"
#include "initialreps.h"
#include "messages.h"
#include "optimise.h"
#include "packing.h"
#include "passes.h"
#include "progress.h"
#include "representable.h"
#include "swapping.h"
#include "threadsupport.h"

namespace
{
constexpr int kBytesPerBlock = 8;

KilnSettings makeSettings(const KilnImage& image, int wordType, int bpp, bool tessel2, bool punchThrough)
{
	KilnSettings settings;
	settings.wordType = wordType;
	settings.bpp = bpp;
	settings.blockWidth = bpp == 2 ? 8 : 4;
	settings.blockHeight = kKilnBlockHeight;
	settings.windowWidth = 2 * settings.blockWidth + 1;
	settings.windowHeight = 2 * settings.blockHeight + 1;
	settings.tessel2 = tessel2;
	settings.blocksX = image.width / settings.blockWidth;
	settings.blocksY = image.height / settings.blockHeight;
	settings.punchThrough = bpp == 4 && punchThrough;
	return settings;
}

bool allocateBlockRows(const KilnSettings& settings, KilnBlockRows& blocks)
{
	std::size_t row = 0;
	try
	{
		blocks.resize(static_cast<std::size_t>(settings.blocksY));
		for (; row < blocks.size(); ++row)
		{
			// The threads of the statistics fill them.
			blocks[row].reserve(static_cast<std::size_t>(settings.blocksX));
		}
		return true;
	}
	catch (const std::bad_alloc&)
	{
		fprintf_flush(stderr, "%s:%s failed malloc @ %s:%d\n", "Panic", "SearchForImageRepresentatives",
		              "Library/Source/Codecs/Tessel/kiln/kiln_localised", __LINE__);
		fprintf_flush(stderr, "At row:%d\n", static_cast<int>(row));
		return false;
	}
}

/// Runs a stage over so many rows, which its threads claim one by one, since some take longer than others.
bool runRows(KilnThreadRoutine routine, const KilnThreadRecord& common, int threads, int rows)
{
	std::atomic<int> nextRow = 0;
	std::vector<KilnThreadRecord> pieces(static_cast<std::size_t>(threads), common);
	for (KilnThreadRecord& piece : pieces)
	{
		piece.nextRow = &nextRow;
		piece.endRow = rows;
	}
	return kilnRunStage(routine, pieces);
}

void straightenColours(const KilnSettings& settings, KilnBlockRows& blocks)
{
	std::vector<KilnPair> colours;
	colours.reserve(static_cast<std::size_t>(settings.blocksX) * settings.blocksY);
	for (const std::vector<KilnBlock>& row : blocks)
	{
		for (const KilnBlock& block : row)
		{
			colours.push_back(block.current().pair);
		}
	}
	const std::vector<bool> exchange = CreateColourSwappingRecommendations(settings.blocksX, settings.blocksY, true, colours);
	if (!exchange.empty())
	{
		kilnExchangeColours(blocks, settings.tessel2, exchange);
	}
}

std::uint64_t meanError(const KilnBlockRows& blocks)
{
	std::uint64_t sum = 0;
	std::uint64_t count = 0;
	for (const std::vector<KilnBlock>& row : blocks)
	{
		for (const KilnBlock& block : row)
		{
			sum += block.current().error;
			++count;
		}
	}
	return (sum + count / 2) / count;
}

bool isPowerOfTwo(int value)
{
	return std::has_single_bit(static_cast<unsigned>(value));
}
} // namespace

KilnFilterWindow kilnFilterWindow(const KilnSettings& settings)
{
	static constexpr std::array<float, 9> DownFilter_Pos2Pos4xFIR = {0, 8, 26, 58, 127, 58, 26, 8, 0};
	static constexpr std::array<float, 17> DownFilter_Pos2Pos8xFIR = {0, 3, 8, 15, 26, 39, 58, 85, 127, 85, 58, 39, 26, 15, 8, 3, 0};
	const float* filterX = settings.blockWidth == 8 ? DownFilter_Pos2Pos8xFIR.data() : DownFilter_Pos2Pos4xFIR.data();
	const float* filterY = DownFilter_Pos2Pos4xFIR.data();
	const auto sumOf = [](const float* filter, int count)
	{
		float sum = 0.0F;
		for (int i = 0; i < count; ++i)
		{
			sum += filter[i];
		}
		return sum;
	};
	const float sum = sumOf(filterY, settings.windowHeight) * sumOf(filterX, settings.windowWidth);
	KilnFilterWindow window = {};
	std::size_t pixel = 0;
	for (int y = 0; y < settings.windowHeight; ++y)
	{
		const int ownY = y - settings.blockHeight / 2;
		for (int x = 0; x < settings.windowWidth; ++x, ++pixel)
		{
			const int ownX = x - settings.blockWidth / 2;
			const bool isOwn = ownX >= 0 && ownX < settings.blockWidth && ownY >= 0 && ownY < settings.blockHeight;
			window.weights[pixel] = filterY[y] * filterX[x] / sum;
			window.centralMask[pixel] = isOwn || x == settings.blockWidth || y == settings.blockHeight ? 1 : 0;
		}
	}
	return window;
}

void kilnExchangeColours(KilnBlockRows& blocks, bool tessel2, const std::vector<bool>& exchange)
{
	std::size_t i = 0;
	for (std::vector<KilnBlock>& row : blocks)
	{
		for (KilnBlock& block : row)
		{
			if (!exchange[i++])
			{
				continue;
			}
			for (KilnModeSlot& slot : block.slots)
			{
				for (int k = 0; k < slot.count; ++k)
				{
					KilnPair& pair = slot.kept[k].pair;
					pair = MapToRepresentableColoursInt(tessel2, pair.b, pair.a);
				}
			}
		}
	}
}

bool kilnRunPhase(const KilnThreadRecord& common, int threads, int parity, int tag)
{
	const int blocksY = common.settings->blocksY;
	const int half = blocksY / 2;
	KilnThreadRecord phase = common;
	phase.parity = parity;
	phase.tag = tag;
	if (!runRows(RunAnOptimisePhaseThread, phase, threads, half))
	{
		return false;
	}
	if (parity != 0 || blocksY % 2 == 0)
	{
		return true;
	}
	// The last of an odd number of rows is, by wrapping, a neighbour of the first: it waits for all others.
	std::vector<KilnThreadRecord> last(1, phase);
	last[0].firstRow = half;
	last[0].endRow = half + 1;
	return kilnRunStage(RunAnOptimisePhaseThread, last);
}

int SearchForImageRepresentatives(const KilnImage& image, int wordType, int bpp, bool tessel2, unsigned char* out, bool linear, int quality,
                                  bool punchThrough, KilnProgress* progress)
{
	try
	{
		KilnSettings settings = makeSettings(image, wordType, bpp, tessel2, punchThrough);
		const int level = std::clamp(quality, 0, kKilnBestQuality);
		const int passes = kilnPassCount(level, tessel2);
		KilnBlockRows blocks;
		if (!allocateBlockRows(settings, blocks))
		{
			return 0;
		}
		const KilnFilterWindow filter = kilnFilterWindow(settings);
		KilnThreadRecord common;
		common.image = &image;
		common.settings = &settings;
		common.blocks = &blocks;
		common.windowWeights = filter.weights.data();
		common.centralMask = filter.centralMask.data();

		const int threads = kilnThreadCount(DetermineNumberOfCores(), settings.blocksY);
		const std::uint64_t pixels = static_cast<std::uint64_t>(image.width) * static_cast<std::uint64_t>(image.height);
		std::uint64_t reported = 0;
		std::uint64_t mean = 0;
		for (int pass = 0; pass < passes; ++pass)
		{
			kilnEnterPass(settings, level, pass, mean);
			if (pass == 0)
			{
				if (!runRows(RunAGenerateStatsSetThread, common, threads, settings.blocksY))
				{
					return 0;
				}
				straightenColours(settings, blocks);
			}
			for (const int parity : {0, 1})
			{
				const int phase = 2 * pass + parity;
				if (!kilnRunPhase(common, threads, parity, 1 + 2 * phase))
				{
					return 0;
				}
				const std::uint64_t done = pixels * static_cast<std::uint64_t>(phase + 1) / static_cast<std::uint64_t>(2 * passes);
				kilnAdvanceProgress(progress, done - reported);
				reported = done;
			}
			mean = meanError(blocks);
		}
		common.out = out;
		common.linear = linear;
		return runRows(RunAPackingThread, common, threads, settings.blocksY) ? 1 : 0;
	}
	catch (const std::bad_alloc&)
	{
		return 0;
	}
}

int KILNNewMethod(const KilnImage& image, int wordType, int bpp, int version, bool linear, int quality, bool punchThrough, void* out,
                  KilnProgress* progress)
{
	const int blockWidth = bpp == 2 ? 8 : 4;
	if (out == nullptr || image.width <= 0 || image.height <= 0 || image.width % blockWidth != 0 || image.height % kKilnBlockHeight != 0)
	{
		return 1;
	}
	const int numX = image.width / blockWidth;
	const int numY = image.height / kKilnBlockHeight;
	const bool inRows = linear || !isPowerOfTwo(numX) || !isPowerOfTwo(numY);
	auto* bytes = static_cast<unsigned char*>(out);
	std::fill_n(bytes, static_cast<std::size_t>(numX) * numY * kBytesPerBlock, static_cast<unsigned char>(0));
	return SearchForImageRepresentatives(image, wordType, bpp, version != 0, bytes, inRows, quality, punchThrough, progress) != 0 ? 0 : 1;
}
