/// @file TemporaryFile.h
/// A temporary file that is gone when its owner is.
#pragma once

#include "Platform.h"

namespace zortexture::platform
{
/// An empty file of the calling thread, by the name that getTempFile gives, which only this user can read and write. Programs that are
/// handed the path find the file there, so that they follow no link that another user has laid. The destructor removes it.
class CTemporaryFile
{
public:
	/// An older file or link of this user by that name is removed first, and never followed.
	explicit CTemporaryFile(const char* extension);
	~CTemporaryFile();
	CTemporaryFile(const CTemporaryFile&) = delete;
	CTemporaryFile& operator=(const CTemporaryFile&) = delete;

	/// Null when the file could not be created: the path is too long, or another user's file has the name.
	const char* path() const;

	/// Leaves the file where it is, unless nothing has been written to it.
	void keep();

private:
	char m_path[maxPath()];
	bool m_isCreated = false;
	bool m_isKept = false;
};
} // namespace zortexture::platform
