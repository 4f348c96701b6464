// The block model of the high-quality compressor against the decoder: what an evaluation says a block costs is what the decoded
// texture costs.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>

#include "Codecs/Tessel/kiln/bitmap.h"
#include "Codecs/Tessel/kiln/decompress.h"
#include "Codecs/Tessel/kiln/packing.h"
#include "Codecs/Tessel/kiln/palettetables.h"
#include "Simd/SimdLevels.h"

using namespace zortexture;

namespace
{
enum class Picture
{
	eNoise,
	eSmooth,
	eFlat,
	eCutout
};

struct Scene
{
	int bpp;
	bool tessel2;
	int blocksX;
	int blocksY;
	Picture picture;
};

KilnSettings settingsOf(const Scene& scene)
{
	KilnSettings settings;
	settings.bpp = scene.bpp;
	settings.tessel2 = scene.tessel2;
	settings.blockWidth = scene.bpp == 4 ? 4 : 8;
	settings.windowWidth = 2 * settings.blockWidth + 1;
	settings.blocksX = scene.blocksX;
	settings.blocksY = scene.blocksY;
	settings.wideSearch = false;
	return settings;
}

std::uint8_t randomByte(std::mt19937& random)
{
	return static_cast<std::uint8_t>(random());
}

KilnImage drawImage(const Scene& scene, const KilnSettings& settings, std::mt19937& random)
{
	KilnImage image;
	image.width = settings.blocksX * settings.blockWidth;
	image.height = settings.blocksY * settings.blockHeight;
	const KilnColour flat = {randomByte(random), randomByte(random), randomByte(random), randomByte(random)};
	for (int y = 0; y < image.height; ++y)
	{
		for (int x = 0; x < image.width; ++x)
		{
			const auto wave = [x, y](double phase)
			{
				return static_cast<std::uint8_t>(127.5 + 127.5 * std::sin(0.21 * x + 0.13 * y * phase + phase));
			};
			switch (scene.picture)
			{
			case Picture::eNoise:
				image.pixels.push_back({randomByte(random), randomByte(random), randomByte(random), randomByte(random)});
				break;
			case Picture::eSmooth:
				image.pixels.push_back({wave(0), wave(1), wave(2), wave(0.5)});
				break;
			case Picture::eFlat:
				image.pixels.push_back(flat);
				break;
			case Picture::eCutout:
				image.pixels.push_back({wave(0), wave(1), wave(2), static_cast<std::uint8_t>(random() % 3 == 0 ? 0 : 255)});
				break;
			}
		}
	}
	return image;
}

std::uint8_t widen(unsigned value, int bits)
{
	// Through 5 bits to 8.
	unsigned five = value;
	if (bits == 4)
	{
		five = value << 1 | value >> 3;
	}
	if (bits == 3)
	{
		five = value << 2 | value >> 1;
	}
	return static_cast<std::uint8_t>(five << 3 | five >> 2);
}

KilnColour randomColour(bool isB, bool opaque, bool tessel2, std::mt19937& random)
{
	const auto channel = [&random](int bits)
	{
		return widen(random() % (1U << bits), bits);
	};
	if (opaque)
	{
		return {channel(5), channel(5), channel(isB ? 5 : 4), 255};
	}
	const unsigned alpha = 2 * (random() % 8) + (isB && tessel2 ? 1 : 0);
	return {channel(4), channel(4), channel(isB ? 4 : 3), static_cast<std::uint8_t>(alpha * 17)};
}

KilnBlockRows randomBlocks(const KilnSettings& settings, std::mt19937& random)
{
	KilnBlockRows rows(settings.blocksY, std::vector<KilnBlock>(settings.blocksX));
	for (std::vector<KilnBlock>& row : rows)
	{
		for (KilnBlock& block : row)
		{
			const int modes = settings.bpp == 4 ? (settings.tessel2 ? 4 : 2) : (settings.tessel2 ? 8 : 4);
			block.currentMode = static_cast<int>(random() % modes) + (settings.bpp == 4 ? 0 : 8);
			const bool opaqueA = random() % 2 == 0;
			const bool opaqueB = settings.tessel2 ? opaqueA : random() % 2 == 0;
			KilnModeSlot& slot = block.slot(block.currentMode);
			slot.count = 1;
			slot.kept[0].pair = {randomColour(false, opaqueA, settings.tessel2, random),
			                     randomColour(true, opaqueB, settings.tessel2, random)};
		}
	}
	return rows;
}

bool isPowerOfTwo(int value)
{
	return (value & (value - 1)) == 0;
}

/// A picture packed with random pairs and modes, and decoded again.
struct Packed
{
	KilnSettings settings;
	KilnImage source;
	KilnBlockRows blocks;
	std::vector<KilnErrors> errors;
	KilnImage decoded;
};

Packed pack(const Scene& scene, std::mt19937& random)
{
	Packed packed;
	const KilnSettings& settings = packed.settings = settingsOf(scene);
	packed.source = drawImage(scene, settings, random);
	packed.blocks = randomBlocks(settings, random);
	const int linear = scene.tessel2 || !isPowerOfTwo(scene.blocksX) || !isPowerOfTwo(scene.blocksY) ? 1 : 0;
	std::vector<std::uint32_t> data(static_cast<std::size_t>(2 * settings.blocksX * settings.blocksY));
	const auto space = std::make_unique<KilnPackingSpace>(settings);
	for (int y = 0; y < settings.blocksY; ++y)
	{
		for (int x = 0; x < settings.blocksX; ++x)
		{
			KilnErrors errors;
			const KilnWords words = PackLocalBlock(*space, packed.source, settings, packed.blocks, x, y, &errors);
			const auto place = TwiddleUV(static_cast<unsigned>(settings.blocksY), static_cast<unsigned>(settings.blocksX),
			                             static_cast<unsigned>(y), static_cast<unsigned>(x), linear);
			data[2 * place] = words.modulation;
			data[2 * place + 1] = words.colours;
			packed.errors.push_back(errors);
		}
	}

	packed.decoded = packed.source;
	const int width = packed.source.width;
	const int height = packed.source.height;
	const std::unique_ptr<bitmap, void (*)(bitmap*)> decoded(new_bitmap(width, height, true, nullptr), delete_bitmap);
	Decompress(data.data(), 0, settings.tessel2 ? 1 : 0, kKilnWordType, settings.bpp, width, height, 1, 0, linear, decoded.get());
	for (int y = 0; y < height; ++y)
	{
		for (int x = 0; x < width; ++x)
		{
			const bitmap_colour& pixel = decoded->pixels[x][y];
			packed.decoded.row(y)[x] = {pixel.r, pixel.g, pixel.b, pixel.a};
		}
	}
	return packed;
}

/// The error of the decoded window of a block.
KilnErrors measure(const Packed& packed, int blockX, int blockY)
{
	const KilnSettings& settings = packed.settings;
	const KilnImage& source = packed.source;
	const KilnBlockRows& blocks = packed.blocks;
	KilnErrors errors;
	const auto wrap = [](int position, int size)
	{
		return (position + 2 * size) % size;
	};
	for (int wy = 0; wy < settings.windowHeight; ++wy)
	{
		for (int wx = 0; wx < settings.windowWidth; ++wx)
		{
			const int insideX = wx - settings.blockWidth / 2;
			const int insideY = wy - settings.blockHeight / 2;
			const int x = wrap(blockX * settings.blockWidth + insideX, source.width);
			const int y = wrap(blockY * settings.blockHeight + insideY, source.height);
			const KilnColour& pixel = source.row(y)[x];
			const KilnColour& shown = packed.decoded.row(y)[x];
			std::uint64_t error = 0;
			for (int c = 0; c < 4; ++c)
			{
				const int factor = c == 3 && (pixel[3] == 0 || pixel[3] == 255) ? 30 : 1;
				const int difference = factor * (pixel[c] - shown[c]);
				error += static_cast<std::uint64_t>(difference) * difference;
			}
			const KilnBlock& block = blocks[y / settings.blockHeight][x / settings.blockWidth];
			const KilnBlock& p = blocks[wrap(y - settings.blockHeight / 2, source.height) / settings.blockHeight]
			                           [wrap(x - settings.blockWidth / 2, source.width) / settings.blockWidth];
			const bool canPunch = settings.bpp == 4 && (block.currentMode & 1) != 0 && (p.currentMode & kKilnHard) == 0;
			if (canPunch && pixel[3] == 0 && shown[3] == 0)
			{
				error = 0;
			}
			const bool rim = wx == 0 || wy == 0 || wx == settings.windowWidth - 1 || wy == settings.windowHeight - 1;
			const bool own = insideX >= 0 && insideX < settings.blockWidth && insideY >= 0 && insideY < settings.blockHeight;
			(rim ? errors.rim : (own ? errors.own : errors.outer)) += error;
		}
	}
	return errors;
}

std::vector<Scene> everyScene(int bpp)
{
	std::vector<Scene> scenes;
	for (const bool tessel2 : {false, true})
	{
		for (const Picture picture : {Picture::eNoise, Picture::eSmooth, Picture::eFlat, Picture::eCutout})
		{
			for (const auto& [blocksX, blocksY] : {std::pair(1, 1), std::pair(2, 1), std::pair(1, 4), std::pair(7, 5), std::pair(16, 32)})
			{
				scenes.push_back({bpp, tessel2, blocksX, blocksY, picture});
			}
		}
	}
	return scenes;
}

} // namespace

TEST(KilnModel, KnowsItsErrorAt4Bpp)
{
	std::mt19937 random(11);
	for (const Scene& scene : everyScene(4))
	{
		const Packed packed = pack(scene, random);
		for (int y = 0; y < scene.blocksY; ++y)
		{
			for (int x = 0; x < scene.blocksX; ++x)
			{
				const KilnErrors& found = packed.errors[static_cast<std::size_t>(y) * scene.blocksX + x];
				const KilnErrors truth = measure(packed, x, y);
				const auto where = ::testing::Message()
				                   << "Tessel " << (scene.tessel2 ? 2 : 1) << " picture " << static_cast<int>(scene.picture) << " block "
				                   << x << "," << y << " of " << scene.blocksX << "x" << scene.blocksY << " mode "
				                   << packed.blocks[y][x].currentMode;
				ASSERT_EQ(found.own, truth.own) << where;
				ASSERT_EQ(found.outer, truth.outer) << where;
				ASSERT_EQ(found.rim, truth.rim) << where;
				ASSERT_EQ(found.total, truth.own + truth.outer + truth.rim) << where;
			}
		}
	}
}

TEST(KilnModel, KnowsItsErrorAt2Bpp)
{
	// Pixels that are left out at the edge of a block read pixels of the next, which may have been chosen otherwise when that block was
	// packed, for its window is another.
	std::mt19937 random(12);
	for (const Scene& scene : everyScene(2))
	{
		const Packed packed = pack(scene, random);
		int equal = 0;
		double foundSum = 0;
		double truthSum = 0;
		for (int y = 0; y < scene.blocksY; ++y)
		{
			for (int x = 0; x < scene.blocksX; ++x)
			{
				const KilnErrors& found = packed.errors[static_cast<std::size_t>(y) * scene.blocksX + x];
				const KilnErrors truth = measure(packed, x, y);
				equal += found.own == truth.own ? 1 : 0;
				foundSum += static_cast<double>(found.own);
				truthSum += static_cast<double>(truth.own);
			}
		}
		const int blocks = scene.blocksX * scene.blocksY;
		const auto where = ::testing::Message() << "Tessel " << (scene.tessel2 ? 2 : 1) << " picture " << static_cast<int>(scene.picture)
		                                        << " " << scene.blocksX << "x" << scene.blocksY;
		EXPECT_NEAR(foundSum / truthSum, 1, 0.01) << where;
		if (blocks > 100)
		{
			EXPECT_GE(equal, 0.92 * blocks) << where;
		}
	}
}

namespace
{
constexpr ESimdLevel kEveryLevel[] = {eSimdPlain, eSimdSse2, eSimdAvx2};

/// The window of the middle one of 3 by 3 random blocks.
struct RandomWindow
{
	KilnSettings settings;
	std::array<KilnColour, kKilnMaxWindow> pixels;
	KilnNeighbourColours colours;
	KilnBlendRecords records;
	KilnWindowModel model;
	int windowPixels;

	RandomWindow(int bpp, bool tessel2, int round, std::mt19937& random)
	{
		const Scene scene = {bpp, tessel2, 3, 3, static_cast<Picture>(round % 4)};
		settings = settingsOf(scene);
		windowPixels = settings.windowPixels();
		CopyWindow(drawImage(scene, settings, random), settings, 1, 1, pixels.data());
		KilnNeighbourModes modes;
		GatherNeighbours(randomBlocks(settings, random), settings, 1, 1, colours, modes);
		const int variant = tessel2 ? round % 8 : 0;
		CreateBlendingAndUpdateWeights(modes, variant, settings, records);
		// The pair of the block is given with each evaluation, whatever stands in its place.
		KilnNeighbourColours around = colours;
		around[4] = {};
		const unsigned flags = kilnHardFlags(modes, variant, bpp);
		InitialiseWindowModel(settings, model);
		kilnSetTargets(settings, pixels.data(), bpp == 4, model);
		kilnSetSurroundings(settings, around, flags, model);
		kilnSetKinds(settings, pixels.data(), around, modes, flags, model);
		const ForcedSimdLevel plain(eSimdPlain);
		model.rimError = bpp == 4 ? kilnKernels().rimError4Bpp(model) : 0;
	}
};

/// An evaluation of a window, with all that it tells.
struct Evaluation
{
	KilnErrors errors;
	KilnFittingParams params;
	KilnNormalSums sums;

	Evaluation(const RandomWindow& window, const KilnRegionPlaces* regions, ESimdLevel level)
	{
		const ForcedSimdLevel forced(level);
		const KilnKernelTable kernels = kilnKernels();
		const KilnPair& pair = window.colours[4];
		InitialisePackedFittingParams(params);
		if (window.settings.bpp == 2)
		{
			kernels.evaluate2Bpp(window.model, pair, kKilnIndices, params, errors);
			kernels.sumNormalEquations(params, 16, 144, sums);
			return;
		}
		EvalAllCandsAndGetErrors4BPP(kernels, window.model, pair, regions, UINT64_MAX, kKilnIndices, params, errors);
		EvalAllCandsAndGetErrors4BPP(kernels, window.model, pair, regions, UINT64_MAX, kKilnForFit, params, errors);
		kernels.sumNormalEquations(params, 0, 64, sums);
	}
};

void expectEqualRows(const KilnRow& a, const KilnRow& b, const RandomWindow& window)
{
	const bool is4Bpp = window.settings.bpp == 4;
	for (int place = 0; place < (is4Bpp ? kKilnInnerPixels : window.windowPixels); ++place)
	{
		ASSERT_EQ(a.at(place, 0), b.at(place, 0)) << place;
		ASSERT_EQ(a.at(place, 1), b.at(place, 1)) << place;
	}
}

void expectEqual(const Evaluation& a, const Evaluation& b, const RandomWindow& window)
{
	EXPECT_EQ(a.errors.own, b.errors.own);
	EXPECT_EQ(a.errors.outer, b.errors.outer);
	EXPECT_EQ(a.errors.rim, b.errors.rim);
	EXPECT_EQ(a.errors.total, b.errors.total);
	expectEqualRows(a.params.influenceA, b.params.influenceA, window);
	expectEqualRows(a.params.influenceB, b.params.influenceB, window);
	expectEqualRows(a.params.residual[0], b.params.residual[0], window);
	expectEqualRows(a.params.residual[1], b.params.residual[1], window);
	expectEqualRows(a.params.indices, b.params.indices, window);
	expectEqualRows(a.params.weights, b.params.weights, window);
	EXPECT_EQ(std::memcmp(&a.sums, &b.sums, sizeof(a.sums)), 0);
}

/// The window in regions of so many pixels, in an order of their own.
KilnRegions regionsOf(int size)
{
	KilnRegions regions;
	for (int i = 0; i < kKilnWindow4Bpp; ++i)
	{
		const int pixel = i * 64 % kKilnWindow4Bpp;
		regions.order[i] = static_cast<std::uint8_t>(pixel);
		regions.map[pixel] = static_cast<std::uint8_t>(i / size);
	}
	return regions;
}
} // namespace

TEST(KilnModel, EveryVectorUnitGivesWhatThePlainFormGives)
{
	std::mt19937 random(16);
	for (int round = 0; round < 200; ++round)
	{
		for (const int bpp : {4, 2})
		{
			const RandomWindow window(bpp, round % 2 == 0, round / 2, random);
			const Evaluation plain(window, nullptr, eSimdPlain);
			const KilnRegionPlaces regions = kilnRegionPlaces(regionsOf(1 + round % 20));
			const Evaluation plainRegions(window, &regions, eSimdPlain);
			for (const ESimdLevel level : kVectorLevels)
			{
				SCOPED_TRACE(testing::Message() << bpp << " bpp, level " << level << ", round " << round);
				expectEqual(Evaluation(window, nullptr, level), plain, window);
				expectEqual(Evaluation(window, &regions, level), plainRegions, window);
				const ForcedSimdLevel forced(level);
				EXPECT_EQ(bpp == 4 ? kilnKernels().rimError4Bpp(window.model) : 0, plain.errors.rim);
			}
		}
	}
}

TEST(KilnModel, WindowAgreesWithItsPixels)
{
	std::mt19937 random(13);
	for (int round = 0; round < 400; ++round)
	{
		const RandomWindow window(4, round % 2 == 0, round / 2, random);
		const Evaluation found(window, nullptr, eSimdPlain);
		std::array<std::uint64_t, 3> sums = {};
		for (int pixel = 0; pixel < kKilnWindow4Bpp; ++pixel)
		{
			const KilnBlendRecord& record = window.records.pixels[pixel];
			const KilnColour& target = window.pixels[pixel];
			int index = 0;
			KilnColour decoded;
			sums[record.pixelClass] += SynthCandsAndBestFitPixel(window.records, pixel, window.colours, target, index, decoded);
			if (record.pixelClass == kKilnRim)
			{
				continue;
			}
			const int place = kKilnPlaceOf4Bpp[pixel];
			ASSERT_EQ(static_cast<int>(found.params.indices.at(place)), index);
			if (record.punchThrough && index == 2)
			{
				ASSERT_EQ(found.params.influenceA.at(place), 0U);
				ASSERT_EQ(found.params.influenceB.at(place), 0U);
			}
			for (int c = 0; c < 4; ++c)
			{
				ASSERT_EQ(found.params.residual[c / 2].signedAt(place, c % 2), target[c] - decoded[c]);
			}
		}
		EXPECT_EQ(found.errors.own, sums[kKilnOwn]);
		EXPECT_EQ(found.errors.outer, sums[kKilnOuter]);
		EXPECT_EQ(found.errors.rim, sums[kKilnRim]);

		// The evaluation stops early, and only then, at a limit.
		for (const ESimdLevel level : kEveryLevel)
		{
			const ForcedSimdLevel forced(level);
			KilnFittingParams params;
			KilnErrors limited;
			kilnKernels().evaluate4Bpp(window.model, window.colours[4], found.errors.total / 2, kKilnErrorsAlone, params, limited);
			EXPECT_GE(limited.total, found.errors.total / 2);
			kilnKernels().evaluate4Bpp(window.model, window.colours[4], found.errors.total, kKilnErrorsAlone, params, limited);
			EXPECT_EQ(limited.total, found.errors.total);
		}
	}
}

TEST(KilnModel, LeftOutPixelsTakeTheMeanOfTheirNeighbours)
{
	constexpr int kWidth = 17;
	constexpr int kHeight = 9;
	std::mt19937 random(17);
	int leftOut = 0;
	for (int round = 0; round < 100; ++round)
	{
		const RandomWindow window(2, round % 2 == 0, round / 2, random);
		const Evaluation found(window, nullptr, eSimdPlain);
		std::array<std::uint8_t, kKilnMaxWindow> weights = {};
		for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
		{
			weights[pixel] = static_cast<std::uint8_t>(found.params.weights.at(pixel));
		}
		for (int row = 0; row < kHeight; ++row)
		{
			for (int column = 0; column < kWidth; ++column)
			{
				const int pixel = row * kWidth + column;
				const int storeClass = window.records.pixels[pixel].storeClass;
				if (storeClass >= kKilnLeftOut)
				{
					++leftOut;
					ASSERT_EQ(weights[pixel], ComputeInterpolatedModVal(storeClass, row, column, weights.data()));
				}
			}
		}
	}
	EXPECT_GT(leftOut, 1000);

	// At an edge the neighbour on the other side counts twice.
	std::array<std::uint8_t, kKilnMaxWindow> weights = {};
	weights[1] = 3;
	weights[kWidth] = 8;
	weights[kKilnMaxWindow - 2] = 5;
	weights[kKilnMaxWindow - 1 - kWidth] = 3;
	EXPECT_EQ(ComputeInterpolatedModVal(kKilnLeftOut, 0, 0, weights.data()), (3 + 3 + 8 + 8 + 2) / 4);
	EXPECT_EQ(ComputeInterpolatedModVal(kKilnLeftOutHorizontal, 0, 0, weights.data()), 3);
	EXPECT_EQ(ComputeInterpolatedModVal(kKilnLeftOutVertical, 0, 0, weights.data()), 8);
	EXPECT_EQ(ComputeInterpolatedModVal(kKilnLeftOut, kHeight - 1, kWidth - 1, weights.data()), (5 + 5 + 3 + 3 + 2) / 4);
}

TEST(KilnModel, RegionsTakeOneIndex)
{
	std::mt19937 random(15);
	for (int round = 0; round < 100; ++round)
	{
		const RandomWindow window(4, round % 2 == 0, round / 2, random);
		// Regions of 1, of 3 and of all pixels, in an order of their own.
		for (const int size : {1, 3, kKilnWindow4Bpp})
		{
			const KilnRegions regions = regionsOf(size);
			const KilnRegionPlaces places = kilnRegionPlaces(regions);
			const Evaluation together(window, &places, eSimdPlain);
			const Evaluation alone(window, nullptr, eSimdPlain);
			if (size == 1)
			{
				expectEqual(together, alone, window);
				continue;
			}
			EXPECT_GE(together.errors.total, alone.errors.total);
			for (int first = 0; first < kKilnWindow4Bpp; first += size)
			{
				int index = -1;
				for (int i = first; i < first + size; ++i)
				{
					const int pixel = regions.order[i];
					if (window.records.pixels[pixel].pixelClass != kKilnRim)
					{
						const int other = static_cast<int>(together.params.indices.at(kKilnPlaceOf4Bpp[pixel]));
						index = index < 0 ? other : index;
						ASSERT_EQ(other, index);
					}
				}
			}
		}
	}
}

TEST(KilnModel, FitDataTellsTheInfluenceOfTheBlock)
{
	// All neighbours black and the block's A or B white: a pixel is as bright as the block's share of it.
	std::mt19937 random(14);
	for (int round = 0; round < 64; ++round)
	{
		const KilnSettings settings = settingsOf({4, true, 3, 3, Picture::eNoise});
		KilnNeighbourModes modes;
		std::generate(modes.begin(), modes.end(), [&random] { return static_cast<int>(random() % 4); });
		KilnNeighbourColours colours = {};
		KilnWindowModel model;
		const KilnColour grey = {128, 128, 128, 128};
		std::array<KilnColour, kKilnMaxWindow> window;
		window.fill(grey);
		const unsigned flags = kilnHardFlags(modes, round % 8, 4);
		InitialiseWindowModel(settings, model);
		kilnSetTargets(settings, window.data(), false, model);
		kilnSetSurroundings(settings, colours, flags, model);
		kilnSetKinds(settings, window.data(), colours, modes, flags, model);
		KilnPair pair = {};
		(round < 32 ? pair.a : pair.b) = {255, 255, 255, 255};
		KilnFittingParams params;
		KilnErrors errors;
		kilnKernels().evaluate4Bpp(model, pair, UINT64_MAX, kKilnForFit, params, errors);
		for (int place = 0; place < kKilnInnerPixels; ++place)
		{
			const float expected = 255.0F / 512 * static_cast<float>((round < 32 ? params.influenceA : params.influenceB).at(place));
			EXPECT_NEAR(128 - params.residual[0].signedAt(place), expected, 2) << place;
		}
	}
}

TEST(KilnModel, PaletteSlotsAreTheDecodersUnderItsOrder)
{
	// The decoder numbers A and B of P, S, Q and R; the encoder of P, Q, R and S.
	constexpr std::array<int, 8> kSlotOfDecoder = {0, 1, 6, 7, 2, 3, 4, 5};
	for (int y = 0; y < 9; ++y)
	{
		for (int x = 0; x < 9; ++x)
		{
			const int pixel = 9 * y + x;
			if ((x & 3) == 0 && (y & 3) == 0)
			{
				EXPECT_EQ(PaletteModeSelection[pixel][0], kKilnNoSlot);
				continue;
			}
			if (x < 8 && y < 8)
			{
				EXPECT_EQ(PaletteModeSelection[pixel], PaletteModeSelection[9 * (y & 3) + (x & 3)]);
			}
			// In the last column and row the group is the one before, whose Q or R is the decoder's P.
			const int groupX = x == 8 ? 1 : 0;
			const int groupY = y == 8 ? 1 : 0;
			for (int choice = 0; choice < 4; ++choice)
			{
				const bool own = x >= 2 && x < 6 && y >= 2 && y < 6;
				const int stored = own ? PalModRemapper4Col[4 * (y - 2) + x - 2][choice] : choice;
				const int shown = kSlotOfDecoder[LocalPaletteMap[y & 3][x & 3][stored]] + 2 * groupX + 4 * groupY;
				if (own || groupX != 0 || groupY != 0)
				{
					EXPECT_EQ(PaletteModeSelection[pixel][choice], shown) << x << "," << y;
				}
				// Whether the slot is the block's: its place among P, Q, R, S is opposite to the quadrant.
				const int quadrant = std::min(x / 4, 1) + 2 * std::min(y / 4, 1);
				const int slot = PaletteModeSelection[pixel][choice];
				const int colour = slot & 1;
				EXPECT_EQ(PaletteModeCentralOptions[pixel][colour] == choice, slot / 2 == 3 - quadrant) << x << "," << y;
			}
		}
	}
}
