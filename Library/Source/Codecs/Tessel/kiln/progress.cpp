#include "progress.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <sched.h>

#include "messages.h"

struct KilnProgress
{
	pthread_mutex_t mutex;
	std::uint64_t pixels = 0;
	std::uint64_t pixelsDone = 0;
};

namespace
{
void check(int error, const char* what, int line)
{
	if (error != 0)
	{
		fprintf_flush(stderr, "%s at \"%s\":%d: %s\n", what, "Library/Source/Codecs/Tessel/kiln/progress", line, std::strerror(error));
		std::abort();
	}
}

template<typename Function>
void locked(KilnProgress& progress, Function&& function)
{
	check(pthread_mutex_lock(&progress.mutex), "lock mutex", __LINE__);
	function();
	check(pthread_mutex_unlock(&progress.mutex), "unlock mutex", __LINE__);
}
} // namespace

void TesselInitProgressStruct(KilnProgress** progress)
{
	*progress = new KilnProgress;
	check(pthread_mutex_init(&(*progress)->mutex, nullptr), "init mutex", __LINE__);
}

float TesselGetProgress(KilnProgress** progress)
{
	float share = 0.0F;
	KilnProgress& record = **progress;
	locked(record,
	       [&]
	       {
		       if (record.pixels != 0)
		       {
			       share = static_cast<float>(static_cast<double>(record.pixelsDone) / static_cast<double>(record.pixels));
		       }
	       });
	sched_yield();
	return std::clamp(share, 0.0F, 1.0F);
}

void TesselFinaliseProgressStruct(KilnProgress** progress)
{
	if (*progress != nullptr)
	{
		check(pthread_mutex_destroy(&(*progress)->mutex), "destroy mutex", __LINE__);
		delete *progress;
		*progress = nullptr;
	}
}

void kilnResetProgress(KilnProgress* progress, std::uint64_t pixels)
{
	if (progress != nullptr)
	{
		locked(*progress,
		       [=]
		       {
			       progress->pixels = pixels;
			       progress->pixelsDone = 0;
		       });
	}
}

void kilnAdvanceProgress(KilnProgress* progress, std::uint64_t pixels)
{
	if (progress != nullptr)
	{
		locked(*progress, [=] { progress->pixelsDone += pixels; });
	}
}
