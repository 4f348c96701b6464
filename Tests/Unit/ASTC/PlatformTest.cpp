#include "Platform/Platform.h"

#include <pthread.h>
#include <thread>
#include <unistd.h>

#include "FakeEncoder.h"

using namespace zortexture;

namespace
{
TEST(Platform, TemporaryNames)
{
	EXPECT_EQ(platform::maxPath(), 1024u);
	EXPECT_EQ(platform::executableName("astcenc"), "astcenc");
	const std::string longest = "/" + std::string(1021, 'a');
	struct
	{
		const char* variable;
		std::string folder;
	} const cases[] = {{nullptr, "/tmp/"}, {"/a/b", "/a/b/"}, {"/a/", "/a/"}, {"a", "a/"}, {"", ""}, {longest.c_str(), longest + "/"}};
	for (const auto& test : cases)
	{
		const CEnvironmentValue variable("TMPDIR", test.variable);
		char path[1025] = {};
		path[1024] = 'x';
		EXPECT_EQ(platform::getTempDir(path), test.folder.size());
		EXPECT_EQ(path, test.folder);
		const std::string file = "ZORTexLib_" + std::to_string(getpid()) + "_" + std::to_string(pthread_self()) + ".ktx";
		const bool fits = test.folder.size() + file.size() < 1024;
		EXPECT_EQ(platform::getTempFile(path, "ktx"), fits ? test.folder.size() + file.size() : 0);
		EXPECT_EQ(path, fits ? test.folder + file : "");
		EXPECT_EQ(path[1024], 'x');
	}

	for (const std::size_t length : {1023u, 1024u, 5000u})
	{
		const CEnvironmentValue variable("TMPDIR", std::string(length, 'a').c_str());
		char path[1025] = "abc";
		path[1024] = 'x';
		EXPECT_EQ(platform::getTempDir(path), 0u);
		EXPECT_STREQ(path, "");
		EXPECT_EQ(path[1024], 'x');
	}

	char mine[1024];
	char others[1024];
	platform::getTempFile(mine, "ktx");
	std::thread([&others] { platform::getTempFile(others, "ktx"); }).join();
	EXPECT_STRNE(mine, others);
}

using PlatformProcess = FakeEncoder;

TEST_F(PlatformProcess, EndsOfPrograms)
{
	struct
	{
		const char* script;
		bool isRun;
		int exitCode;
	} const cases[] = {{"exit 0", true, 0},     {"exit 1", true, 1},          {"exit 126", true, 126},
	                   {"exit 127", false, -1}, {"kill -KILL $$", false, -1}, {"kill -TERM $$", false, -1}};
	for (const auto& test : cases)
	{
		install(test.script, "program");
		int exitCode = -1;
		EXPECT_EQ(platform::executeProcess("program", nullptr, &exitCode), test.isRun) << test.script;
		EXPECT_EQ(exitCode, test.exitCode) << test.script;
		EXPECT_EQ(platform::executeProcess("program", nullptr, nullptr), test.isRun) << test.script;
	}
	EXPECT_FALSE(platform::executeProcess("no_such_program", nullptr, nullptr));
}

TEST_F(PlatformProcess, ArgumentsAndOutput)
{
	install("printf '%s\\n' \"$@\" >arguments; links=$(readlink /proc/$$/fd/1 /proc/$$/fd/2); echo \"$links\" >output", "program");
	const char* const arguments[] = {"-c", "a b", "", "'\"$x", nullptr};
	ASSERT_TRUE(platform::executeProcess("program", arguments, nullptr));
	EXPECT_EQ(read(path("arguments")), "-c\na b\n\n'\"$x\n");
	EXPECT_EQ(read(path("output")), "/dev/null\n/dev/null\n");

	// With no output of its own in the parent, /dev/null opens as one of the descriptors that it is wanted on.
	const int output = dup(STDOUT_FILENO);
	close(STDOUT_FILENO);
	const bool isRun = platform::executeProcess("program", nullptr, nullptr);
	dup2(output, STDOUT_FILENO);
	close(output);
	EXPECT_TRUE(isRun);
	EXPECT_EQ(read(path("output")), "/dev/null\n/dev/null\n");
}
} // namespace
