// The high-quality Tessel compressor through its entry point, on one processor and on two.

#include <sched.h>
#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
/// Keeps the process on so many of its processors.
class ProcessorLimit
{
public:
	explicit ProcessorLimit(int processors)
	{
		sched_getaffinity(0, sizeof(m_before), &m_before);
		cpu_set_t limited;
		CPU_ZERO(&limited);
		for (int i = 0; i < CPU_SETSIZE && processors > 0; ++i)
		{
			if (CPU_ISSET(i, &m_before))
			{
				CPU_SET(i, &limited);
				--processors;
			}
		}
		sched_setaffinity(0, sizeof(limited), &limited);
	}
	~ProcessorLimit()
	{
		sched_setaffinity(0, sizeof(m_before), &m_before);
	}
	ProcessorLimit(const ProcessorLimit&) = delete;
	ProcessorLimit& operator=(const ProcessorLimit&) = delete;

private:
	cpu_set_t m_before;
};

/// The high-quality compressor at one of its own qualities, by the clock on the wall.
void kiln(benchmark::State& state, bool is2bpp, unsigned int version, unsigned int quality, int processors)
{
	constexpr unsigned int kKilnSide = 128;
	constexpr unsigned int kFirstKilnQuality = 2;
	const CZORTexture picture = bench::makePicture(kKilnSide, kKilnSide);
	std::vector<unsigned char> blocks(kKilnSide * kKilnSide);
	const unsigned int side = kKilnSide;
	const ProcessorLimit limit(processors);
	for (auto _ : state)
	{
		if (TesselCompress(picture.getDataPtr(0, 0, 0), blocks.data(), side, side, false, is2bpp, version, kFirstKilnQuality + quality) ==
		    0)
		{
			state.SkipWithError("not encoded");
			break;
		}
	}
	bench::countPixels(state, kKilnSide * kKilnSide);
}

#define ZORT_BENCH_KILN(title, ...)                                                                                                        \
	BENCHMARK_CAPTURE(kiln, title, __VA_ARGS__)                                                                                            \
	    ->Name("tessel/kiln " #title)                                                                                                      \
	    ->Unit(benchmark::kMillisecond)                                                                                                    \
	    ->MeasureProcessCPUTime()                                                                                                          \
	    ->UseRealTime()

ZORT_BENCH_KILN(I_4bpp_0_on_1_processor, false, 0, 0, 1);
ZORT_BENCH_KILN(I_4bpp_0_on_2_processors, false, 0, 0, 2);
ZORT_BENCH_KILN(I_4bpp_1_on_1_processor, false, 0, 1, 1);
ZORT_BENCH_KILN(I_4bpp_1_on_2_processors, false, 0, 1, 2);
ZORT_BENCH_KILN(I_4bpp_2_on_1_processor, false, 0, 2, 1);
ZORT_BENCH_KILN(I_4bpp_2_on_2_processors, false, 0, 2, 2);
ZORT_BENCH_KILN(I_4bpp_3_on_1_processor, false, 0, 3, 1);
ZORT_BENCH_KILN(I_4bpp_3_on_2_processors, false, 0, 3, 2);
ZORT_BENCH_KILN(I_2bpp_0_on_1_processor, true, 0, 0, 1);
ZORT_BENCH_KILN(I_2bpp_1_on_1_processor, true, 0, 1, 1);
ZORT_BENCH_KILN(I_2bpp_3_on_1_processor, true, 0, 3, 1);
ZORT_BENCH_KILN(II_4bpp_1_on_1_processor, false, 1, 1, 1);
ZORT_BENCH_KILN(II_4bpp_3_on_1_processor, false, 1, 3, 1);
ZORT_BENCH_KILN(II_2bpp_1_on_1_processor, true, 1, 1, 1);
ZORT_BENCH_KILN(II_2bpp_3_on_1_processor, true, 1, 3, 1);
} // namespace
