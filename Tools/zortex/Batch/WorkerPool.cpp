#include "WorkerPool.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <sys/select.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace zortex
{
namespace
{
constexpr int kWatchedSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGCHLD};

volatile std::sig_atomic_t receivedSignal = 0;

struct sigaction oldActions[std::size(kWatchedSignals)];
struct sigaction oldPipeAction;
sigset_t oldMask;

void takeSignal(int signal)
{
	if (signal != SIGCHLD)
	{
		receivedSignal = signal;
	}
}

sigset_t watchedSet()
{
	sigset_t set;
	sigemptyset(&set);
	for (const int signal : kWatchedSignals)
	{
		sigaddset(&set, signal);
	}
	return set;
}
} // namespace

SignalWatch::SignalWatch()
{
	receivedSignal = 0;
	const sigset_t watched = watchedSet();
	// Blocked, so that they arrive inside wait() alone and none is missed.
	sigprocmask(SIG_BLOCK, &watched, &oldMask);
	for (std::size_t i = 0; i < std::size(kWatchedSignals); ++i)
	{
		struct sigaction action = {};
		action.sa_handler = takeSignal;
		sigaction(kWatchedSignals[i], &action, &oldActions[i]);
	}
	// Whoever reads the messages may go away; the files are converted all the same.
	struct sigaction ignored = {};
	ignored.sa_handler = SIG_IGN;
	sigaction(SIGPIPE, &ignored, &oldPipeAction);
}

SignalWatch::~SignalWatch()
{
	release();
}

void SignalWatch::wait(int milliseconds) const
{
	timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
	sigset_t open = oldMask;
	for (const int signal : kWatchedSignals)
	{
		sigdelset(&open, signal);
	}
	pselect(0, nullptr, nullptr, nullptr, &time, &open);
}

int SignalWatch::received() const
{
	return receivedSignal;
}

void SignalWatch::release() const
{
	for (std::size_t i = 0; i < std::size(kWatchedSignals); ++i)
	{
		sigaction(kWatchedSignals[i], &oldActions[i], nullptr);
	}
	sigaction(SIGPIPE, &oldPipeAction, nullptr);
	sigprocmask(SIG_SETMASK, &oldMask, nullptr);
}

WorkerPool::WorkerPool(unsigned int workers, const SignalWatch& signals) : m_limit(workers), m_signals(signals)
{
}

WorkerPool::~WorkerPool()
{
	stop();
}

bool WorkerPool::isFull() const
{
	return m_workers.size() >= m_limit;
}

bool WorkerPool::isEmpty() const
{
	return m_workers.empty();
}

std::string WorkerPool::start(std::size_t index, const std::function<std::string()>& task)
{
	Worker worker = {0, index, File(std::tmpfile()), File(std::tmpfile())};
	if (!worker.text || !worker.messages)
	{
		return std::string("no temporary file for a worker: ") + std::strerror(errno);
	}
	std::cout.flush();
	std::cerr.flush();
	std::fflush(nullptr);
	const pid_t parent = getpid();
	worker.process = fork();
	if (worker.process < 0)
	{
		return std::string("no process for a worker: ") + std::strerror(errno);
	}
	if (worker.process == 0)
	{
		runTask(task, parent, worker.text.get(), worker.messages.get());
	}
	// Here too, so that the group exists before anybody signals it.
	setpgid(worker.process, worker.process);
	m_workers.push_back(std::move(worker));
	return "";
}

void WorkerPool::runTask(const std::function<std::string()>& task, pid_t parent, std::FILE* text, std::FILE* messages) const
{
	// A group of its own: what the worker starts can be ended with it.
	setpgid(0, 0);
#ifdef __linux__
	prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
	if (getppid() != parent)
	{
		_exit(1); // it was gone before it could have taken this process with it
	}
	m_signals.release();
	// The other workers' files would take up this one's share of descriptors.
	for (const Worker& worker : m_workers)
	{
		close(fileno(worker.text.get()));
		close(fileno(worker.messages.get()));
	}
	const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
	if (nowhere >= 0)
	{
		dup2(nowhere, STDIN_FILENO);
		dup2(nowhere, STDOUT_FILENO);
	}
	dup2(fileno(messages), STDERR_FILENO);

	int exitCode = 1;
	try
	{
		const std::string result = task();
		const bool isWritten = std::fwrite(result.data(), 1, result.size(), text) == result.size() && std::fflush(text) == 0;
		exitCode = isWritten ? 0 : 1;
	}
	catch (...)
	{
		// The task's own errors are part of its result: what comes here is lack of memory.
		std::fputs("not enough memory\n", stderr);
	}
	std::cerr.flush();
	std::fflush(stderr);
	_exit(exitCode);
}

std::string WorkerPool::contentsOf(std::FILE* file)
{
	std::string contents;
	char buffer[4096];
	std::rewind(file);
	std::size_t count = 0;
	while ((count = std::fread(buffer, 1, sizeof(buffer), file)) > 0)
	{
		contents.append(buffer, count);
	}
	return contents;
}

std::vector<WorkerPool::Outcome> WorkerPool::collect()
{
	std::vector<Outcome> outcomes;
	for (std::size_t i = 0; i < m_workers.size();)
	{
		int status = 0;
		const pid_t ended = waitpid(m_workers[i].process, &status, WNOHANG);
		if (ended == 0 || (ended < 0 && errno == EINTR))
		{
			++i;
			continue;
		}
		Outcome outcome = {m_workers[i].index, m_workers[i].process, "", "", contentsOf(m_workers[i].messages.get())};
		if (ended > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0)
		{
			outcome.text = contentsOf(m_workers[i].text.get());
		}
		else if (ended > 0 && WIFSIGNALED(status))
		{
			outcome.death = std::string("its worker was ended by a signal: ") + strsignal(WTERMSIG(status));
		}
		else
		{
			outcome.death = "its worker ended early, with exit code " + std::to_string(WEXITSTATUS(status));
		}
		outcomes.push_back(std::move(outcome));
		m_workers.erase(m_workers.begin() + static_cast<std::ptrdiff_t>(i));
	}
	return outcomes;
}

std::vector<WorkerPool::Stopped> WorkerPool::stop()
{
	std::vector<Stopped> stopped;
	for (const Worker& worker : m_workers)
	{
		kill(-worker.process, SIGKILL);
		stopped.push_back({worker.index, worker.process});
	}
	for (const Stopped& worker : stopped)
	{
		while (waitpid(worker.process, nullptr, 0) < 0 && errno == EINTR)
		{
		}
	}
	m_workers.clear();
	return stopped;
}
} // namespace zortex
