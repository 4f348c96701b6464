/// @file FakeEncoder.h
/// Programs of our own in the place of the external encoder.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>
#include <sys/wait.h>

namespace zortexture
{
namespace fs = std::filesystem;

/// A value of the environment for as long as the object lives.
class CEnvironmentValue
{
public:
	CEnvironmentValue(const char* name, const char* value) : m_name(name), m_wasSet(std::getenv(name) != nullptr)
	{
		m_old = m_wasSet ? std::getenv(name) : "";
		set(value);
	}

	~CEnvironmentValue()
	{
		set(m_wasSet ? m_old.c_str() : nullptr);
	}

	CEnvironmentValue(const CEnvironmentValue&) = delete;
	CEnvironmentValue& operator=(const CEnvironmentValue&) = delete;

private:
	void set(const char* value) const
	{
		value != nullptr ? setenv(m_name, value, 1) : unsetenv(m_name);
	}

	const char* m_name;
	bool m_wasSet;
	std::string m_old;
};

/// A folder with a search path and a temporary folder in it. After each test no child and no descriptor is left.
class FakeEncoder : public testing::Test
{
protected:
	void SetUp() override
	{
		fs::create_directories(m_root + "/bin");
		fs::create_directories(temporary());
		m_path.emplace("PATH", (m_root + "/bin:/usr/bin:/bin").c_str());
		m_temporary.emplace("TMPDIR", temporary().c_str());
		m_descriptors = numDescriptors();
	}

	void TearDown() override
	{
		EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
		EXPECT_EQ(numDescriptors(), m_descriptors);
		fs::remove_all(m_root);
	}

	/// Makes a shell script the program of that name.
	void install(const std::string& script, const std::string& name = "astcenc") const
	{
		const std::string path = m_root + "/bin/" + name;
		std::ofstream(path) << "#!/bin/sh\ncd '" << m_root << "'\n" << script << "\n";
		fs::permissions(path, fs::perms::owner_all);
	}

	std::string path(const std::string& name) const
	{
		return m_root + "/" + name;
	}

	std::string temporary() const
	{
		return m_root + "/tmp";
	}

	/// The extensions of the files that are left in the temporary folder.
	std::multiset<std::string> leftOver() const
	{
		std::multiset<std::string> extensions;
		for (const auto& entry : fs::directory_iterator(temporary()))
		{
			extensions.insert(entry.path().extension().string());
		}
		return extensions;
	}

	static std::string read(const std::string& path)
	{
		std::ifstream file(path, std::ios::binary);
		return {std::istreambuf_iterator<char>(file), {}};
	}

private:
	static std::ptrdiff_t numDescriptors()
	{
		return std::distance(fs::directory_iterator("/proc/self/fd"), {});
	}

	static std::string makeRoot()
	{
		std::string name = testing::TempDir() + "zort_astc_XXXXXX";
		return mkdtemp(name.data());
	}

	std::string m_root = makeRoot();
	std::optional<CEnvironmentValue> m_path;
	std::optional<CEnvironmentValue> m_temporary;
	std::ptrdiff_t m_descriptors = 0;
};
} // namespace zortexture
