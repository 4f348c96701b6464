/// @file MemoryLimit.h
/// Headers of a few bytes can ask for 4 GB, which the library rightly tries to allocate. The fuzz targets refuse large
/// requests as a small machine would, so that runs stay quick and every target meets failing allocations.
#pragma once

/// While one exists, operator new throws std::bad_alloc for more than a megabyte at once.
class CMemoryLimit
{
public:
	CMemoryLimit();
	CMemoryLimit(const CMemoryLimit&) = delete;
	CMemoryLimit& operator=(const CMemoryLimit&) = delete;
	~CMemoryLimit();
};
