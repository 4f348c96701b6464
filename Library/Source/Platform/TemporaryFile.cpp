#include "TemporaryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zortexture::platform
{
CTemporaryFile::CTemporaryFile(const char* extension)
{
	if (getTempFile(m_path, extension) == 0)
	{
		return;
	}
	struct stat older = {};
	if (lstat(m_path, &older) == 0 && older.st_uid == geteuid())
	{
		unlink(m_path);
	}
	const int descriptor = open(m_path, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
	if (descriptor >= 0)
	{
		close(descriptor);
		m_isCreated = true;
	}
}

CTemporaryFile::~CTemporaryFile()
{
	if (m_isCreated && !m_isKept)
	{
		unlink(m_path);
	}
}

const char* CTemporaryFile::path() const
{
	return m_isCreated ? m_path : nullptr;
}

void CTemporaryFile::keep()
{
	struct stat now = {};
	m_isKept = lstat(m_path, &now) == 0 && now.st_size > 0;
}
} // namespace zortexture::platform
