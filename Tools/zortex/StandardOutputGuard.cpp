#include "StandardOutputGuard.h"

#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

namespace zortex
{
StandardOutputGuard::StandardOutputGuard() : m_saved(-1)
{
	std::cout.flush();
	std::fflush(stdout);
	const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
	if (nowhere < 0)
	{
		return;
	}
	m_saved = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
	if (m_saved >= 0)
	{
		dup2(nowhere, STDOUT_FILENO);
	}
	close(nowhere);
}

StandardOutputGuard::~StandardOutputGuard()
{
	std::fflush(stdout);
	if (m_saved >= 0)
	{
		dup2(m_saved, STDOUT_FILENO);
		close(m_saved);
	}
}
} // namespace zortex
