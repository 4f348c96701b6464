#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

#include "Codecs/Tessel/kiln/decompress.h"
#include "Codecs/Tessel/kiln/kiln_localised.h"
#include "Codecs/Tessel/kiln/messages.h"
#include "Codecs/Tessel/kiln/passes.h"
#include "Codecs/Tessel/kiln/progress.h"
#include "Codecs/Tessel/kiln/ptpreprocess.h"
#include "Codecs/Tessel/kiln/threadsupport.h"
#include "Codecs/Tessel/kiln/wrapper.h"
#include "Simd/SimdLevels.h"
#include "TesselCodec.h"

namespace
{
/// Hills, edges and noise; with `alpha` a transparent corner and a soft stripe.
KilnImage picture(int width, int height, bool alpha)
{
	std::mt19937 random(5);
	KilnImage image{width, height, {}};
	for (int y = 0; y < height; ++y)
	{
		for (int x = 0; x < width; ++x)
		{
			const double edge = (x / 11 + y / 9) % 2 != 0 ? 50.0 : 0.0;
			const auto channel = [&](double length)
			{
				return static_cast<std::uint8_t>(90.0 + 40.0 * (std::sin(x / length) + std::cos(y / length)) / 2 + edge + random() % 12);
			};
			const bool isHole = x < 10 && y < 6;
			const auto soft = static_cast<std::uint8_t>(std::min(255, 20 * std::abs(x - width / 2)));
			const auto opacity = static_cast<std::uint8_t>(!alpha ? 255 : (isHole ? 0 : soft));
			image.pixels.push_back({channel(4.0), channel(7.0), channel(5.0), opacity});
		}
	}
	return image;
}

/// Undoes what a test has set.
struct ThreadHooks
{
	ThreadHooks() = default;
	ThreadHooks(const ThreadHooks&) = delete;
	ThreadHooks& operator=(const ThreadHooks&) = delete;
	~ThreadHooks()
	{
		kilnForceCores(0);
		kilnRefuseLaunches(0);
	}
};

std::vector<unsigned char> compress(const KilnImage& image, int bpp, int version, int quality, bool linear)
{
	std::vector<unsigned char> out(image.pixels.size() * bpp / 8, 0xEE);
	EXPECT_EQ(KILNNewMethod(image, kKilnWordType, bpp, version, linear, quality, false, out.data(), nullptr), 0);
	return out;
}

/// PSNR over all channels, alpha-weighted colours.
double psnr(const KilnImage& image, const std::vector<unsigned char>& blocks, int bpp, int version, bool linear)
{
	const std::unique_ptr<bitmap, void (*)(bitmap*)> decoded(new_bitmap(image.width, image.height, true, nullptr), delete_bitmap);
	Decompress(blocks.data(), 0, version, kKilnWordType, bpp, image.width, image.height, 1, 0, linear ? 1 : 0, decoded.get());
	double sum = 0.0;
	for (int y = 0; y < image.height; ++y)
	{
		for (int x = 0; x < image.width; ++x)
		{
			const KilnColour& pixel = image.row(y)[x];
			const bitmap_colour& other = decoded->pixels[x][y];
			const int channels[] = {other.r, other.g, other.b};
			for (int c = 0; c < 3; ++c)
			{
				const double difference = (double(pixel[c]) * pixel[3] - double(channels[c]) * other.a) / 255.0;
				sum += difference * difference;
			}
			const double alpha = double(pixel[3]) - other.a;
			sum += alpha * alpha;
		}
	}
	return 10.0 * std::log10(255.0 * 255.0 * 4.0 * double(image.pixels.size()) / std::max(sum, 1e-9));
}
} // namespace

TEST(KilnPasses, RunsByQuality)
{
	// One letter a pass: w wide search, h hard modes, n neighbours' flags too, - none of these; ! where modes have changed. Then the
	// variants, and the thresholds at a mean error of 1001.
	const struct
	{
		int quality;
		bool tessel2;
		std::string passes;
		std::vector<int> variants;
		std::uint64_t threshold;
	} cases[] = {
	    {0, true, "w! -!", {8, 4}, 501},
	    {1, false, "w! w -! -", {8, 7, 5, 3}, 400},
	    {1, true, "w! w -! - h!", {8, 7, 5, 3, 1}, 400},
	    {2, true, "w! w! w -! n! h", {8, 10, 9, 8, 7, 6}, 300},
	    {3, false, "w! w! w w -! - - -", {8, 13, 12, 11, 10, 9, 8, 7}, 200},
	    {3, true, "w! w! w w n! n n h", {8, 13, 12, 11, 10, 9, 8, 7}, 200},
	};
	for (const auto& test : cases)
	{
		KilnSettings settings;
		settings.tessel2 = test.tessel2;
		settings.blocksX = 2;
		settings.blocksY = 2;
		std::string passes;
		std::vector<int> variants;
		for (int pass = 0; pass < kilnPassCount(test.quality, test.tessel2); ++pass)
		{
			kilnEnterPass(settings, test.quality, pass, 1001);
			passes += pass == 0 ? "" : " ";
			passes += settings.wideSearch ? "w" : settings.hardNeighbours ? "n" : settings.hardAllowed ? "h" : "-";
			passes += settings.modesChanged ? "!" : "";
			variants.push_back(settings.variants);
			EXPECT_EQ(settings.errorThreshold, pass == 0 ? 0 : test.threshold);
			EXPECT_EQ(settings.hardVariantStep, 4);
		}
		EXPECT_EQ(passes, test.passes) << test.quality << test.tessel2;
		EXPECT_EQ(variants, test.variants) << test.quality << test.tessel2;
	}
	// No flags of neighbours where a block is its own; variants never rise once they fell; nothing is left alone at the top.
	KilnSettings settings;
	settings.tessel2 = true;
	settings.blocksX = 1;
	settings.blocksY = 8;
	EXPECT_EQ(kilnPassCount(6, true), 128);
	for (int pass = 0; pass < 128; ++pass)
	{
		kilnEnterPass(settings, 6, pass, 1001);
		EXPECT_FALSE(settings.hardNeighbours);
		EXPECT_EQ(settings.variants, pass == 0 ? 8 : 13);
		EXPECT_EQ(settings.errorThreshold, 0U);
	}
}

TEST(KilnThreads, CountsThreadsOfUse)
{
	const struct
	{
		int cores;
		int blocksY;
		int threads;
	} cases[] = {{8, 1, 1}, {8, 2, 1}, {8, 3, 2}, {8, 64, 8}, {1, 64, 1}, {0, 64, 4}, {0, 5, 3}, {500, 254, 127}, {500, 255, 128}};
	for (const auto& test : cases)
	{
		EXPECT_EQ(kilnThreadCount(test.cores, test.blocksY), test.threads) << test.cores << " " << test.blocksY;
	}
	const ThreadHooks hooks;
	EXPECT_GE(DetermineNumberOfCores(), 1);
	kilnForceCores(3);
	EXPECT_EQ(DetermineNumberOfCores(), 3);
}

TEST(KilnThreads, EveryPieceRunsOnceWhateverLaunchesFail)
{
	const ThreadHooks hooks;
	for (const int period : {0, 1, 2, 3})
	{
		kilnRefuseLaunches(period);
		std::vector<KilnThreadRecord> pieces(7);
		for (int i = 0; i < 7; ++i)
		{
			pieces[i].firstRow = 10 * i;
			pieces[i].endRow = i == 3 ? 10 * i : 10 * i + 1; // one has nothing to do
		}
		const auto mark = [](void* argument) -> void*
		{
			auto& piece = *static_cast<KilnThreadRecord*>(argument);
			piece.tag += 1 + piece.firstRow;
			return nullptr;
		};
		EXPECT_TRUE(kilnRunStage(mark, pieces));
		for (int i = 0; i < 7; ++i)
		{
			EXPECT_EQ(pieces[i].tag, i == 3 ? 0 : 1 + 10 * i) << period;
		}
		const auto fail = [](void* argument) -> void*
		{
			auto& piece = *static_cast<KilnThreadRecord*>(argument);
			piece.failed = piece.firstRow == 20;
			return nullptr;
		};
		EXPECT_FALSE(kilnRunStage(fail, pieces));
	}
}

// 11 rows of blocks: the first and the last are neighbours by wrapping, and of one parity.
TEST(KilnThreads, BytesAreTheSameOnAnyProcessor)
{
	const ThreadHooks hooks;
	KilnImage noise = picture(24, 12, true);
	KilnImage graphics = noise;
	std::mt19937 random(6);
	for (std::size_t i = 0; i < noise.pixels.size(); ++i)
	{
		const auto any = static_cast<std::uint32_t>(random());
		std::memcpy(noise.pixels[i].data(), &any, sizeof(any));
		const bool isEdge = (i % 24 / 5 + i / 24 / 6) % 2 != 0;
		graphics.pixels[i] = {isEdge ? std::uint8_t{200} : std::uint8_t{30}, 90, 60, i % 24 < 9 ? std::uint8_t{0} : std::uint8_t{255}};
	}
	const KilnImage images[] = {picture(24, 44, true), noise, graphics};
	const struct
	{
		zortexture::ESimdLevel level;
		int cores;
	} cases[] = {{zortexture::eSimdSse2, 1}, {zortexture::eSimdAvx2, 2}, {zortexture::eSimdAvx2, 8}};
	for (const KilnImage& image : images)
	{
		for (const int bpp : {2, 4})
		{
			for (const int version : {0, 1})
			{
				const int quality = version == 0 ? 0 : 1; // with hard modes in the second generation
				const auto bytesAt = [&](zortexture::ESimdLevel level, int cores)
				{
					kilnForceCores(cores);
					return zortexture::atSimdLevel(level, [&] { return compress(image, bpp, version, quality, true); });
				};
				const std::vector<unsigned char> expected = bytesAt(zortexture::eSimdPlain, 1);
				for (const auto& test : cases)
				{
					EXPECT_EQ(bytesAt(test.level, test.cores), expected) << bpp << " " << version << " " << test.level << " " << test.cores;
				}
				kilnRefuseLaunches(2);
				EXPECT_EQ(bytesAt(zortexture::eSimdAvx2, 3), expected);
				kilnRefuseLaunches(0);
			}
		}
	}
}

TEST(KilnDriver, WindowsWeighTheMiddle)
{
	for (const int bpp : {2, 4})
	{
		KilnSettings settings;
		settings.bpp = bpp;
		settings.blockWidth = bpp == 2 ? 8 : 4;
		settings.windowWidth = 2 * settings.blockWidth + 1;
		const KilnFilterWindow window = kilnFilterWindow(settings);
		const int count = settings.windowPixels();
		float sum = 0.0F;
		int central = 0;
		for (int i = 0; i < count; ++i)
		{
			const int x = i % settings.windowWidth;
			const int y = i / settings.windowWidth;
			const bool isRim = x == 0 || y == 0 || x == settings.windowWidth - 1 || y == settings.windowHeight - 1;
			EXPECT_EQ(window.weights[i] == 0.0F, isRim) << x << "," << y;
			EXPECT_EQ(window.weights[i], window.weights[count - 1 - i]);
			sum += window.weights[i];
			central += window.centralMask[i];
		}
		EXPECT_NEAR(sum, 1.0F, 1e-5F);
		EXPECT_EQ(std::max_element(window.weights.begin(), window.weights.begin() + count) - window.weights.begin(), count / 2);
		// The block's area, and of the middle row and column what lies outside it.
		EXPECT_EQ(central, bpp == 2 ? 32 + 9 + 5 : 16 + 5 + 5);
	}
}

TEST(KilnDriver, RefusesWhatIsNoWholeBlocks)
{
	std::vector<unsigned char> out(4096);
	const auto run = [&out](int width, int height, int bpp)
	{
		return KILNNewMethod(picture(width, height, false), kKilnWordType, bpp, 0, false, 0, false, out.data(), nullptr);
	};
	EXPECT_EQ(run(4, 4, 2), 1);
	EXPECT_EQ(run(4, 4, 4), 0);
	EXPECT_EQ(run(8, 6, 4), 1);
	EXPECT_EQ(run(10, 8, 4), 1);
	EXPECT_EQ(KILNNewMethod(picture(8, 8, false), kKilnWordType, 4, 0, false, 0, false, nullptr, nullptr), 1);
	// More than the image type holds: a message, and no byte of the output touched.
	const std::vector<unsigned char> huge(std::size_t(4) * 4100 * 4);
	testing::internal::CaptureStderr();
	EXPECT_EQ(zortexture::TesselCompress(huge.data(), out.data(), 4100, 4, true, false, 1, 2), 0U);
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "Failed to allocate a 4100*4 image\n");
	EXPECT_TRUE(std::all_of(out.begin() + 64, out.end(), [](unsigned char byte) { return byte == 0; }));
}

TEST(KilnDriver, TwiddlesPowersOfTwoAlone)
{
	// 4 by 2 blocks of the first generation are twiddled; 3 by 2 are in rows, asked for or not.
	const KilnImage image = picture(16, 8, false);
	const std::vector<unsigned char> rows = compress(image, 4, 0, 0, true);
	const std::vector<unsigned char> twiddled = compress(image, 4, 0, 0, false);
	const std::size_t places[] = {0, 2, 4, 6, 1, 3, 5, 7};
	for (std::size_t i = 0; i < 8; ++i)
	{
		EXPECT_EQ(std::memcmp(&rows[8 * i], &twiddled[8 * places[i]], 8), 0) << i;
	}
	const KilnImage odd = picture(12, 8, false);
	EXPECT_EQ(compress(odd, 4, 0, 0, false), compress(odd, 4, 0, 0, true));
}

TEST(KilnDriver, QualityStandsAboveTheFastCompressor)
{
	for (const bool alpha : {false, true})
	{
		const KilnImage image = picture(32, 32, alpha);
		for (const int bpp : {2, 4})
		{
			for (const unsigned version : {0U, 1U})
			{
				std::vector<unsigned char> blocks(image.pixels.size() * bpp / 8);
				const auto quality = [&](unsigned number)
				{
					const unsigned side = 32;
					EXPECT_EQ(zortexture::TesselCompress(image.pixels.data(), blocks.data(), side, side, true, bpp == 2, version, number),
					          blocks.size());
					return psnr(image, blocks, bpp, static_cast<int>(version), version == 1);
				};
				const double fast = quality(1);
				const double first = quality(2);
				const double second = quality(3);
				RecordProperty("psnr" + std::to_string(bpp) + std::to_string(version) + (alpha ? "a" : ""),
				               std::to_string(fast) + " " + std::to_string(first) + " " + std::to_string(second));
				EXPECT_GT(first, fast + 1.5) << bpp << " " << version << alpha;
				// The search minimises another measure than this one of alpha.
				EXPECT_GT(second, alpha ? first - 0.5 : first + 0.1) << bpp << " " << version << alpha;
			}
		}
	}
}

TEST(KilnDriver, SmallAndOddSizesComeBack)
{
	const int sizes[][2] = {{8, 4}, {8, 8}, {16, 4}, {8, 20}, {24, 12}, {40, 4}};
	for (const auto& size : sizes)
	{
		const KilnImage image = picture(size[0], size[1], false);
		for (const int bpp : {2, 4})
		{
			for (const int version : {0, 1})
			{
				EXPECT_GT(psnr(image, compress(image, bpp, version, 1, true), bpp, version, true), bpp == 2 ? 20.0 : 24.0)
				    << size[0] << "x" << size[1] << " " << bpp << " " << version;
			}
		}
	}
}

TEST(KilnDriver, SingleColours)
{
	std::mt19937 random(3);
	for (int i = 0; i < 24; ++i)
	{
		KilnImage image{16, 16, std::vector<KilnColour>(256)};
		const auto grey = static_cast<std::uint8_t>(i * 11);
		const auto any = static_cast<std::uint32_t>(random());
		const bool isGrey = i % 2 == 0;
		const KilnColour colour = isGrey ? KilnColour{grey, grey, grey, 255}
		                                 : KilnColour{static_cast<std::uint8_t>(any), static_cast<std::uint8_t>(any >> 8),
		                                              static_cast<std::uint8_t>(any >> 16), static_cast<std::uint8_t>(any >> 24)};
		std::fill(image.pixels.begin(), image.pixels.end(), colour);
		for (const int bpp : {2, 4})
		{
			for (const int version : {0, 1})
			{
				EXPECT_GT(psnr(image, compress(image, bpp, version, 0, true), bpp, version, true), isGrey ? 48.0 : 32.0)
				    << int(colour[0]) << " " << int(colour[1]) << " " << int(colour[2]) << " " << int(colour[3]) << " bpp " << bpp << " "
				    << version;
			}
		}
	}
}

TEST(KilnPunchThrough, PreparesTransparentPixels)
{
	// One visible pixel at (0, 0), a fainter one beside it; what both can reach, wrapping, is their mean by filter and alpha.
	KilnImage image{16, 16, std::vector<KilnColour>(256, KilnColour{1, 2, 3, 0})};
	image.row(0)[0] = {200, 100, 50, 255};
	image.row(0)[1] = {40, 0, 250, 51};
	image.row(9)[9] = {7, 7, 7, 4};
	KilnImage black = image;
	PTPreprocess(image, 0);
	EXPECT_EQ(image.row(0)[0], (KilnColour{200, 100, 50, 255}));
	EXPECT_EQ(image.row(0)[1], (KilnColour{40, 0, 250, 51}));
	// Left of both: weights 256 * 255 and 64 * 51, that is 20 to 1.
	EXPECT_EQ(image.row(0)[15], (KilnColour{192, 95, 60, 0}));
	EXPECT_EQ(image.row(11)[0], image.row(0)[15]) << "the distance of rows cancels out, but not the columns'";
	PTPreprocess(black, 1);
	EXPECT_EQ(black.row(0)[1], (KilnColour{40, 0, 250, 51}));
	EXPECT_EQ(black.row(9)[9], KilnColour{});
	EXPECT_EQ(black.row(5)[5], KilnColour{});
}

TEST(KilnTexture, OrdersPitchProgressAndMessages)
{
	const KilnImage image = picture(16, 8, false);
	std::vector<unsigned char> expected(64);
	ASSERT_EQ(tessel_compress(image.pixels.data(), expected.data(), 16, 8, 0, 0, false), 0);
	// Blue first, and rows that are followed by four unused pixels.
	std::vector<KilnColour> wide(20 * 8, KilnColour{9, 9, 9, 9});
	for (int i = 0; i < 128; ++i)
	{
		const KilnColour& pixel = image.pixels[i];
		wide[20 * (i / 16) + i % 16] = {pixel[2], pixel[1], pixel[0], pixel[3]};
	}
	KilnProgress* progress = nullptr;
	TesselInitProgressStruct(&progress);
	EXPECT_EQ(TesselGetProgress(&progress), 0.0F);
	std::vector<unsigned char> out(64);
	std::FILE* messages = std::tmpfile();
	GlobDebugOutput = messages;
	EXPECT_EQ(TesselCompressTexture(wide.data(), false, 16, 8, 80, out.data(), 0, false, kKilnWordType, 4, 0, false, progress), 0);
	GlobDebugOutput = nullptr;
	EXPECT_EQ(out, expected);
	EXPECT_EQ(TesselGetProgress(&progress), 1.0F);
	TesselFinaliseProgressStruct(&progress);
	EXPECT_EQ(progress, nullptr);
	std::rewind(messages);
	char line[64] = {};
	EXPECT_NE(std::fgets(line, sizeof(line), messages), nullptr);
	EXPECT_STREQ(line, "Compressing top map (16 * 8).....\n");
	std::fclose(messages);
	// A quality above the last is the last.
	std::vector<unsigned char> best(8);
	std::vector<unsigned char> beyond(8);
	EXPECT_EQ(tessel_compress(image.pixels.data(), best.data(), 4, 4, 1, 6, false), 0);
	EXPECT_EQ(tessel_compress(image.pixels.data(), beyond.data(), 4, 4, 1, 77, false), 0);
	EXPECT_EQ(best, beyond);
}
