/// @file WorkerPool.h
/// One process for each file, up to a number of them at once: a crash is the end of one file and not of the batch.
#ifndef ZORTEX_WORKER_POOL_H
#define ZORTEX_WORKER_POOL_H

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zortex
{
/// Takes SIGINT, SIGTERM and SIGHUP for as long as it exists, ignores SIGPIPE, and lets wait() see them and the end of children without a
/// race.
class SignalWatch
{
public:
	SignalWatch();
	SignalWatch(const SignalWatch&) = delete;
	SignalWatch& operator=(const SignalWatch&) = delete;
	~SignalWatch();

	/// Sleeps until a signal comes or the time is over.
	void wait(int milliseconds) const;

	/// The signal that asks the program to end; 0 for none.
	int received() const;

	/// In a child: everything as it is in a new process.
	void release() const;
};

class WorkerPool
{
public:
	/// What one worker did.
	struct Outcome
	{
		std::size_t index;
		pid_t process;
		/// What the task returned; empty when the worker died.
		std::string text;
		/// How the worker died; empty when it did not.
		std::string death;
		/// What it printed to standard error.
		std::string messages;
	};

	WorkerPool(unsigned int workers, const SignalWatch& signals);
	WorkerPool(const WorkerPool&) = delete;
	WorkerPool& operator=(const WorkerPool&) = delete;
	/// Kills what still runs.
	~WorkerPool();

	bool isFull() const;
	bool isEmpty() const;

	/// Runs a task in a process of its own, without standard output.
	/// @return why none can be had; empty when it runs.
	std::string start(std::size_t index, const std::function<std::string()>& task);

	/// The outcomes of the workers that have ended since the last call.
	std::vector<Outcome> collect();

	struct Stopped
	{
		std::size_t index;
		pid_t process;
	};

	/// Ends all workers, with what they started.
	std::vector<Stopped> stop();

private:
	struct FileCloser
	{
		void operator()(std::FILE* file) const
		{
			std::fclose(file);
		}
	};
	using File = std::unique_ptr<std::FILE, FileCloser>;

	struct Worker
	{
		pid_t process;
		std::size_t index;
		File text;
		File messages;
	};

	[[noreturn]] void runTask(const std::function<std::string()>& task, pid_t parent, std::FILE* text, std::FILE* messages) const;
	static std::string contentsOf(std::FILE* file);

	unsigned int m_limit;
	const SignalWatch& m_signals;
	std::vector<Worker> m_workers;
};
} // namespace zortex

#endif // ZORTEX_WORKER_POOL_H
