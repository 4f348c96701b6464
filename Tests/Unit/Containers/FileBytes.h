/// @file FileBytes.h
/// Building files by hand, and textures to save.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

#include "ZORTexture.h"

namespace zortexture
{
/// The bytes of a file, appended piece by piece; numbers are little-endian.
class FileBytes
{
public:
	FileBytes& word(unsigned int value)
	{
		for (unsigned int shift = 0; shift < 32; shift += 8)
		{
			bytes.push_back(static_cast<char>(value >> shift));
		}
		return *this;
	}

	FileBytes& words(std::initializer_list<unsigned int> values)
	{
		for (const unsigned int value : values)
		{
			word(value);
		}
		return *this;
	}

	FileBytes& text(const std::string& value)
	{
		bytes += value;
		return *this;
	}

	FileBytes& zeroes(std::size_t count)
	{
		bytes.append(count, '\0');
		return *this;
	}

	/// Bytes first, first + 1, ...
	FileBytes& count(unsigned int first, std::size_t howMany)
	{
		for (std::size_t i = 0; i < howMany; ++i)
		{
			bytes.push_back(static_cast<char>(first + i));
		}
		return *this;
	}

	std::string bytes;
};

/// A path in the temporary folder that is this test's own, and that is removed at the end.
class TemporaryPath
{
public:
	explicit TemporaryPath(const std::string& extension)
	    : m_path((std::filesystem::temp_directory_path() /
	              ("zort_test_" + std::to_string(getpid()) + "_" + std::to_string(s_next++) + extension))
	                 .string())
	{
	}
	TemporaryPath(const TemporaryPath&) = delete;
	TemporaryPath& operator=(const TemporaryPath&) = delete;
	~TemporaryPath()
	{
		std::error_code ignored;
		std::filesystem::remove(m_path, ignored);
	}

	const std::string& str() const
	{
		return m_path;
	}

	bool exists() const
	{
		return std::filesystem::exists(m_path);
	}

	void write(const std::string& bytes) const
	{
		std::ofstream(m_path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
	}

	std::string read() const
	{
		std::ifstream file(m_path, std::ios::binary);
		return {std::istreambuf_iterator<char>(file), {}};
	}

private:
	static inline unsigned int s_next = 0;
	std::string m_path;
};

/// Loads bytes as a file with an extension.
inline CZORTexture loadBytes(const std::string& bytes, const std::string& extension)
{
	const TemporaryPath path(extension);
	path.write(bytes);
	return CZORTexture(path.str().c_str());
}

/// The bytes of a texture's whole block.
inline std::string blockOf(const CZORTexture& texture)
{
	return texture.isDataComplete() ? std::string(static_cast<const char*>(texture.getDataPtr(0, 0, 0)), texture.getDataSize())
	                                : std::string();
}

/// A texture whose bytes count up from 1.
inline CZORTexture countingTexture(const CZORTextureHeader& header)
{
	const FileBytes data = FileBytes().count(1, header.getDataSize());
	return CZORTexture(header, data.bytes.data());
}

/// Touches every byte of every image, so that a sanitizer sees what a user of the texture would.
inline unsigned int touchAll(const CZORTexture& texture)
{
	unsigned int sum = 0;
	if (texture.isDataComplete())
	{
		for (const char byte : blockOf(texture))
		{
			sum += static_cast<unsigned char>(byte);
		}
	}
	return sum;
}
} // namespace zortexture
