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

/// The high-quality compressor at one of its own qualities on the photograph, by the clock on the wall.
void kiln(benchmark::State& state, unsigned int side, bool is2bpp, unsigned int version, unsigned int quality, int processors, double goal)
{
	constexpr unsigned int kFirstKilnQuality = 2;
	const CZORTexture picture = bench::photograph(side);
	std::vector<unsigned char> blocks(static_cast<std::size_t>(side) * side);
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
	bench::countPixels(state, static_cast<unsigned long long>(side) * side, goal);
}

#define ZORT_BENCH_KILN(title, ...)                                                                                                        \
	BENCHMARK_CAPTURE(kiln, title, __VA_ARGS__)                                                                                            \
	    ->Name("tessel/kiln " #title)                                                                                                      \
	    ->Unit(benchmark::kMillisecond)                                                                                                    \
	    ->MeasureProcessCPUTime()                                                                                                          \
	    ->UseRealTime()

// Single-threaded on the middle of the photograph.
ZORT_BENCH_KILN(I_4bpp_0, 256, false, 0, 0, 1, 0.02);
ZORT_BENCH_KILN(I_4bpp_1, 256, false, 0, 1, 1, 0.008);
ZORT_BENCH_KILN(I_4bpp_3, 256, false, 0, 3, 1, 0.001);
ZORT_BENCH_KILN(II_4bpp_0, 256, false, 1, 0, 1, 0.015);
ZORT_BENCH_KILN(II_4bpp_1, 256, false, 1, 1, 1, 0.004);
ZORT_BENCH_KILN(II_4bpp_3, 256, false, 1, 3, 1, 0.0004);
ZORT_BENCH_KILN(I_2bpp_0, 256, true, 0, 0, 1, 0);
ZORT_BENCH_KILN(I_2bpp_1, 256, true, 0, 1, 1, 0);
ZORT_BENCH_KILN(II_2bpp_1, 256, true, 1, 1, 1, 0);
// What a second processor gains on the whole of it: the goal is 1.85 times the speed of the first.
ZORT_BENCH_KILN(I_4bpp_1_whole_on_1_processor, 512, false, 0, 1, 1, 0);
ZORT_BENCH_KILN(I_4bpp_1_whole_on_2_processors, 512, false, 0, 1, 2, 0);
} // namespace
