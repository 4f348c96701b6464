#include "threadsupport.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "messages.h"

namespace
{
std::atomic<int> g_forcedCores = 0;
std::atomic<int> g_refusalPeriod = 0;
std::atomic<int> g_launches = 0;

bool isRefusedByTest()
{
	const int period = g_refusalPeriod;
	return period != 0 && ++g_launches % period == 0;
}
} // namespace

int DetermineNumberOfCores()
{
	const int forced = g_forcedCores;
	if (forced != 0)
	{
		return forced;
	}
	for (const int name : {_SC_NPROCESSORS_ONLN, _SC_NPROCESSORS_CONF})
	{
		const long count = sysconf(name);
		if (count > 0)
		{
			return static_cast<int>(std::min(count, 4096L));
		}
	}
	return 1;
}

int LaunchThread(KilnThreadRoutine routine, void* argument, pthread_t* handle)
{
	return !isRefusedByTest() && pthread_create(handle, nullptr, routine, argument) == 0 ? 1 : 0;
}

void WaitForThreads(const pthread_t* handles, int count)
{
	for (int i = 0; i < count; ++i)
	{
		const int error = pthread_join(handles[i], nullptr);
		if (error != 0)
		{
			fprintf_flush(stderr, "%s at \"%s\":%d: %s\n", "Join thread", "Library/Source/Codecs/Tessel/kiln/threadsupport", __LINE__,
			              std::strerror(error));
			std::abort();
		}
	}
}

int kilnThreadCount(int cores, int blocksY)
{
	constexpr int kMostThreads = 128;
	constexpr int kUnknownThreads = 4;
	const int useful = blocksY + 1 > 255 ? kMostThreads : (blocksY + 1) / 2;
	return std::min(useful, cores == 0 ? kUnknownThreads : cores);
}

bool kilnRunStage(KilnThreadRoutine routine, std::vector<KilnThreadRecord>& pieces)
{
	std::vector<KilnThreadRecord*> busy;
	for (KilnThreadRecord& piece : pieces)
	{
		if (piece.firstRow < piece.endRow)
		{
			busy.push_back(&piece);
		}
	}
	std::vector<pthread_t> running;
	running.reserve(busy.size());
	const auto join = [&running]
	{
		WaitForThreads(running.data(), static_cast<int>(running.size()));
		running.clear();
	};
	for (std::size_t i = 0; i < busy.size();)
	{
		pthread_t handle;
		if (i + 1 < busy.size() && LaunchThread(routine, busy[i], &handle) != 0)
		{
			running.push_back(handle);
			++i;
		}
		else if (i + 1 < busy.size() && !running.empty())
		{
			join(); // those that are done make room for this piece
		}
		else
		{
			routine(busy[i]);
			++i;
		}
	}
	join();
	return std::none_of(pieces.begin(), pieces.end(), [](const KilnThreadRecord& piece) { return piece.failed; });
}

void kilnForceCores(int cores)
{
	g_forcedCores = cores;
}

void kilnRefuseLaunches(int period)
{
	g_refusalPeriod = period;
	g_launches = 0;
}
