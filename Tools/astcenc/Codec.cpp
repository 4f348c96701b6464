#include "Codec.h"

#include <algorithm>
#include <astcenc.h>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace astcenc
{
using namespace zortexture;

const QualitySwitch kQualitySwitches[5] = {{"-veryfast", ASTCENC_PRE_FASTEST},
                                           {"-fast", ASTCENC_PRE_FAST},
                                           {"-medium", ASTCENC_PRE_MEDIUM},
                                           {"-thorough", ASTCENC_PRE_THOROUGH},
                                           {"-exhaustive", ASTCENC_PRE_EXHAUSTIVE}};

namespace
{
constexpr astcenc_swizzle kAllChannels = {ASTCENC_SWZ_R, ASTCENC_SWZ_G, ASTCENC_SWZ_B, ASTCENC_SWZ_A};

/// Fewer blocks do not pay for the memory that each thread takes.
constexpr unsigned int kBlocksPerThread = 32;

void check(astcenc_error error)
{
	if (error != ASTCENC_SUCCESS)
	{
		throw std::runtime_error(std::string("the codec library refuses: ") + astcenc_get_error_string(error));
	}
}

struct ContextDeleter
{
	void operator()(astcenc_context* context) const
	{
		astcenc_context_free(context);
	}
};
using Context = std::unique_ptr<astcenc_context, ContextDeleter>;

Context makeContext(PixelType format, bool isSRGB, float effort, unsigned int flags, unsigned int threads)
{
	unsigned int x = 0;
	unsigned int y = 0;
	unsigned int z = 0;
	ZORTGetFormatMinDims(format.id, x, y, z);
	astcenc_config config = {};
	check(astcenc_config_init(isSRGB ? ASTCENC_PRF_LDR_SRGB : ASTCENC_PRF_LDR, x, y, z, effort, flags, &config));
	astcenc_context* context = nullptr;
	check(astcenc_context_alloc(&config, threads, &context));
	return Context(context);
}

unsigned int numThreads(const CZORTexture& blocks)
{
	const unsigned int worthwhile = std::max(1u, blocks.getDataSize() / 16 / kBlocksPerThread);
	return std::min(worthwhile, std::max(1u, std::thread::hardware_concurrency()));
}

/// A texture for the result. What has no pixels, or more bytes than a texture can hold, is refused before anything walks over it. (A
/// dimension of 0 counts as 1 in a size.)
CZORTexture makeResult(const CZORTextureHeader& header)
{
	CZORTexture result(header);
	const ZORTextureHeaderV3 fields = header.getFileHeader();
	if (fields.width == 0 || fields.height == 0 || fields.depth == 0 || !result.isDataComplete())
	{
		throw std::runtime_error("the image is empty or too large");
	}
	return result;
}

/// Calls `work(index)`, which returns an error, once on each of several threads, and waits for all.
template<typename Work>
void runOnThreads(unsigned int count, Work work)
{
	std::atomic<astcenc_error> outcome = ASTCENC_SUCCESS;
	const auto run = [&outcome, &work](unsigned int index)
	{
		const astcenc_error error = work(index);
		if (error != ASTCENC_SUCCESS)
		{
			outcome = error;
		}
	};
	std::vector<std::jthread> threads; // which waits for them, also when one cannot be started
	for (unsigned int index = 1; index < count; ++index)
	{
		threads.emplace_back(run, index);
	}
	run(0);
	threads.clear();
	check(outcome);
}

/// Calls `work(image, blocks, size)` for each image that the codec library takes at once: the whole volume where blocks have a depth,
/// and one slice after the other where they are flat, since it encodes but the first slice of a volume into flat blocks.
template<typename Work>
void forEachCodedImage(const CZORTexture& pixels, const CZORTexture& blocks, Work work)
{
	unsigned int blockX = 1;
	unsigned int blockY = 1;
	unsigned int blockZ = 1;
	ZORTGetFormatMinDims(blocks.getPixelType().id, blockX, blockY, blockZ);
	const unsigned int numSlices = pixels.getDepth();
	const unsigned int step = blockZ == 1 ? 1 : numSlices;
	const std::size_t sliceBytes = static_cast<std::size_t>(pixels.getWidth()) * pixels.getHeight() * 4;
	const std::size_t blockBytes = blocks.getDataSize() / (numSlices / step);
	auto* coded = static_cast<unsigned char*>(blocks.getDataPtr());

	std::vector<void*> slices;
	for (unsigned int z = 0; z < numSlices; ++z)
	{
		slices.push_back(static_cast<unsigned char*>(pixels.getDataPtr()) + z * sliceBytes);
	}
	for (unsigned int z = 0; z < numSlices; z += step, coded += blockBytes)
	{
		astcenc_image image = {pixels.getWidth(), pixels.getHeight(), step, ASTCENC_TYPE_U8, slices.data() + z};
		work(image, coded, blockBytes);
	}
}
} // namespace

CZORTexture encode(const CZORTexture& pixels, EZORTPixelFormat format, float effort)
{
	CZORTextureHeader header(pixels);
	header.setPixelFormat(format);
	CZORTexture blocks = makeResult(header);
	const unsigned int threads = numThreads(blocks);
	const Context context = makeContext(format, pixels.getColourSpace() == eCS_sRGB, effort, 0, threads);
	forEachCodedImage(pixels, blocks,
	                  [&](astcenc_image& image, unsigned char* coded, std::size_t size)
	                  {
		                  runOnThreads(threads, [&](unsigned int index)
		                               { return astcenc_compress_image(context.get(), &image, &kAllChannels, coded, size, index); });
		                  check(astcenc_compress_reset(context.get()));
	                  });
	return blocks;
}

CZORTexture decode(const CZORTexture& blocks, bool isSRGB)
{
	CZORTextureHeader header(blocks);
	header.setPixelFormat(ZORStandard8PixelType);
	header.setColourSpace(eCS_lRGB);
	CZORTexture pixels = makeResult(header);
	const unsigned int threads = numThreads(blocks);
	const Context context = makeContext(blocks.getPixelType(), isSRGB, ASTCENC_PRE_MEDIUM, ASTCENC_FLG_DECOMPRESS_ONLY, threads);
	forEachCodedImage(pixels, blocks,
	                  [&](astcenc_image& image, unsigned char* coded, std::size_t size)
	                  {
		                  runOnThreads(threads, [&](unsigned int index)
		                               { return astcenc_decompress_image(context.get(), coded, size, &image, &kAllChannels, index); });
		                  check(astcenc_decompress_reset(context.get()));
	                  });
	return pixels;
}
} // namespace astcenc
